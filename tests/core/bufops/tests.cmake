list(APPEND KRLDV_CORE_TEST_SOURCES
  core/bufops/KCBufferFillModelTest.cpp
  core/bufops/KCLaneJobTest.cpp
  core/bufops/cBufferShuffleTest.cpp
  core/bufops/cBufferSplitTest.cpp
  core/bufops/cLaneNamesTest.cpp
)
