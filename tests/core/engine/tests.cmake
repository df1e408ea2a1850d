list(APPEND KRLDV_CORE_TEST_SOURCES
  core/engine/cChildProcessTest.cpp
  core/engine/KCProductionRunTest.cpp
  core/engine/KCVirtualDeviceEngineTest.cpp
)
