list(APPEND KRLDV_GUI_TEST_SOURCES app/KCMainFrameTest.cpp app/KCDeviceMenuTest.cpp app/KCKorel5ProgramTest.cpp app/KCImageShapeAppTest.cpp app/KCDeviceActionsTest.cpp)
