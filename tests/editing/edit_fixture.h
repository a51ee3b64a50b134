// A document with an editor round it, driven by key names ("7 Right Shift+Del ...").
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "editing/key_map.h"
#include "score/document.h"
#include "score/prompter.h"

namespace plectaro::test {

struct Editor {
  Document doc;
  ScriptedPrompter prompter;
  EditContext ctx{doc, prompter};
  std::vector<std::array<int, 3>> played;  // beats sounded as typed
  int draws = 0;

  Editor() {
    ctx.hooks.playChord = [this](int t, int b, int k) { played.push_back({t, b, k}); };
    ctx.hooks.drawDocument = [this] { ++draws; };
  }

  // Presses keys given as names separated by blanks.
  void keys(const std::string& names) {
    std::istringstream in(names);
    std::string name;
    while (in >> name) {
      auto k = ParseKeyPress(name);
      ASSERT_TRUE(k.has_value()) << "unknown key name " << name;
      picDocument_KeyDown(ctx, k->key, k->mods);
    }
  }

  std::string fret(int bar, int beat, int string, int track = 0) const {
    return doc.score.note(track, bar, beat, string).Fret;
  }
  const Beat& beat(int bar, int beat, int track = 0) const { return doc.score.beat(track, bar, beat); }
  int beats(int bar, int track = 0) const { return doc.score.GetLastBeat(track, bar) + 1; }
  int bars() const { return static_cast<int>(doc.score.BarInfos.size()); }
  std::array<int, 3> cursor() const { return {doc.CursorBar, doc.CursorBeat, doc.CursorString}; }

  // A second track, with its own string count.
  void addTrack(int strings, bool drum = false) {
    Track t = doc.score.Tracks[0];
    for (auto& b : t.Bars) b = Cow<TrackBar>();
    t.Tuning.NumStrings = static_cast<int16_t>(strings);
    t.DrumTrack = drum;
    doc.score.Tracks.push_back(std::move(t));
  }
};

}  // namespace plectaro::test
