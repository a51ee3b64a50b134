// What every tool window shares with the rest of the program: the one MIDI output, a real
// clock for its timers, the settings store, the message texts, the prompter and the data
// folder. The editor's wiring makes one and hands it to each window it opens.
#pragma once

#include <QString>
#include <filesystem>
#include <memory>
#include <string_view>

#include "playback/midi_out.h"
#include "playback/qt/qt_clock.h"
#include "score/settings_store.h"
#include "shell/language.h"
#include "score/prompter.h"

namespace plectaro {

class EditContext;

struct ToolEnv {
  MidiOut& midi;
  SettingsStore& settings;
  const Messages& messages;
  Prompter& prompter;
  std::filesystem::path dataFolder;   // <app>/Data
  std::filesystem::path languageFile; // CurrentLanguage.txt, for the windows' captions
  int outputBank = 0;
  QtPlaybackClock clock;
  // The editor of the open score, for the tools that read or write it (the Drum Machine's
  // track commands); null when the program runs without one, and those items stay grey.
  EditContext* editor = nullptr;

  QString str(std::string_view key) const { return QString::fromStdString(messages.str(key)); }
  const std::string& text(std::string_view key) const { return messages.str(key); }
};

}  // namespace plectaro
