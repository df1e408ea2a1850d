list(APPEND KRLDV_CORE_TEST_SOURCES
  core/host/KCFormatTest.cpp
  core/host/KCNumberTextTest.cpp
  core/host/KCHostStringTableTest.cpp
)
