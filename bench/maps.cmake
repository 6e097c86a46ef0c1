velo_program(bench_maps SOURCES bench_maps.cpp USES stats)
