list(APPEND KRLFILEIO_TEST_SOURCES
  KCLoadTargetTest.cpp
  KCHexFileIntelTest.cpp
  KCHexFileMotorolaTest.cpp
  KCHexRecordPlanTest.cpp
  KCHexFileTITest.cpp
  KCBinFileTest.cpp
  KCMalformedInputTest.cpp
  KCSrecCatDiffTest.cpp
  KCMappedFileTest.cpp
  KCStreamLimitTest.cpp
)
