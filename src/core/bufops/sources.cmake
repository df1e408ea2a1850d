list(APPEND KRLDV_CORE_SOURCES
  bufops/KCBufferFillModel.cpp
  bufops/KCJoinLanesModel.cpp
  bufops/KCLaneJob.cpp
  bufops/KCShuffleBufferInitData.cpp
  bufops/KCShuffleBufferModel.cpp
  bufops/KCSplitBufferModel.cpp
  bufops/cBufferShuffle.cpp
  bufops/cBufferSplit.cpp
  bufops/cLaneCopy.cpp
  bufops/cLaneError.cpp
  bufops/cLaneNames.cpp
)
