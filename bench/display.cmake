add_executable(bench_display bench_display.cpp)
target_link_libraries(bench_display PRIVATE display document stats)
