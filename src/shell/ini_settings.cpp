#include "shell/ini_settings.h"

#include <algorithm>
#include <variant>

#include "score/file_io.h"
#include "score/value_text.h"

namespace plectaro {

namespace {

constexpr size_t kValueColumn = 43;  // 0-based: the "[" or "|" stands in column 43 (1-based)

using Member = std::variant<std::string IniSettings::*, int IniSettings::*, bool IniSettings::*,
                            double IniSettings::*>;

struct Field {
  const char* label;
  Member member;
};

// The labelled value lines after the toolbar lines, in file order. Writer and reader both walk
// this one table, so they cannot disagree about a line's place.
const Field kFields[] = {
    {"FTP Server Password:", &IniSettings::FTPPassword},
    {"FTP Server Username:", &IniSettings::FTPUsername},
    {"FTP Server Address:", &IniSettings::FTPAddress},
    {"FTP Upload Mode (1=bin,0=asc):", &IniSettings::FTPUploadMode},
    {"Play chords on load:", &IniSettings::PlayChords},
    {"Chord Reverb On:", &IniSettings::ChordReverb},
    {"Scale Reverb On:", &IniSettings::ScaleReverb},
    {"Load First Lesson Automatically:(lessons)", &IniSettings::LoadLesson},
    {"Follow tab playback:", &IniSettings::FollowPlayback},
    {"Alternate Playback Mode:", &IniSettings::AlternatePlayback},
    {"HiPrecision Playback Mode:", &IniSettings::HiPrecisionPlayback},
    {"Staff addition recommendation:", &IniSettings::Recommend},
    {"Always show percussion assistant:", &IniSettings::AlwaysShowPercussionAssistant},
    {"Output Device ID:", &IniSettings::OutputDeviceID},
    {"Output Program ID: (Controller)", &IniSettings::OutputProgramID},
    {"Levels of Undo:", &IniSettings::UndoLevels},
    {"Hide the chord manager after adding chords:", &IniSettings::HideChordManager},
    {"Include (C) warning in ASCII Files:", &IniSettings::CopyrightWarning},
    {"Play notes as they are typed:", &IniSettings::PlayNotesAsTyped},
    {"Latest Update String:", &IniSettings::LatestUpdateString},
    {"Check for updates on startup:", &IniSettings::CheckForUpdates},
    {"Bend Coefficient:", &IniSettings::BendCoefficient},
    {"Normal Vibrato Bend:", &IniSettings::VibratoBend},
    {"Wide Vibrato Bend:", &IniSettings::WideVibratoBend},
    {"Vibrato Count:", &IniSettings::VibratoCount},
    {"Metronome:", &IniSettings::Metronome},
    {"Count In:", &IniSettings::CountIn},
    {"Max Line Length: (ASCII/HTML)", &IniSettings::MaxLineLength},
    {"Check Diary on Startup:", &IniSettings::CheckDiary},
    {"Auto Scroll:", &IniSettings::AutoScroll},
    {"Show Tips:", &IniSettings::ShowTips},
    {"Auto Page Stretch:", &IniSettings::AutoPageStretch},
};

const Field kSpacingFields[] = {
    {"Min HSpace bet Notes:", &IniSettings::MinTabX},
    {"Max HSpace bet Notes:", &IniSettings::MaxTabX},
};

const std::string kDashes = std::string(63, '-') + "|";

std::string padded(std::string_view label) {
  std::string s(label);
  if (s.size() < kValueColumn - 1) s.resize(kValueColumn - 1, ' ');
  return s;
}

void flagLine(std::string& out, std::string_view label, bool v) {
  out += padded(label) + "[" + (v ? "1" : "0") + "]\r\n";
}

void valueLine(std::string& out, std::string_view label, std::string_view v) {
  out += padded(label) + "|" + std::string(v) + "\r\n";
}

std::string formatPlace(const FloatBarPlace& p) {
  return std::to_string(p.Area) + "," + std::to_string(p.Left) + "," + std::to_string(p.Top);
}

// Integer values are clamped: a hand-edited file may hold anything.
int parseInt(std::string_view text) { return ParseI32(text); }

// A yes/no line is yes when a "1" stands anywhere from the value column on.
bool readFlag(std::string_view line) {
  return line.size() > kValueColumn && line.find('1', kValueColumn) != std::string_view::npos;
}

// A value line holds its value after the "|" at or after the value column; long labels push
// the bar one place further right.
std::string_view readValue(std::string_view line) {
  if (line.size() < kValueColumn) return {};
  size_t bar = line.find('|', kValueColumn - 1);
  return bar == std::string_view::npos ? std::string_view() : line.substr(bar + 1);
}

FloatBarPlace parsePlace(std::string_view line) {
  FloatBarPlace p;
  int* parts[] = {&p.Area, &p.Left, &p.Top};
  size_t pos = 0;
  for (int* part : parts) {
    size_t comma = line.find(',', pos);
    *part = parseInt(line.substr(pos, comma == std::string_view::npos ? line.npos : comma - pos));
    if (comma == std::string_view::npos) break;
    pos = comma + 1;
  }
  if (p.Area < 0 || p.Area > 3) p.Area = 0;
  return p;
}

}  // namespace

IniSettings::IniSettings() {
  // First-run toolbars: the everyday ones show, the specialised ones wait in the View menu.
  for (int i = 0; i < kToolbarCount; ++i) {
    ToolbarDocked[i] = true;
    std::string_view n = kToolbarNames[i];
    ToolbarVisible[i] = n == "File" || n == "Note Editing" || n == "Beat Duration" ||
                        n == "Sound" || n == "File Navigation" || n == "Track";
  }
}

std::string SaveINISettingsText(const IniSettings& s) {
  std::string out;
  out += "Plectaro 4 INI File\r\n";
  out += kDashes + "\r\n";
  out += "1 = Yes, 0 = No.\r\n";
  out += "Do not delete any part of this file.\r\n";
  out += kDashes + "\r\n";
  out += " \r\n";
  for (int i = 0; i < kToolbarCount; ++i)
    flagLine(out, std::string(kToolbarNames[i]) + " Toolbar Visible:", s.ToolbarVisible[i]);
  for (int i = 0; i < kToolbarCount; ++i)
    flagLine(out, std::string(kToolbarNames[i]) + " Toolbar Docked:", s.ToolbarDocked[i]);
  auto writeField = [&](const Field& f) {
    std::visit(
        [&](auto m) {
          using T = std::remove_cvref_t<decltype(s.*m)>;
          if constexpr (std::is_same_v<T, bool>)
            flagLine(out, f.label, s.*m);
          else if constexpr (std::is_same_v<T, std::string>)
            valueLine(out, f.label, s.*m);
          else if constexpr (std::is_same_v<T, double>)
            valueLine(out, f.label, FormatDouble(s.*m));
          else
            valueLine(out, f.label, std::to_string(s.*m));
        },
        f.member);
  };
  for (const Field& f : kFields) writeField(f);
  for (const FloatBarPlace& p : s.FloatBars) out += formatPlace(p) + "\r\n";
  for (const Field& f : kSpacingFields) writeField(f);
  for (int i = 0; i < kRecentFileCount; ++i) {
    if (i < static_cast<int>(s.RecentFiles.size())) out += s.RecentFiles[i];
    out += "\r\n";
  }
  return out;
}

IniSettings LoadINISettingsText(std::string_view text) {
  IniSettings s;
  const auto lines = SplitLines(text);
  size_t n = 6;  // the header is read past, never checked
  auto next = [&]() -> const std::string_view* { return n < lines.size() ? &lines[n++] : nullptr; };
  for (int i = 0; i < kToolbarCount; ++i)
    if (auto l = next()) s.ToolbarVisible[i] = readFlag(*l);
  for (int i = 0; i < kToolbarCount; ++i)
    if (auto l = next()) s.ToolbarDocked[i] = readFlag(*l);
  auto readField = [&](const Field& f) {
    auto l = next();
    if (!l) return;
    std::visit(
        [&](auto m) {
          using T = std::remove_cvref_t<decltype(s.*m)>;
          if constexpr (std::is_same_v<T, bool>)
            s.*m = readFlag(*l);
          else if constexpr (std::is_same_v<T, std::string>)
            s.*m = std::string(readValue(*l));
          else if constexpr (std::is_same_v<T, double>)
            s.*m = ParseNumber(readValue(*l));
          else
            s.*m = parseInt(readValue(*l));
        },
        f.member);
  };
  for (const Field& f : kFields) readField(f);
  for (auto& p : s.FloatBars)
    if (auto l = next()) p = parsePlace(*l);
  for (const Field& f : kSpacingFields) readField(f);
  for (int i = 0; i < kRecentFileCount; ++i)
    if (auto l = next()) s.RecentFiles[i] = std::string(Trim(*l));
  // The file may have been edited by hand. Values that size memory or the page are held to a
  // range the program can work with; the rest are taken as they stand.
  s.UndoLevels = std::clamp(s.UndoLevels, 0, 100);
  s.MinTabX = std::clamp(s.MinTabX, 1, 1000);
  s.MaxTabX = std::clamp(s.MaxTabX, 1, 1000);
  s.MaxLineLength = std::clamp(s.MaxLineLength, 1, 100000);
  s.VibratoCount = std::clamp(s.VibratoCount, 0, 1000);
  s.VibratoBend = std::clamp(s.VibratoBend, 0, kMaxVibratoBend);
  s.WideVibratoBend = std::clamp(s.WideVibratoBend, 0, kMaxVibratoBend);
  return s;
}

void SaveINISettings(const IniSettings& s, const std::filesystem::path& file) {
  WriteFileAtomically(file, SaveINISettingsText(s));
}

bool LoadINISettings(IniSettings& s, const std::filesystem::path& file) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) return false;
  try {
    // A settings file is a few kilobytes; anything huge is not ours.
    s = LoadINISettingsText(ReadWholeFile(file, 1 << 20));
    return true;
  } catch (const FileError&) {
    return false;
  }
}

}  // namespace plectaro
