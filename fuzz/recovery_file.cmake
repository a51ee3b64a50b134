set(FUZZ_LIBS plectaro_shell)
