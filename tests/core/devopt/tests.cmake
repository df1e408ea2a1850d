list(APPEND KRLDV_CORE_TEST_SOURCES
  core/devopt/KCDeviceDatabaseTest.cpp
)
