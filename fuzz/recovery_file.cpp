// Recovery file reader: any bytes either restore a document or are refused with FileError, and
// a document once restored and written restores again to the same Score.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "score/file_io.h"
#include "shell/recovery.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plectaro;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const MemorySettingsStore settings;
  RecoveryFile info;
  Document doc;
  try {
    // A small allowance of undeclared beats, as for the music file target.
    ParseRecoveryFile(bytes, info, doc, settings, kFuzzAllowance);
  } catch (const FileError&) {
    return 0;
  }
  RecoveryFile again;
  Document back;
  try {
    ParseRecoveryFile(RecoveryFileBytes(doc, info.savedAt), again, back, settings);
  } catch (const FileError&) {
    // A file name holding CR LF cannot be written back on one line; anything else must.
    if (info.documentName.find("\r\n") == std::string::npos) std::abort();
    return 0;
  }
  // A Score may hold what no file carries (notes above a damaged string count, an empty title
  // where the new-score title then stands) and the writer leaves that out by design; so the
  // check is that a document once written restores to itself.
  RecoveryFile third;
  Document again2;
  ParseRecoveryFile(RecoveryFileBytes(back, again.savedAt), third, again2, settings);
  if (!(again2.score == back.score) || third.savedAt != info.savedAt) std::abort();
  return 0;
}
