list(APPEND KRLDV_CORE_TEST_SOURCES
  core/doc/KCDataDocTest.cpp
  core/doc/cKpf2ManagerTest.cpp
  core/doc/KCMalformedProjectTest.cpp
  core/doc/KCDataDocSerialTest.cpp
  core/doc/KCSerialSettingsTest.cpp
  core/doc/KCAlgoKeysTest.cpp
  core/doc/KCDataDocChecksumTest.cpp
  core/doc/KCImageShapeTest.cpp
  core/doc/KCSelectDeviceTest.cpp
  core/doc/KCUndoTest.cpp
  core/doc/KCUiAdrDataManagerTest.cpp
  core/doc/cBufferSumTest.cpp
  core/doc/cByteBufferTest.cpp
)
