list(APPEND KRLDV_CORE_SOURCES
  view/KCDataViewLayout.cpp
  view/KCDataViewLayoutSet.cpp
  view/KCClipboardController.cpp
  view/KCCopyAs.cpp
  view/KCDataViewModel.cpp
  view/KCIndexedColor.cpp
  view/KCKrlBinary.cpp
  view/KCEditPatternState.cpp
  view/KCEditFieldModel.cpp
  view/KCEditByteModel.cpp
  view/KCEditCharModel.cpp
  view/KCEditWordModel.cpp
  view/cBufferSearch.cpp
  view/KCSearchHits.cpp
  view/KCSearchModel.cpp
)
