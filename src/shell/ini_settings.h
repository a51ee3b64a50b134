// PL4.ini: the user's program settings as a positional text file. Every line has its fixed
// place and the reader counts lines, so the writer always writes every line, labels included,
// even though only the values are read back.
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

inline constexpr int kToolbarCount = 18;
// In file order. "Input Toolbar" really is followed by " Toolbar Visible:" in the file.
inline constexpr std::array<const char*, kToolbarCount> kToolbarNames = {
    "File",           "Input Toolbar",  "Note Editing",   "Sound",          "Note Misc",
    "Beat Duration",  "Cut Copy Paste", "Track",          "Note Effects 1", "Note Effects 2",
    "Note Effects 3", "Note Effects 4", "Chord 1",        "Chord 2",        "Chord 3",
    "Bar 1",          "Bar 2",          "File Navigation"};

inline constexpr int kRecentFileCount = 10;
// The most a vibrato may swing the wheel either way of its centre 66.
inline constexpr int kMaxVibratoBend = 61;

// Where a toolbar stands: docked on a side of the main window, or floating at a place on the
// screen. Area is 0 top, 1 bottom, 2 left, 3 right.
struct FloatBarPlace {
  int Area = 0;
  int Left = 0;
  int Top = 0;
  bool operator==(const FloatBarPlace&) const = default;
};

struct IniSettings {
  std::array<bool, kToolbarCount> ToolbarVisible{};
  std::array<bool, kToolbarCount> ToolbarDocked{};

  std::string FTPPassword;
  std::string FTPUsername;
  std::string FTPAddress = "http://";
  int FTPUploadMode = 1;
  bool PlayChords = true;
  bool ChordReverb = false;
  bool ScaleReverb = false;
  bool LoadLesson = true;
  bool FollowPlayback = true;
  bool AlternatePlayback = false;
  bool HiPrecisionPlayback = true;
  bool Recommend = true;
  bool AlwaysShowPercussionAssistant = true;
  int OutputDeviceID = 0;
  int OutputProgramID = 0;
  int UndoLevels = 100;  // every command is undoable, so a working session needs room
  bool HideChordManager = false;
  bool CopyrightWarning = true;
  bool PlayNotesAsTyped = true;
  std::string LatestUpdateString;
  bool CheckForUpdates = false;
  double BendCoefficient = 7.9;
  int VibratoBend = 4;
  int WideVibratoBend = 12;
  int VibratoCount = 6;
  bool Metronome = false;
  bool CountIn = true;
  int MaxLineLength = 60;
  bool CheckDiary = false;
  bool AutoScroll = true;
  bool ShowTips = true;
  bool AutoPageStretch = false;

  std::array<FloatBarPlace, kToolbarCount> FloatBars{};
  int MinTabX = 28;  // vbMinTabX: least horizontal space between notes
  int MaxTabX = 80;  // vbMaxTabX: most horizontal space between notes
  std::vector<std::string> RecentFiles = std::vector<std::string>(kRecentFileCount);

  IniSettings();
  bool operator==(const IniSettings&) const = default;
};

// The whole file, lines ended by CR LF.
std::string SaveINISettingsText(const IniSettings& s);

// Reads what the text holds. A short or damaged file gives the values of the lines it has and
// the defaults for the rest; nothing in it can make the reader fail.
IniSettings LoadINISettingsText(std::string_view text);

// <app>/PL4.ini on disk. Saving is atomic (FileError on failure, the old file stays whole).
// Loading a missing or unreadable file returns false and leaves `s` alone.
void SaveINISettings(const IniSettings& s, const std::filesystem::path& file);
bool LoadINISettings(IniSettings& s, const std::filesystem::path& file);

}  // namespace plectaro
