// The metronome: a list of beat sets (time signature, tempo, bars), played one after the other
// so that a whole practice schedule runs as one program, and kept as a metronome file (.p4m).
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "playback/hi_pre_timer.h"
#include "playback/midi_out.h"

namespace plectaro {

struct BeatSet {
  int16_t BeatsUpper = 4;
  int16_t BeatsLower = 4;
  int16_t BeatSetBPM = 120;
  int16_t BeatSetBars = 4;
  bool operator==(const BeatSet&) const = default;
};

inline constexpr int kMaxBeatSets = 100;

struct MetronomeFile {
  int16_t Instrument = 115;   // Woodblock: a dry click that cuts through a band
  int16_t BeatPitch = 76;
  int16_t BeatVolume = 100;
  int16_t FirstBeatVolume = 127;
  bool Loop = false;
  std::vector<BeatSet> Sets = {BeatSet{}};
  bool operator==(const MetronomeFile&) const = default;
};

// One beat of a set in milliseconds. The tempo counts quarter notes, and a beat is one note of
// the time signature's lower number: 60000 / BPM x 4 / lower, cut to whole milliseconds. So
// 6/8 at 120 clicks every 250 ms and 2/2 at 120 every second.
int32_t BeatIntervalMs(const BeatSet& set);

// Text of a number field the way the edit boxes take it: an upper number that is not a whole
// number from 1 to 32 falls back to 4.
int16_t ParseBeatsUpper(std::string_view text);

// "" when every set can play; else the message naming the first set that cannot (no beats,
// no bars, no tempo or an odd lower number), built from the texts `text` gives for the keys.
std::string CheckPlayable(const MetronomeFile& f, const std::function<std::string(std::string_view)>& text);

std::string WriteMetronome(const MetronomeFile& f);
// Throws ToolFileError for a file that ends early or holds an impossible count.
MetronomeFile ReadMetronome(std::string_view bytes);
MetronomeFile LoadMetronomeFile(const std::filesystem::path& path);
void SaveMetronomeFile(const std::filesystem::path& path, const MetronomeFile& f);

// The metronome's own channel, apart from the guitar's channel 0 so that its instrument never
// changes the sound of the notes played in the editor.
inline constexpr int kMetronomeChannel = 14;

class MetronomePlayer {
 public:
  MetronomePlayer(MidiOut& out, PlaybackClock& clock, int bank = 0);
  ~MetronomePlayer();

  // Sets the instrument and starts at the first beat of the first set. The file is read on
  // every tick, so edits made while it plays are heard.
  void play(const MetronomeFile& f);
  void stop();
  bool playing() const;
  // With `passes` > 0 play ends after that many runs through the list even when it loops.
  int passes = 0;

  struct Position {
    int set = 0, bar = 0, beat = 0;
  };
  Position position() const { return pos_; }

  struct Hooks {
    std::function<void(Position)> beatSounded;
    std::function<void()> stopped;
  } hooks;

 private:
  void tick();

  MidiOut& out_;
  int bank_;
  std::unique_ptr<HiPreTimer> timer_;
  const MetronomeFile* file_ = nullptr;
  Position pos_;
  int lastNote_ = -1;
  int passesDone_ = 0;
};

}  // namespace plectaro
