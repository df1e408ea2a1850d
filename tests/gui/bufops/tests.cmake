list(APPEND KRLDV_GUI_TEST_SOURCES
  bufops/KCBufferFillTest.cpp
  bufops/KCJoinLanesTest.cpp
  bufops/KCShuffleBufferTest.cpp
  bufops/KCSplitBufferTest.cpp
)
