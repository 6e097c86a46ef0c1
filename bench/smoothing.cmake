velo_program(bench_smoothing SOURCES bench_smoothing.cpp USES volume)
