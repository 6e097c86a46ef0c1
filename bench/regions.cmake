velo_program(bench_regions SOURCES bench_regions.cpp USES regions)
