list(APPEND KRLFILEIO_SOURCES
  KCBinFileOTP.cpp
  KCCheckedTextImage.cpp
  KCDeviceText.cpp
  KCJedecChecksum.cpp
  KCJedecFile.cpp
  KCJedecReader.cpp
  KCStaplCheck.cpp
  KCStaplCrc.cpp
  KCStaplFile.cpp
  KCSvfFile.cpp
  KCSvfSyntaxCheck.cpp
)
