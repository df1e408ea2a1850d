list(APPEND KRLDV_CORE_SOURCES
  serial/cCsvReader.cpp
  serial/cKrlSerialNumberHandler.cpp
  serial/cSerialDefFile.cpp
  serial/cSerialJournalAudit.cpp
  serial/KCSerialDefCtrl.cpp
  serial/KCSerialDispenser.cpp
  serial/KCSerialJournal.cpp
  serial/KCSerialSettings.cpp
  serial/KCSerialState.cpp
)
