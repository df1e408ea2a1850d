list(APPEND KRLDV_CORE_SOURCES
  fileio/KCFile.cpp
)
