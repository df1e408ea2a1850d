list(APPEND KRLDV_GUI_TEST_SOURCES search/KCSearchDlgBoxTest.cpp)
