set(FUZZ_LIBS plectaro_exchange)
