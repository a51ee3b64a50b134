set(FUZZ_LIBS plectaro_shell plectaro_score)
