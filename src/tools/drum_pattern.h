// A drum pattern: a grid of steps by instruments, each step with a note length of its own, so
// one pattern can mix rhythms. The Drum Machine edits and plays it, the beat generator fills
// it, and it is kept as a drumbeat file (.p4d); the older fixed 16 x 16 files (.pld) are read.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro {

// Length codes of a step, as in the score: 0 whole ... 6 sixty-fourth.
inline constexpr int kWholeNote = 0;
inline constexpr int kSixteenthNote = 4;
inline constexpr int kSixtyFourthNote = 6;
// The tuplets a step can be: code 0 is a triplet (3 in the time of 2), then 5, 6, 7, 9, 10,
// 11, 12 and 13.
inline constexpr int kTupletCodes = 9;
int TupletNumber(int tupletCode);

struct DrumPattern {
  // Pattern[step][instrument]: the cell is on.
  std::vector<std::vector<bool>> Pattern;
  std::vector<std::string> Instruments;  // drum names of the percussion list
  std::vector<int16_t> Volumes;          // velocity per instrument
  std::vector<int32_t> BeatLength;       // length code per step
  std::vector<int32_t> TupletCode;       // per step
  std::vector<bool> Tupleted;            // per step
  std::vector<bool> Dotted;              // per step
  int16_t Tempo = 120;
  int16_t BeatsPerGroup = 4;

  int steps() const { return static_cast<int>(Pattern.size()); }
  int instruments() const { return static_cast<int>(Instruments.size()); }
  bool cell(int step, int instrument) const;
  void setCell(int step, int instrument, bool on);
  bool operator==(const DrumPattern&) const = default;
};

// The 16 instruments of a new pattern, top row first.
const std::vector<std::string>& DefaultDrumInstruments();
// 32 sixteenth steps by the 16 default instruments, all cells off, volumes 127, tempo 120.
DrumPattern NewDrumPattern();

// Grows or shrinks to `steps` x `instruments`, keeping the overlapping cells; new steps get
// the default timing, new instruments an empty name and volume 127.
void ResizePattern(DrumPattern& p, int steps, int instruments);
// Resizes a bare grid the same way (new cells off).
void Resize2DBooleanArray(std::vector<std::vector<bool>>& grid, int first, int second);

// The General MIDI key of a drum name of the percussion list; 0 for a name not in it.
int GetDrumIndex(std::string_view name);
// The drum name for a General MIDI key; "" for a key the list lacks.
std::string DrumNameForKey(int key);

// The length of a step in quarter notes: length 0 gives 4 ... length 6 gives 1/16; a tuplet of
// n times 2/n; dotted times 3/2.
double StepFactor(const DrumPattern& p, int step);
// Milliseconds from one step to the next: 3750 / Tempo is a 64th note, times 16 times the
// step's factor (length 0 gives 4 ... length 6 gives 1/16; a tuplet of n times 2/n; dotted
// times 3/2), cut to whole milliseconds.
int32_t StepIntervalMs(const DrumPattern& p, int step);

// ---- files ----

std::string WriteDrumbeat(const DrumPattern& p);
// Throws ToolFileError for anything that is not a whole drumbeat file.
DrumPattern ReadDrumbeat(std::string_view bytes);
// The old fixed layout: 16 instrument keys (minus 35), 16 volumes, the tempo, 256 cells.
DrumPattern ReadOldDrumbeat(std::string_view bytes);

DrumPattern LoadDrumbeatFile(const std::filesystem::path& path);  // .p4d or .pld by extension
void SaveDrumbeatFile(const std::filesystem::path& path, const DrumPattern& p);
// Reads an old file and writes a .p4d of the same name beside it; returns the new path.
std::filesystem::path ConvertFile(const std::filesystem::path& oldFile);

}  // namespace plectaro
