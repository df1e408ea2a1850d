list(APPEND KRLDV_CORE_TEST_SOURCES
  core/devopt/CDialogAutoDDCCtrlsTest.cpp
  core/devopt/KCDeviceDatabaseTest.cpp
  core/devopt/KCOptionPageModelTest.cpp
  core/devopt/KCOptionPagesSelfCheckTest.cpp
  core/devopt/KCOptionSettingsFileTest.cpp
  core/devopt/cDDEditTest.cpp
)
