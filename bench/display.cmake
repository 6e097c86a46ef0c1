velo_program(bench_display UI SOURCES bench_display.cpp USES display document stats)
