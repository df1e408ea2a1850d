list(APPEND KRLDV_GUI_TEST_SOURCES devopt/KCDeviceOptionsTest.cpp)
