list(APPEND KRLDV_CORE_TEST_SOURCES
  core/serial/KCSerialDefCtrlTest.cpp
  core/serial/KCSerialDefCtrlLastTest.cpp
  core/serial/KCSerialDefCtrlStationsTest.cpp
)

# A station process for the tests that share one definition file between processes.
add_executable(krldv_serial_station core/serial/serial_station.cpp)
target_link_libraries(krldv_serial_station PRIVATE krldv_testsupport)
set_source_files_properties(core/serial/KCSerialDefCtrlStationsTest.cpp PROPERTIES
  COMPILE_DEFINITIONS "KRLDV_SERIAL_STATION=\"$<TARGET_FILE:krldv_serial_station>\"")
cmake_language(DEFER CALL add_dependencies krldv_core_tests krldv_serial_station)
