add_executable(bench_run bench_run.cpp)
target_link_libraries(bench_run PRIVATE loop)
