add_executable(bench_glm bench_glm.cpp)
target_link_libraries(bench_glm PRIVATE stats)
