list(APPEND KRLDV_CORE_SOURCES
  fileio/KCFile.cpp
  fileio/KCFileDialogCore.cpp
  fileio/KCFileTypeTable.cpp
  fileio/KCFormatNames.cpp
  fileio/KCHostFileMessage.cpp
  fileio/KCSaveFile.cpp
  fileio/cKrlCrc16.cpp
)
