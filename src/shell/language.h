// Interface languages. A language file is strictly positional: 12 header lines, then one section
// per window starting at a fixed line, each read line by line in a fixed order of keys. A key
// is a control's object name (its caption), "Caption" for the window title, or a message
// variable "str_...". The order of keys per window is this program's own table (the English
// table in language_table.cpp); English.txt is written from it, so the two cannot drift.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

inline constexpr int kLanguageHeaderLines = 12;

struct LanguageSectionStart {
  const char* form;
  int line;  // 1-based line of the section's first text
};

// Every window with texts, in file order.
const std::vector<LanguageSectionStart>& LanguageSectionStarts();
// 0 for a window that has no section.
int SectionStartLine(std::string_view form);

using LanguageTexts = std::map<std::string, std::string, std::less<>>;

struct LanguageSection {
  std::string form;
  std::vector<std::pair<std::string, std::string>> entries;  // key, English text
};

// The built-in English table: every window's keys in file order with their English texts.
// They are also the fallback captions until a language file has been read.
const std::vector<LanguageSection>& EnglishTable();
// English texts of one window (empty for an unknown window).
const LanguageTexts& EnglishTexts(std::string_view form);

// The positional file for a table: header, every section at its start line, blank lines
// between. Throws std::logic_error when a section runs into the next one.
std::string WriteLanguageFile(const std::vector<LanguageSection>& table,
                              std::string_view languageName);

// Reads one window's texts from a file's contents (Windows-1252 bytes, CR LF or LF). A file
// that ends early gives the texts up to its end; the rest keep what the window has.
LanguageTexts LoadLanguage(std::string_view fileBytes, std::string_view form);
// The same from <app>/Data/CurrentLanguage.txt; a missing file gives nothing.
LanguageTexts LoadLanguageFile(const std::filesystem::path& file, std::string_view form);

// The message texts (str_..., and this program's own txt_...) of every window, read once at start-up. Any key not in the
// language file keeps its English text, so a message is never blank.
class Messages {
 public:
  Messages() = default;  // English
  void load(std::string_view fileBytes);
  const std::string& str(std::string_view key) const;
  // Any text of any window, for code that shows a window's texts outside the window itself
  // (the password question, for one).
  const std::string& text(std::string_view form, std::string_view key) const;
  size_t size() const;

 private:
  // One text per entry of the English table, in table order; an empty one (or none at all,
  // before the first load) means the English text. Start-up then costs one allocation, not a
  // map of every caption of every window.
  std::vector<std::string> loaded_;
};

// The language files of <app>/Data/Languages, by name without ".txt", sorted.
std::vector<std::string> ListLanguages(const std::filesystem::path& languagesFolder);

}  // namespace plectaro
