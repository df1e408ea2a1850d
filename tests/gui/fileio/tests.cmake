list(APPEND KRLDV_GUI_TEST_SOURCES fileio/KCFileDialogTest.cpp)
list(APPEND KRLDV_GUI_TEST_SOURCES fileio/KCHandlerJobDialogsTest.cpp)
