// The tuner's play loop: which strings sound, in which order and when, and what stops it
// from starting.
#include <gtest/gtest.h>

#include "playback/recording_out.h"
#include "playback/virtual_clock.h"
#include "reference/tunings.h"
#include "tools/tuner.h"

namespace plectaro {
namespace {

TuningData Builtin(const std::string& name) {
  TuningData last;
  for (const auto& [n, t] : BuiltInTunings())
    if (n == name) last = t;  // the later of a doubled name wins, as in the library
  return last;
}

struct TunerRun {
  VirtualClock clock;
  RecordingMidiOut out{[this] { return clock.nowMs(); }};
  TunerPlayer player{out, clock};
  std::vector<std::pair<double, int>> notes() const {
    std::vector<std::pair<double, int>> n;
    for (const MidiMessage& m : out.messages)
      if (m.Status == 0x90 && m.Data2 > 0) n.emplace_back(m.TimeMs, m.Data1);
    return n;
  }
};

TEST(Tuner, StrokesSoundTheCheckedStringsInOrder) {
  struct Case {
    const char* tuning;
    int stroke;
    std::array<bool, 7> strings;
    std::vector<std::pair<double, int>> notes;  // in the first 5.5 seconds
  };
  const std::array<bool, 7> six{true, true, true, true, true, true, false};
  const Case cases[] = {
      // Rate 120 npm is a string every 500 ms; after a stroke a 1000 ms wait, then the next
      // stroke begins with its first interval.
      {"Dropped D", kStrokeDown, six, {{500, 38}, {1000, 45}, {1500, 50}, {2000, 55}, {2500, 59}, {3000, 64}, {4500, 38}, {5000, 45}, {5500, 50}}},
      {"Dropped D", kStrokeDownUp, six, {{500, 38}, {1000, 45}, {1500, 50}, {2000, 55}, {2500, 59}, {3000, 64}, {4500, 64}, {5000, 59}, {5500, 55}}},
      // Strings 6 to 3 an octave up, from the top of their 25 names.
      {"Nashville", kStrokeUp, {false, false, true, true, false, false, false}, {{500, 67}, {1000, 62}, {2500, 67}, {3000, 62}, {4500, 67}, {5000, 62}}},
      // An unchecked string between checked ones keeps its place in the rhythm.
      {"Open F", kStrokeDown, {true, false, false, false, false, true, false}, {{500, 41}, {3000, 65}, {4500, 41}}},
  };
  for (const Case& c : cases) {
    TunerRun run;
    TunerSettings s;
    s.rate = "120";
    s.wait = " 1000 ";
    s.stroke = c.stroke;
    s.strings = c.strings;
    ASSERT_EQ(CheckTunerSettings(s, 6), "");
    run.player.play(Builtin(c.tuning), s);
    run.clock.advanceTo(5500);
    EXPECT_EQ(run.notes(), c.notes) << c.tuning << " " << c.stroke;
    run.player.stop();
    EXPECT_FALSE(run.player.playing());
  }
}

TEST(Tuner, WithoutReverbEachNoteStopsTheLast) {
  TunerRun run;
  TunerSettings s;
  s.rate = "60";
  s.strings = {true, true, false, false, false, false, false};
  run.player.play(Builtin("Standard Tuning"), s);
  run.clock.advanceTo(2000);
  ASSERT_EQ(run.out.messages.size(), 3u);
  EXPECT_EQ(run.out.messages[1], (MidiMessage{2000, 0x90, 59, 0}));  // string 2 off, then string 1 on
}

TEST(Tuner, SettingsThatCannotPlay) {
  struct Case {
    const char *rate, *wait;
    std::array<bool, 7> strings;
    int numStrings;
    const char* why;
  };
  const std::array<bool, 7> one{true, false, false, false, false, false, false};
  for (const Case& c : {Case{"", "100", one, 6, "str_PleaseValidPlayRate"}, Case{"0", "100", one, 6, "str_PleaseValidPlayRate"},
                        Case{"2.5", "100", one, 6, "str_PleaseValidPlayRate"}, Case{"60", "x", one, 6, "str_PleaseValidPlayWait"},
                        Case{"60", "-1", one, 6, "str_PleaseValidPlayWait"}, Case{"60", "0", {}, 6, "str_PleaseAtLeastOneString"},
                        Case{"60", "0", {false, false, false, false, false, false, true}, 6, "str_PleaseAtLeastOneString"},
                        Case{"60", "0", one, 6, ""}}) {
    TunerSettings s;
    s.rate = c.rate;
    s.wait = c.wait;
    s.strings = c.strings;
    EXPECT_EQ(CheckTunerSettings(s, c.numStrings), c.why) << c.rate << " " << c.wait;
  }
}

}  // namespace
}  // namespace plectaro
