velo_program(bench_trials SOURCES bench_trials.cpp USES classify)
