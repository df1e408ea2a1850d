list(APPEND KRLDV_CORE_TEST_SOURCES
  core/bufops/KCBufferFillModelTest.cpp
)
