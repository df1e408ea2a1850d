list(APPEND KRLDV_CORE_TEST_SOURCES
  core/panels/KCDeviceCountModelTest.cpp
)
