list(APPEND KRLDV_CORE_TEST_SOURCES
  core/fileio/KCFileDialogCoreTest.cpp
  core/fileio/KCFileTypeTableTest.cpp
  core/fileio/KCDataDocPipelineTest.cpp
  core/fileio/cKrlCrc16Test.cpp
)
