list(APPEND KRLDV_CORE_SOURCES
  host/KCClassRegistry.cpp
  host/KCDebugLog.cpp
  host/KCFormat.cpp
  host/KCNumberText.cpp
  host/KCHostStringTable.cpp
  host/KCMainProgDataExChange.cpp
  host/KCMessageMarks.cpp
)
