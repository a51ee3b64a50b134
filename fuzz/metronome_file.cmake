set(FUZZ_LIBS plectaro_tools)
