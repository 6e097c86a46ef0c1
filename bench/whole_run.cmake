velo_program(bench_whole_run SOURCES bench_whole_run.cpp USES stats)
