list(APPEND KRLDV_CORE_TEST_SOURCES
  core/view/KCDataViewLayoutTest.cpp
  core/view/KCClipboardControllerTest.cpp
  core/view/KCDataViewModelTest.cpp
  core/view/KCIndexedColorTest.cpp
  core/view/cBufferSearchTest.cpp
  core/view/KCEditFieldModelTest.cpp
)
