velo_program(bench_motion SOURCES bench_motion.cpp USES volume)
target_include_directories(bench_motion PRIVATE ${CMAKE_SOURCE_DIR}/tests)
velo_program(bench_motion_accuracy SOURCES bench_motion_accuracy.cpp motion_courses.cpp USES volume simulator_core)
target_include_directories(bench_motion_accuracy PRIVATE ${CMAKE_SOURCE_DIR}/tests)
