list(APPEND KRLDV_CORE_SOURCES
  serial/cSerialDefFile.cpp
  serial/KCSerialDefCtrl.cpp
  serial/KCSerialSettings.cpp
  serial/KCSerialState.cpp
)
