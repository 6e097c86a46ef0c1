velo_program(bench_classifier SOURCES bench_classifier.cpp USES classify)
