list(APPEND KRLDV_CORE_SOURCES
  view/KCDataViewLayout.cpp
  view/KCDataViewLayoutSet.cpp
  view/KCDataViewModel.cpp
  view/KCIndexedColor.cpp
)
