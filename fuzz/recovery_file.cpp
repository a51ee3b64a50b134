// Recovery file reader: any bytes either restore a document or are refused with FileError, and
// a document that was restored writes out and restores again to the same Score.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "score/file_io.h"
#include "shell/recovery.h"

namespace {

// A file holds the notes of a track's strings only, while the reader takes a note for any of the
// seven slots (the editor likewise keeps notes on strings a track no longer has). A file whose
// string count was damaged so reads notes the writer leaves out; those hidden slots are blanked
// before comparing.
plectaro::Score withoutHiddenSlots(plectaro::Score s) {
  for (plectaro::Track& tr : s.Tracks)
    for (auto& bar : tr.Bars)
      for (size_t k = 0; k < bar->Beats.size(); ++k)
        for (size_t str = static_cast<size_t>(std::max<int>(tr.Tuning.NumStrings, 0));
             str < plectaro::kMaxStrings; ++str)
          if (!(bar->Beats[k].Notes[str] == plectaro::NoteSlot{}))
            bar.mut().Beats[k].Notes[str] = plectaro::NoteSlot{};
  return s;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plectaro;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const MemorySettingsStore settings;
  RecoveryFile info;
  Document doc;
  try {
    // A small allowance of undeclared beats, as for the music file target.
    ParseRecoveryFile(bytes, info, doc, settings, 256);
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
  if (!(back.score == withoutHiddenSlots(doc.score)) || again.savedAt != info.savedAt) std::abort();
  return 0;
}
