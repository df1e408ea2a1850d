list(APPEND KRLDV_CORE_SOURCES
  doc/KCAlgoKeys.cpp
  doc/KCDataDoc.cpp
  doc/KCDataDocSerial.cpp
  doc/KCDataDocSerialize.cpp
  doc/KCDataMap.cpp
  doc/KCDocBase.cpp
  doc/KCImagePipeline.cpp
  doc/KCUndoHistory.cpp
  doc/KCUiAdrDataManager.cpp
  doc/cAlgoParam.cpp
  doc/cBufferSum.cpp
  doc/cByteBuffer.cpp
)
