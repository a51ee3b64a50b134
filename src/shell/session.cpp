#include "shell/session.h"

#include "score/file_io.h"
#include "score/new_score.h"
#include "score/value_text.h"

#include <algorithm>
#include <ctime>
#include "shell/qt_settings_store.h"

namespace plectaro {

namespace {

bool startsWith(const std::string& s, std::string_view p) { return s.rfind(p, 0) == 0; }

std::string lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& args) {
  CommandLine cmd;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--home") {
      if (i + 1 >= args.size()) {
        cmd.error = "--home needs a folder";
        return cmd;
      }
      cmd.home = args[++i];
    } else if (startsWith(a, "--home=")) {
      cmd.home = a.substr(7);
    } else if (a == "--print-startup-time") {
      cmd.printStartupTime = true;
    } else if (startsWith(a, "-") && a.size() > 1) {
      cmd.error = "unknown option " + a;
      return cmd;
    } else if (startsWith(lower(a), "http://") || startsWith(lower(a), "https://")) {
      cmd.webAddress = a;
    } else if (startsWith(a, "file://")) {
      cmd.file = a.substr(7);
    } else if (cmd.file.empty()) {
      cmd.file = a;
    }
  }
  return cmd;
}

void PrepareDataFolder(const AppFolder& folder,
                       const std::vector<std::filesystem::path>& seedFolders) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::create_directories(folder.data() / "Languages", ec);
  for (const fs::path& seed : seedFolders) {
    const fs::path from = seed / "Languages";
    if (!fs::is_directory(from, ec)) continue;
    if (fs::equivalent(from, folder.data() / "Languages", ec)) break;
    for (auto it = fs::directory_iterator(from, ec); !ec && it != fs::directory_iterator();
         it.increment(ec)) {
      const fs::path to = folder.data() / "Languages" / it->path().filename();
      if (!fs::exists(to, ec)) fs::copy_file(it->path(), to, ec);
    }
    break;
  }
  const fs::path current = folder.data() / "CurrentLanguage.txt";
  if (!fs::exists(current, ec))
    fs::copy_file(folder.data() / "Languages" / "English.txt", current, ec);
}

void DelTempFiles(const AppFolder& folder) {
  std::error_code ec;
  for (const char* name : {"temp", "temp2"}) {
    const auto p = folder.data() / name;
    if (std::filesystem::is_regular_file(p, ec)) std::filesystem::remove(p, ec);
  }
}

Session::Session(AppFolder folder, Prompter& prompter)
    : folder_(std::move(folder)),
      prompter_(prompter),
      store_(std::make_unique<QtSettingsStore>(folder_.settingsFile())),
      files_(doc_, *store_, ini_, messages_, prompter) {
  // A saved document has nothing left to recover.
  files_.saved = [this] {
    if (autosave_) autosave_->discard();
  };
}

Session::~Session() = default;

bool Session::start(const CommandLine& cmd, const std::vector<std::filesystem::path>& seedFolders) {
  // The language comes first so that every message of the start-up is in the user's language;
  // the language file lives in the data folder, so that is made ready just before.
  PrepareDataFolder(folder_, seedFolders);
  DelTempFiles(folder_);
  try {
    messages_.load(ReadWholeFile(languageFile(), 4 << 20));
  } catch (const FileError&) {
    // No language file: the English texts stay.
  }

  std::error_code ec;
  firstRun_ = !std::filesystem::exists(folder_.iniFile(), ec);
  LoadINISettings(ini_, folder_.iniFile());
  InitScore(doc_, *store_);
  FretboardStyle = std::clamp<int>(ParseI32(store_->GetSetting("AESTHETIC", "DONOTCHANGE1", "0")), 0, 2);
  FretboardMarker = ParseI32(store_->GetSetting("AESTHETIC", "DONOTCHANGE2", "0")) != 0 ? 1 : 0;
  startAddress_ = cmd.webAddress;
  // Nothing to lose in the empty document of a fresh start.
  doc_.ScoreChanged = false;

  autosave_ = std::make_unique<Autosave>(folder_.data());
  // Work rescued from a crash comes before the file of the command line: the user can open that
  // again, but the rescued edits exist nowhere else.
  const bool recovered = !cmd.printStartupTime && offerRecovery();

  bool opened = true;
  // A drumbeat or metronome file is for its tool, which the window opens once it is up.
  std::string ext = std::filesystem::path(cmd.file).extension().string();
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (!recovered && !cmd.file.empty() && ext != ".p4d" && ext != ".p4m") {
    std::filesystem::path p = std::filesystem::weakly_canonical(cmd.file, ec);
    opened = files_.ForceOpenFile(ec ? cmd.file : p.string());
  }

  if (firstRun_) {
    SetDefaultVars(*store_);
    // The first-run defaults are new-document defaults; an untouched empty document follows them.
    if (doc_.score.CurrentFileName.empty() && !doc_.ScoreChanged) {
      InitScore(doc_, *store_);
      doc_.ScoreChanged = false;
    }
    try {
      SaveINISettings(ini_, folder_.iniFile());
    } catch (const FileError& e) {
      prompter_.message(messages_.str("str_FileError") + "\n" + e.what(),
                        messages_.str("str_Error"), MessageIcon::Warning);
    }
  }
  return opened;
}

void Session::shutdown() {
  if (autosave_) autosave_->discard();
  store_->SaveSetting("AESTHETIC", "DONOTCHANGE1", std::to_string(FretboardStyle));
  store_->SaveSetting("AESTHETIC", "DONOTCHANGE2", std::to_string(FretboardMarker));
  store_->sync();
  DelTempFiles(folder_);
  try {
    SaveINISettings(ini_, folder_.iniFile());
  } catch (const FileError& e) {
    prompter_.message(messages_.str("str_FileError") + "\n" + e.what(),
                      messages_.str("str_Error"), MessageIcon::Warning);
  }
}

bool Session::autosaveNow(std::time_t now) {
  if (!autosave_) return false;
  try {
    return autosave_->save(doc_, now);
  } catch (const FileError&) {
    // A full disk must not pester the user every minute; the last good recovery file stays.
    return false;
  }
}

namespace {

std::string localTimeText(std::time_t t) {
  std::tm tm{};
  localtime_r(&t, &tm);
  char text[32];
  return std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &tm) ? text : "?";
}

}  // namespace

bool Session::offerRecovery() {
  const auto str = [this](std::string_view key) -> const std::string& { return messages_.str(key); };
  for (RecoveryFile& f : FindRecoveryFiles(folder_.data())) {
    Document restored;
    try {
      ReadRecoveryFile(f, restored, *store_);
    } catch (const FileError&) {
      const auto aside = SetRecoveryFileAside(f.path);
      prompter_.message(str("txt_RecoveryDamaged1") + aside.string() + str("txt_RecoveryDamaged2"),
                        str("str_Error"), MessageIcon::Warning);
      continue;
    }
    const std::string name = f.documentName.empty()
                                 ? str("txt_Unsaved")
                                 : std::filesystem::path(f.documentName).filename().string();
    // Yes is the default answer, so that Enter keeps the work; Cancel (or closing the question)
    // keeps the file for the next start, and only No lets it go.
    const Answer a = prompter_.yesNoCancel(str("txt_Recover1") + name + str("txt_Recover2") +
                                               localTimeText(f.savedAt) + str("txt_Recover3"),
                                           str("txt_RecoverTitle"));
    if (a == Answer::Cancel) continue;
    RemoveRecoveryFile(f.path);
    if (a == Answer::No) continue;
    doc_ = std::move(restored);
    // At once under this editor's own file, so that a second crash loses nothing either.
    autosaveNow(std::time(nullptr));
    return true;
  }
  return false;
}

std::vector<std::string> Session::languages() const {
  return ListLanguages(folder_.data() / "Languages");
}

bool Session::chooseLanguage(const std::string& name) {
  try {
    const std::string bytes = ReadWholeFile(folder_.data() / "Languages" / (name + ".txt"), 4 << 20);
    WriteFileAtomically(languageFile(), bytes);
    return true;
  } catch (const FileError& e) {
    prompter_.message(messages_.str("str_FileError") + "\n" + e.what(), messages_.str("str_Error"),
                      MessageIcon::Warning);
    return false;
  }
}

}  // namespace plectaro
