list(APPEND KRLDV_CORE_SOURCES
  doc/KCDataDoc.cpp
  doc/KCDataDocSerial.cpp
  doc/KCDataDocSerialize.cpp
  doc/KCDocBase.cpp
  doc/KCUiAdrDataManager.cpp
  doc/cAlgoParam.cpp
  doc/cBufferSum.cpp
  doc/cByteBuffer.cpp
)
