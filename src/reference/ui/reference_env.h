// What the chord and scale windows need from the rest of the program: the data folder, the
// user's questions and settings, the message texts, the options of the Options dialog and a
// way to sound notes. The GUI fills it in once; each hook may be left empty.
#pragma once

#include <QString>
#include <filesystem>
#include <functional>
#include <string>

#include "reference/library_filter.h"
#include "score/score_records.h"
#include "score/settings_store.h"
#include "score/prompter.h"

namespace plectaro {

struct ReferenceEnv {
  std::filesystem::path data;        // <app>/Data
  std::filesystem::path languageFile;  // CurrentLanguage.txt, for the windows' titles
  Prompter* prompter = nullptr;
  SettingsStore* settings = nullptr;
  TextLookup text;                   // str_... keys of the interface language

  // Sounds a chord at the chord volume of the current track; the player ends it after a while.
  std::function<void(const BeatChord&)> soundChord;
  std::function<void(int pitch)> noteOn;
  std::function<void(int pitch)> noteOff;
  std::function<void()> allNotesOff;

  // The options of the Chord Manager and Scale Manager pages of the Options dialog.
  std::function<bool()> playChords;        // chkPlayChords: a click plays the chord
  std::function<bool()> hideChordManager;  // chkHideChordManager
  std::function<bool()> scaleReverb;       // chkScaleReverb: notes ring on

  // The main window's scale list, to be filled again after the scales were restored.
  std::function<void()> populateScaleList;

  std::string str(std::string_view key) const { return text ? text(key) : std::string(key); }
  QString qstr(std::string_view key) const { return QString::fromStdString(str(key)); }
  // A caption of the chord and scale windows. The language files carry message texts for
  // these windows but no captions of their controls, so the captions are this program's own.
  QString caption(std::string_view key, const char* english) const {
    if (key.starts_with("str_") || key.starts_with("txt_")) {
      const std::string t = text ? text(key) : std::string();
      if (!t.empty() && t != key) return QString::fromStdString(t);
    }
    return QString::fromUtf8(english);
  }
  bool option(const std::function<bool()>& f, bool fallback) const { return f ? f() : fallback; }
};

}  // namespace plectaro
