// Writes the English language file from the built-in table:
//   plectaro-make-language data/Languages/English.txt
#include <cstdio>
#include <exception>

#include "score/file_io.h"
#include "shell/language.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s OUTPUT.txt\n", argv[0]);
    return 2;
  }
  try {
    plectaro::WriteFileAtomically(argv[1],
                                  plectaro::WriteLanguageFile(plectaro::EnglishTable(), "English"));
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
  return 0;
}
