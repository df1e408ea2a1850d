list(APPEND KRLDV_CORE_SOURCES
  engine/cChildProcess.cpp
  engine/KCEngine.cpp
  engine/KCEngineFactory.cpp
  engine/KCFlashromEngine.cpp
  engine/KCProductionRun.cpp
  engine/KCVirtualDeviceEngine.cpp
)
