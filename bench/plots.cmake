velo_program(bench_plots UI SOURCES bench_plots.cpp USES plots volume_ui)
