list(APPEND KRLDV_GUI_TEST_SOURCES serial/KCSerialDefDlgTest.cpp)
