list(APPEND KRLFILEIO_TEST_SOURCES
  KCBinFileOTPTest.cpp
  KCJedecFileTest.cpp
  KCStaplFileTest.cpp
  KCSvfFileTest.cpp
)
