#include "reference/chords.h"

#include <fstream>
#include <system_error>

#include "reference/library_files.h"
#include "score/text_codec.h"
#include "score/value_text.h"

namespace plectaro {

namespace fs = std::filesystem;

const std::array<const char*, 12> kChordRoots = {"A", "A#", "B", "C", "C#", "D",
                                                 "D#", "E", "F", "F#", "G", "G#"};

namespace {

// The built-in library: per suffix, the six frets of each root from string 1 to string 6.
// Its duplicates and open-string simplifications are part of the library as users know it.
struct DefaultChordRow {
  const char* suffix;
  std::array<const char*, 12> frets;
};
const DefaultChordRow kDefaultChords[] = {
    {"+", {"122301", "233012", "300123", "011230", "122301", "233012", "300123", "011230", "122301", "233012", "300123", "011230"}},
    {"0", {"212102", "020210", "101021", "212102", "020210", "101021", "212102", "020210", "101021", "212102", "020210", "101021"}},
    {"11", {"000000", "111011", "002100", "010010", "101121", "010000", "120111", "001000", "110101", "001210", "100001", "211112"}},
    {"11-9", {"020000", "101011", "002100", "010210", "101021", "210002", "020110", "001000", "112101", "000210", "100021", "211102"}},
    {"13", {"000000", "110011", "001100", "010000", "101111", "000000", "110111", "001000", "110001", "001110", "000000", "111111"}},
    {"6", {"022200", "130011", "201122", "010200", "121311", "202002", "310113", "001220", "112001", "223112", "000020", "111131"}},
    {"6 9", {"002200", "110011", "201122", "010000", "121111", "002000", "110111", "001220", "110001", "221112", "000000", "111111"}},
    {"7", {"020200", "131011", "202102", "010210", "101321", "212002", "320113", "001020", "112101", "023210", "100021", "211132"}},
    {"7+5", {"120301", "231012", "300103", "011210", "102301", "213012", "300123", "011030", "122101", "033010", "100121", "011230"}},
    {"7+9", {"010200", "121011", "202002", "010110", "001220", "112001", "220112", "000020", "111101", "022200", "100011", "201122"}},
    {"7+9-5", {"310103", "021010", "102001", "013110", "000220", "111031", "220102", "030010", "101101", "012200", "100311", "201022"}},
    {"7-5", {"320103", "031010", "102101", "013210", "100321", "211032", "320103", "031010", "102101", "013210", "100321", "211032"}},
    {"7-9", {"020200", "101011", "202102", "010210", "101021", "212002", "020110", "001020", "112101", "020210", "100021", "211102"}},
    {"7sus4", {"030000", "101111", "002200", "110311", "201422", "310003", "421114", "002000", "113111", "000220", "110031", "221142"}},
    {"9", {"000200", "111011", "202102", "010010", "101121", "012000", "120111", "001020", "110101", "021210", "100001", "211112"}},
    {"9+5", {"100301", "211012", "300103", "011010", "102101", "013010", "100121", "011030", "120101", "031010", "100101", "011210"}},
    {"9-5", {"300103", "011010", "102101", "013010", "100121", "011030", "120101", "031010", "100101", "011210", "100301", "211012"}},
    {"m", {"012200", "123311", "200022", "310133", "021240", "132001", "203112", "000220", "111331", "222402", "330013", "401124"}},
    {"m maj7", {"011200", "122301", "203012", "300123", "011230", "122001", "233012", "000120", "011230", "122301", "230012", "300123"}},
    {"m11", {"000000", "111111", "002000", "110011", "001120", "010000", "121111", "000000", "110111", "001200", "110001", "201112"}},
    {"m13", {"000000", "110111", "001000", "110001", "001110", "000000", "111111", "000000", "110011", "001100", "010000", "101111"}},
    {"m6", {"012200", "120311", "201022", "310103", "021210", "102001", "213112", "000220", "111031", "222102", "030010", "101121"}},
    {"m7", {"010200", "121311", "202002", "310113", "001220", "112001", "223112", "000020", "111131", "022200", "130011", "201122"}},
    {"m7-5", {"310103", "021210", "102001", "213112", "000220", "111031", "222102", "030010", "101121", "012200", "120311", "201022"}},
    {"m9", {"000200", "111311", "202002", "310013", "001120", "012000", "123111", "000020", "110131", "021200", "130001", "201112"}},
    {"m9-5", {"300103", "011210", "102001", "213012", "000120", "011030", "122101", "030010", "100121", "011200", "120301", "201012"}},
    {"Maj", {"022200", "133011", "204122", "010230", "121341", "232002", "300113", "001220", "112301", "223412", "300023", "411134"}},
    {"maj13", {"001000", "110001", "001110", "000000", "111111", "000000", "110011", "001100", "010000", "101111", "000000", "110111"}},
    {"maj7", {"021200", "132001", "203112", "000220", "111331", "222002", "330013", "001120", "012200", "123311", "200022", "310133"}},
    {"maj7+5", {"121301", "232002", "300113", "001220", "112301", "223012", "300023", "011130", "022200", "133011", "200122", "010230"}},
    {"maj7-5", {"021200", "132001", "203112", "000220", "111331", "222002", "330013", "001120", "012200", "123311", "200022", "310133"}},
    {"maj9", {"001200", "112001", "203112", "000020", "111131", "022000", "130011", "001120", "010200", "121311", "200002", "310113"}},
    {"sus4", {"032000", "103111", "000220", "110331", "221442", "330003", "401114", "002200", "113311", "200422", "310033", "421144"}},
};

bool numericFret(std::string_view text, int& fret) {
  text = Trim(text);
  if (text.empty() || text.size() > 4) return false;
  int v = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    v = v * 10 + (c - '0');
  }
  fret = v;
  return true;
}

// One generated file: no barre, at the nut, six strings all played, the tuning lines as plain
// numbers, and an empty seventh fret line.
std::string defaultChordText(const char* frets) {
  std::string t;
  t += "\r\n";
  t += NumberLine(0) + "\r\n";
  t += NumberLine(6) + "\r\n";
  for (int16_t p : kLibraryTuning) t += std::to_string(p) + "\r\n";
  for (int i = 0; i < kChordStrings; ++i) t += NumberLine(0) + "\r\n";
  for (int i = 0; i < 6; ++i) t += std::string(1, frets[i]) + "\r\n";
  t += "\r\n";
  return t;
}

}  // namespace

bool ChordData::absoluteFret(int i, int& fret) const {
  if (i < 0 || i >= kChordStrings || !numericFret(Frets[static_cast<size_t>(i)], fret)) return false;
  fret += StartFret;
  return true;
}

fs::path ChordFolder(const fs::path& dataFolder) { return dataFolder / "My Chords"; }

bool CreateAllChords(const fs::path& dataFolder) {
  const fs::path folder = ChordFolder(dataFolder);
  if (!CreateLibraryFolder(folder)) return false;
  for (size_t root = 0; root < kChordRoots.size(); ++root) {
    for (const DefaultChordRow& row : kDefaultChords) {
      const std::string name = std::string(kChordRoots[root]) + " " + row.suffix;
      WriteNewLibraryFile(folder / name, name, defaultChordText(row.frets[root]));
    }
  }
  return true;
}

void DeleteAllChords(const fs::path& dataFolder) { DeleteLibraryFolder(ChordFolder(dataFolder)); }

void RestoreChords(const fs::path& dataFolder) {
  DeleteAllChords(dataFolder);
  CreateAllChords(dataFolder);
}

std::vector<std::string> ListChordNames(const fs::path& dataFolder) {
  return ListLibraryFolder(ChordFolder(dataFolder));
}

std::string ChordFileText(const ChordData& c) {
  std::string t;
  // Only the exact text "1" marks a barre, so it is written without the number's blanks.
  t += c.Barre ? "1\r\n" : "\r\n";
  t += NumberLine(c.StartFret) + "\r\n";
  t += NumberLine(c.NumStrings) + "\r\n";
  for (int16_t p : c.Tuning) t += NumberLine(p) + "\r\n";
  for (int16_t f : c.Fingers) t += NumberLine(f) + "\r\n";
  // An unused string is written as one blank so that no line of the file is empty.
  for (const std::string& f : c.Frets) t += (f.empty() ? std::string(" ") : Utf8ToCp1252(f)) + "\r\n";
  return t;
}

ChordData ParseChordFile(std::string_view bytes, const std::string& what) {
  LineReader in(bytes, what);
  ChordData c;
  c.Barre = in.line() == "1";
  c.StartFret = in.number();
  c.NumStrings = in.number();
  for (int16_t& p : c.Tuning) p = in.number();
  for (int16_t& f : c.Fingers) f = in.number();
  for (std::string& f : c.Frets) f = in.text();
  return c;
}

ChordData LoadChordFile(const fs::path& dataFolder, const std::string& name) {
  const fs::path path = LibraryFile(ChordFolder(dataFolder), name);
  return ParseChordFile(ReadLibraryFile(path, name), name);
}

void SaveChordFile(const fs::path& dataFolder, const std::string& name, const ChordData& chord) {
  const fs::path folder = ChordFolder(dataFolder);
  const fs::path path = LibraryFile(folder, name);
  std::error_code ec;
  fs::create_directories(folder, ec);
  WriteLibraryFile(path, name, ChordFileText(chord));
}

bool FileExists(const fs::path& path) {
  std::error_code ec;
  if (!fs::is_regular_file(path, ec)) return false;
  std::ifstream in(path, std::ios::binary);
  return static_cast<bool>(in);
}

bool ChordExists(const fs::path& dataFolder, const std::string& name) {
  return ValidLibraryName(name) && FileExists(ChordFolder(dataFolder) / name);
}

}  // namespace plectaro
