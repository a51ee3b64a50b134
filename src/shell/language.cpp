#include "shell/language.h"

#include <algorithm>
#include <stdexcept>

#include "score/file_io.h"
#include "score/text_codec.h"
#include "score/value_text.h"

namespace plectaro {

// The English table as text: "@form" opens a window's section, "key=text" is one line of it.
extern const char* const kEnglishTableText;

namespace {

const std::vector<LanguageSectionStart> kStarts = {
    {"frmWebsites", 13},           {"frm_BatchDrumImport", 33},   {"frmBandManager", 47},
    {"frmChordEditor", 82},        {"frmChordManager", 101},      {"frmChordPrinter", 157},
    {"frmDrumBeatGenerator", 177}, {"frmDrumMachine", 202},       {"frmFileProperties", 284},
    {"frmFretboardKnowledge", 323}, {"frmGlossary", 362},         {"frmGuitarTuner", 369},
    {"frmLessons", 411},           {"frmMain", 431},              {"frmMetronome", 824},
    {"frmMusicPaper", 875},        {"frmOptions", 893},           {"frmPitchPerfector", 955},
    {"frmScaleEditor", 995},       {"frmScaleManager", 1046},     {"frmScalePrinter", 1102},
    {"frmTrackProperties", 1120},  {"frmTuningLoader", 1151},     {"ntne_frmAddGoToPoint", 1156},
    {"ntne_frmAddTrack", 1171},    {"ntne_frmASCIIImport", 1186}, {"ntne_frmBarKeySig", 1212},
    {"ntne_frmBarTimeSig", 1225},  {"ntne_frmBatch", 1235},       {"ntne_frmBatchConvert", 1249},
    {"ntne_frmBend", 1266},        {"ntne_frmCoda", 1278},        {"ntne_frmCutCopyPaste", 1304},
    {"ntne_frmEditLines", 1328},   {"ntne_frmEndRepeat", 1344},   {"ntne_frmExport", 1351},
    {"ntne_frmGotoPoints", 1383},  {"ntne_frmGraceNote", 1392},   {"ntne_frmInsertBar", 1413},
    {"ntne_frmMIDIImport", 1423},  {"ntne_frmPageSetup", 1434},   {"ntne_frmPassword", 1446},
    {"ntne_frmPrint", 1456},       {"ntne_frmPrintPreview", 1473}, {"ntne_frmProgress", 1481},
    {"ntne_frmRandomBacking", 1486}, {"ntne_frmRemoveBar", 1521}, {"ntne_frmSpeedTrainer", 1532},
    {"ntne_frmText", 1545},        {"ntne_frmTranspose", 1552},   {"ntne_frmTremolo", 1565},
    {"ntne_frmTrill", 1577},       {"ntne_frmUpload", 1590},      {"ntne_frmFindReplace", 1627},
};

// The last section has no next one to stop it; it may run this far.
constexpr int kLastSectionLines = 30;

std::vector<LanguageSection> parseTable(std::string_view text) {
  std::vector<LanguageSection> table;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    pos = end + 1;
    if (line.empty()) continue;
    if (line.front() == '@') {
      table.push_back({std::string(line.substr(1)), {}});
      continue;
    }
    size_t eq = line.find('=');
    if (eq == std::string_view::npos || table.empty())
      throw std::logic_error("bad line in the English table: " + std::string(line));
    table.back().entries.emplace_back(std::string(line.substr(0, eq)),
                                      std::string(line.substr(eq + 1)));
  }
  return table;
}

const LanguageSection* findSection(std::string_view form) {
  for (const auto& s : EnglishTable())
    if (s.form == form) return &s;
  return nullptr;
}

}  // namespace

const std::vector<LanguageSectionStart>& LanguageSectionStarts() { return kStarts; }

int SectionStartLine(std::string_view form) {
  for (const auto& s : kStarts)
    if (form == s.form) return s.line;
  return 0;
}

const std::vector<LanguageSection>& EnglishTable() {
  static const std::vector<LanguageSection> table = parseTable(kEnglishTableText);
  return table;
}

const LanguageTexts& EnglishTexts(std::string_view form) {
  static const std::map<std::string, LanguageTexts, std::less<>> byForm = [] {
    std::map<std::string, LanguageTexts, std::less<>> m;
    for (const auto& s : EnglishTable())
      for (const auto& [k, v] : s.entries) m[s.form][k] = v;
    return m;
  }();
  static const LanguageTexts none;
  auto it = byForm.find(form);
  return it == byForm.end() ? none : it->second;
}

std::string WriteLanguageFile(const std::vector<LanguageSection>& table,
                              std::string_view languageName) {
  std::vector<std::string> lines = {
      "Plectaro 4 Language File",
      "Language: " + std::string(languageName),
      "Every line of this file has its fixed place: a text is known by its line number.",
      "Translate the texts only; never add or remove a line.",
      "Each window's texts begin at a fixed line; blank lines between windows are spare.",
      "A '&' marks the letter of a menu or button shortcut.",
      "Texts ending in 1 and 2 are joined around a name or number.",
      "Save the file in the Windows-1252 character set.",
      "",
      "",
      "",
      "",
  };
  for (size_t i = 0; i < kStarts.size(); ++i) {
    const int start = kStarts[i].line;
    const int limit = i + 1 < kStarts.size() ? kStarts[i + 1].line : start + kLastSectionLines;
    const LanguageSection* sec = nullptr;
    for (const auto& s : table)
      if (s.form == kStarts[i].form) sec = &s;
    lines.resize(start - 1);
    if (!sec) continue;
    if (start + static_cast<int>(sec->entries.size()) > limit)
      throw std::logic_error("language section " + sec->form + " runs into the next one");
    for (const auto& [key, text] : sec->entries) lines.push_back(text);
  }
  std::string out;
  for (const auto& l : lines) out += Utf8ToCp1252(l) + "\r\n";
  return out;
}

namespace {

LanguageTexts loadSection(const std::vector<std::string_view>& lines, std::string_view form) {
  LanguageTexts texts;
  const int start = SectionStartLine(form);
  const LanguageSection* sec = findSection(form);
  if (start == 0 || !sec) return texts;
  size_t n = static_cast<size_t>(start - 1);
  for (const auto& [key, english] : sec->entries) {
    if (n >= lines.size()) break;
    texts[key] = Cp1252ToUtf8(lines[n++]);
  }
  return texts;
}

}  // namespace

LanguageTexts LoadLanguage(std::string_view fileBytes, std::string_view form) {
  return loadSection(SplitLines(fileBytes), form);
}

LanguageTexts LoadLanguageFile(const std::filesystem::path& file, std::string_view form) {
  try {
    return LoadLanguage(ReadWholeFile(file, 4 << 20), form);
  } catch (const FileError&) {
    return {};
  }
}

namespace {

bool isMessageKey(std::string_view k) { return k.rfind("str_", 0) == 0 || k.rfind("txt_", 0) == 0; }

// Where each text of the English table stands in Messages::loaded_. The table's views stay
// valid: the table is built once and never changes.
struct MessageIndex {
  std::map<std::pair<std::string_view, std::string_view>, size_t> byFormKey;
  std::map<std::string_view, size_t, std::less<>> byMessageKey;  // str_ and txt_ keys
  std::vector<const std::string*> english;
};

const MessageIndex& messageIndex() {
  static const MessageIndex index = [] {
    MessageIndex x;
    for (const auto& s : EnglishTable()) {
      for (const auto& [k, v] : s.entries) {
        // A key met again replaces the earlier one, as a later line of the file would.
        if (isMessageKey(k)) x.byMessageKey[k] = x.english.size();
        x.byFormKey[{s.form, k}] = x.english.size();
        x.english.push_back(&v);
      }
    }
    return x;
  }();
  return index;
}

// The loaded text of an entry, or its English one.
const std::string& chosen(const std::vector<std::string>& loaded, size_t entry) {
  if (entry < loaded.size() && !loaded[entry].empty()) return loaded[entry];
  return *messageIndex().english[entry];
}

}  // namespace

void Messages::load(std::string_view fileBytes) {
  const MessageIndex& index = messageIndex();
  loaded_.resize(index.english.size());
  const auto lines = SplitLines(fileBytes);
  size_t entry = 0;
  for (const auto& s : EnglishTable()) {
    const int start = SectionStartLine(s.form);
    size_t n = static_cast<size_t>(start > 0 ? start - 1 : 0);
    for (size_t i = 0; i < s.entries.size(); ++i, ++entry) {
      if (start == 0 || n >= lines.size()) continue;
      // A blank line would leave a message box without words; keep the English one then.
      std::string v = Cp1252ToUtf8(lines[n++]);
      if (!v.empty()) loaded_[entry] = std::move(v);
    }
  }
}

const std::string& Messages::text(std::string_view form, std::string_view key) const {
  static const std::string none;
  const MessageIndex& index = messageIndex();
  auto it = index.byFormKey.find({form, key});
  return it == index.byFormKey.end() ? none : chosen(loaded_, it->second);
}

const std::string& Messages::str(std::string_view key) const {
  static const std::string none;
  const MessageIndex& index = messageIndex();
  auto it = index.byMessageKey.find(key);
  return it == index.byMessageKey.end() ? none : chosen(loaded_, it->second);
}

size_t Messages::size() const { return messageIndex().byMessageKey.size(); }

std::vector<std::string> ListLanguages(const std::filesystem::path& languagesFolder) {
  std::vector<std::string> names;
  std::error_code ec;
  for (auto it = std::filesystem::directory_iterator(languagesFolder, ec);
       !ec && it != std::filesystem::directory_iterator(); it.increment(ec)) {
    if (it->path().extension() == ".txt") names.push_back(it->path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace plectaro
