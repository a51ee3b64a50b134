set(FUZZ_LIBS plectaro_reference)
