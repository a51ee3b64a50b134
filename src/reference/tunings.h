// The tunings library: one small text file per tuning in Data/My Tunings/, the file name being
// the tuning's name. The folder is filled with the built-in tunings the first time it is
// missing; after that the user's edits and deletions are left alone.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "score/score_records.h"

namespace plectaro {

// A tuning as the library keeps it. StringNote[i] is the tuning of string i + 1 (string 1 the
// highest) as an index 0..24 into that string's note names: 12 is the string's standard pitch,
// so the open pitch is standard pitch + StringNote - 12.
struct TuningData {
  int16_t NumStrings = 6;
  std::array<int16_t, kMaxStrings> StringNote{12, 12, 12, 12, 12, 12, 12};
  bool operator==(const TuningData&) const = default;

  // Open pitch of string 1..7.
  int pitch(int stringNumber) const;
};

// A tuning file could not be read, written or named; the message is one line for the user.
class TuningError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The track record keeps a tuning as semitone offsets from the standard pitches; these convert
// between the two. Offsets beyond an octave are clamped to the 25 names.
TuningInfo ToTuningInfo(const TuningData& tuning);
TuningData FromTuningInfo(const TuningInfo& tuning);

// The file text: NumStrings, then the StringNote of string 7 down to string 1, one number a
// line with a blank either side, lines ended by CR LF.
std::string WriteTuningText(const TuningData& tuning);
// Reads a tuning file's text. Numbers may carry blanks; the string count is taken through its
// integer part. Throws TuningError for a short file or a value out of range.
TuningData ReadTuningText(std::string_view text);

// A tuning typed as note names separated by blanks, from the lowest string up, the way
// guitarists write it ("E A D G B E", "D A D G B E"). The count of names is the string count
// (1..7). A name may be one of the string's own 25 names ("-B" for the B an octave below
// string 5), a plain note with sharps or flats ("Eb", "F#"), which takes the octave nearest
// the string's standard pitch (the lower one when both are as near), or a note with its
// octave number, middle C being C4 ("E1 A1 D2 G2" for a bass), which may lie any distance from
// the standard pitch. nullopt when a name is not a note or the pitch is more than an octave
// from the string's standard one without an octave number saying so.
std::optional<TuningInfo> ParseTuningNames(std::string_view text);

// The name a tuning box shows for a string's offset: one of the string's 25 names within an
// octave of its standard pitch, otherwise the note with its octave number ("G2"), so that a
// bass tuned far below the guitar's strings is shown as it is and kept when left alone.
std::string OffsetName(int stringNumber, int offset);

// The usual bass tuning for the string count: 4 strings E1 A1 D2 G2, 5 adds a low B0, 6 adds a
// high C3 as well. Other counts get the guitar's standard tuning (all offsets 0).
TuningInfo BassTuning(int strings);

// The built-in tunings in the order they are written on first run. Two names stand twice; the
// later entry is the one the library ends with.
const std::vector<std::pair<std::string, TuningData>>& BuiltInTunings();

// The tuning files under <app>/Data. Every call goes to the disk, so two windows that share
// the folder always see each other's changes.
class TuningLibrary {
 public:
  explicit TuningLibrary(const std::filesystem::path& dataFolder);

  const std::filesystem::path& folder() const { return folder_; }

  // First-run generation: when the folder is absent, creates it and writes the built-in
  // tunings; when it exists (even empty) does nothing. Returns true when it wrote the library.
  bool createAll() const;
  // Every tuning name, sorted; empty when the folder is missing.
  std::vector<std::string> names() const;
  bool exists(const std::string& name) const;
  // Throws TuningError when the name is invalid or the file is missing or damaged.
  TuningData load(const std::string& name) const;
  // Writes (or overwrites) a tuning; creates the folder if needed. Throws TuningError.
  void save(const std::string& name, const TuningData& tuning) const;
  // Removes a tuning; a missing one is not an error. Throws TuningError on failure.
  void remove(const std::string& name) const;
  // Deletes every tuning, the user's ones included, and writes the built-in library again.
  void restore() const;

  // A name can be a file name: not empty, no path separators, no leading or trailing blank,
  // not "." or "..".
  static bool validName(std::string_view name);

 private:
  std::filesystem::path pathOf(const std::string& name) const;
  std::filesystem::path folder_;
};

}  // namespace plectaro
