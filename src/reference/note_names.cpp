#include "reference/note_names.h"

#include <array>

#include "score/score_records.h"
#include "score/value_text.h"

namespace plectaro {

namespace {
constexpr std::array<const char*, 12> kPitchClassNames = {"C",  "C#", "D",  "D#", "E",  "F",
                                                          "F#", "G",  "G#", "A",  "A#", "B"};
}  // namespace

const char* PitchClassName(int pitch) { return kPitchClassNames[static_cast<size_t>(((pitch % 12) + 12) % 12)]; }

int StandardPitchOfString(int stringNumber) {
  if (stringNumber < 1 || stringNumber > kMaxStrings) return 0;
  return kStandardStringPitch[static_cast<size_t>(stringNumber - 1)];
}

std::string PitchToNoteName(int stringNumber, int pitch) {
  const int standard = StandardPitchOfString(stringNumber);
  if (standard == 0) return {};
  const int offset = pitch - standard;
  if (offset < -kStandardNoteIndex || offset > kStandardNoteIndex) return {};
  std::string name = offset < 0 ? "-" : offset > 0 ? "+" : "";
  return name + PitchClassName(pitch);
}

int NoteNameToPitch(int stringNumber, std::string_view noteName) {
  const int standard = StandardPitchOfString(stringNumber);
  if (standard == 0) return 0;
  noteName = Trim(noteName);
  for (int pitch = standard - kStandardNoteIndex; pitch <= standard + kStandardNoteIndex; ++pitch)
    if (PitchToNoteName(stringNumber, pitch) == noteName) return pitch;
  return 0;
}

std::vector<std::string> NoteNamesOfString(int stringNumber) {
  std::vector<std::string> names;
  const int standard = StandardPitchOfString(stringNumber);
  if (standard == 0) return names;
  for (int pitch = standard - kStandardNoteIndex; pitch <= standard + kStandardNoteIndex; ++pitch)
    names.push_back(PitchToNoteName(stringNumber, pitch));
  return names;
}

}  // namespace plectaro
