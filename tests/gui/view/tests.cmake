list(APPEND KRLDV_GUI_TEST_SOURCES view/KCDataViewTest.cpp)
