velo_program(bench_letters SOURCES bench_letters.cpp USES session simulator_core)
target_include_directories(bench_letters PRIVATE ${CMAKE_SOURCE_DIR}/tests)
