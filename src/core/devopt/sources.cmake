list(APPEND KRLDV_CORE_SOURCES
  devopt/CDialogAutoDDCCtrls.cpp
  devopt/KCDeviceDatabase.cpp
  devopt/KCOptionDefaults.cpp
  devopt/KCOptionJson.cpp
  devopt/KCOptionPageDesc.cpp
  devopt/KCOptionPageLibrary.cpp
  devopt/KCOptionPageModel.cpp
  devopt/KCOptionSettingsFile.cpp
  devopt/KCOptionTypeRegistry.cpp
  devopt/cDDEdit.cpp
  devopt/cDDListEdit.cpp
  devopt/cParamStcBase.cpp
)
