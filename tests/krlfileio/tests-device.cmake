list(APPEND KRLFILEIO_TEST_SOURCES
  KCBinFileOTPTest.cpp
  KCDeviceDetectionTest.cpp
  KCJedecFileTest.cpp
  KCStaplFileTest.cpp
  KCSvfFileTest.cpp
)
