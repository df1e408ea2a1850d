list(APPEND KRLDV_GUI_TEST_SOURCES app/KCMainFrameTest.cpp app/KCKorel5ProgramTest.cpp app/KCImageShapeAppTest.cpp app/KCDeviceActionsTest.cpp)
