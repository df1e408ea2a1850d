# Shared text handling, the hex formats and raw binary.
list(APPEND KRLFILEIO_SOURCES
  KCTextScanner.cpp
  KCLoadTarget.cpp
  KCHexRecordFormat.cpp
  KCHexRecordWriter.cpp
  KCHexRecordPlan.cpp
  KCMappedFile.cpp
  KCFdOutputStream.cpp
  KCHexFileIntel.cpp
  KCHexFileMotorola.cpp
  KCHexFileTI.cpp
  KCBinFile.cpp
)
