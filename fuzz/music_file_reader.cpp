// Feeds arbitrary plain text to the music file reader, then writes what it read and reads
// that again: the reader must never crash, hang or allocate without bound, and whatever it
// accepts must survive its own writer.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "score/file_io.h"
#include "score/music_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plectaro;
  std::string_view plain(reinterpret_cast<const char*>(data), size);
  Score s;
  try {
    // A damaged file still gives a Score, and that Score must survive the writer too.
    // A small allowance of undeclared beats: a big one only makes each run allocate more.
    if (ReadMusicText(plain, s, nullptr, kFuzzAllowance) == ReadOutcome::WrongFile) return 0;
  } catch (const FileError&) {
    return 0;  // declared more than the file holds: refused cleanly
  }
  Score again;
  if (ReadMusicText(WriteMusicText(s), again) != ReadOutcome::Ok) __builtin_trap();
  return 0;
}
