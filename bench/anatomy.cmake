velo_program(bench_anatomy SOURCES bench_anatomy.cpp USES anatomy)
