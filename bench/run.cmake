velo_program(bench_run SOURCES bench_run.cpp USES session)
target_include_directories(bench_run PRIVATE ${CMAKE_SOURCE_DIR}/tests)
velo_program(bench_latency SOURCES bench_latency.cpp USES session simulator_core)
velo_program(bench_intake SOURCES bench_intake.cpp USES intake simulator_core)
