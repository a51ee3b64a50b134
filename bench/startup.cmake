# The benchmark runs the editor itself; build it first.
set(BENCH_LIBS "")
cmake_language(DEFER CALL add_dependencies bench_startup plectaro)
