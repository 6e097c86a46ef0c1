velo_program(bench_journal SOURCES bench_journal.cpp USES journal)
