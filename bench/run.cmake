add_executable(bench_run bench_run.cpp)
target_link_libraries(bench_run PRIVATE loop)
add_executable(bench_latency bench_latency.cpp)
target_link_libraries(bench_latency PRIVATE loop simulator_core)
