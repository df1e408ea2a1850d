list(APPEND KRLDV_CORE_SOURCES
  panels/KCDeviceCountModel.cpp
)
