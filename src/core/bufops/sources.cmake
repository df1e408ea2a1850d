list(APPEND KRLDV_CORE_SOURCES
  bufops/KCBufferFillModel.cpp
)
