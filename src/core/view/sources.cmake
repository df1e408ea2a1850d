list(APPEND KRLDV_CORE_SOURCES
  view/KCDataViewCursor.cpp
  view/KCDataViewLayout.cpp
  view/KCDataViewLayoutSet.cpp
  view/KCClipboardController.cpp
  view/KCCopyAs.cpp
  view/KCDataViewModel.cpp
  view/KCIndexedColor.cpp
  view/KCKrlBinary.cpp
  view/KCMouseController.cpp
  view/KCNavigationController.cpp
  view/KCValueEditController.cpp
)
