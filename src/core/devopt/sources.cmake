list(APPEND KRLDV_CORE_SOURCES
  devopt/KCDeviceDatabase.cpp
)
