add_executable(bench_motion bench_motion.cpp)
target_include_directories(bench_motion PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(bench_motion PRIVATE volume)
