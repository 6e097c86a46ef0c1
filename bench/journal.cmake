velo_program(bench_journal SOURCES bench_journal.cpp USES journal)
velo_program(bench_run_journal SOURCES bench_run_journal.cpp USES session)
