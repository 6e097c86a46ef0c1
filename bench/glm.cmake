velo_program(bench_glm SOURCES bench_glm.cpp USES stats)
