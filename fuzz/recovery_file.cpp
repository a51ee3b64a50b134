// Recovery file reader: any bytes either restore a document or are refused with FileError, and
// a document that was restored writes out and restores again to the same Score.
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
    ParseRecoveryFile(bytes, info, doc, settings);
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
  if (!(back.score == doc.score) || again.savedAt != info.savedAt) std::abort();
  return 0;
}
