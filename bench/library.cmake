set(BENCH_LIBS plectaro_reference)
