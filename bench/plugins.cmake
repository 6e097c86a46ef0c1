velo_program(bench_plugins UI SOURCES bench_plugins.cpp USES head_run window)
velo_exports_plugin_functions(bench_plugins)
add_dependencies(bench_plugins temporal_snr)
