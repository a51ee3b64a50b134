// A Standard MIDI File turned into tab.
//
// Each chosen MIDI track becomes a Track. Its notes are grouped into beats by their start,
// each beat lasts as long as its notes (up to the next start or the bar line, with rests in
// the gaps), and every note goes on the highest free string that can play it. Bars follow the
// file's time signatures and the tempo is its first tempo event.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "exchange/midi_file.h"
#include "score/score_records.h"

namespace plectaro {

// A MIDI file opened for import, with the rows of the "Tracks to Import" list.
struct MidiImportSource {
  MidiFileData File;
  std::vector<std::string> TrackList;  // "Track 1 (Lead)", "Track 2 (null)"...
  std::vector<int> NotesPerTrack;      // note-ons in each MIDI track
};

// Reads the file and lists its tracks; FileError or MidiFileError when it cannot be read.
MidiImportSource OpenMIDIFile(const std::filesystem::path& path);
// The same over bytes already in memory.
MidiImportSource OpenMIDIData(MidiFileData file);

struct MidiImportOptions {
  std::vector<int> Tracks;  // MIDI track indexes to import; empty: every track with notes
  bool AddTies = false;     // "Add ties": notes carried over bar lines by tied beats
  bool Reverb = false;      // "Reverb": the imported tracks play with reverb
  bool Quantize = false;    // "Quantize": note starts truncated to whole 64ths
  std::function<void(int percent)> progress;
};

struct MidiImportTrackReport {
  int MidiTrack = 0;  // index in the file
  std::string Name;
  int Placed = 0;     // notes written on a string or drum line
  int Lost = 0;       // notes no free string or line could take
};

// Builds the Score from the chosen tracks into `score`, replacing its tracks and bars and
// keeping its other fields (hand in a fresh InitScore'd score). Returns one report per track.
// Throws ScoreError when no track is chosen or none of the chosen has notes.
std::vector<MidiImportTrackReport> FullImport(const MidiImportSource& source, const MidiImportOptions& options,
                                              Score& score);

// Imports a whole file into `score` as batch conversion and the command line do: the tracks
// of the options (all with notes by default), the file's name as the title.
std::vector<MidiImportTrackReport> ImportMIDIFile(const std::filesystem::path& path, const MidiImportOptions& options,
                                                  Score& score);

// The decisive step of the string assignment: puts MIDI key `note` on `string` of beat
// (track, bar, beat) if its fret lies within 0..29. A note below string 5 of a six-string
// track widens the track to seven strings, so that the next string in the scan can take it.
bool PlaceNoteOnString(Score& s, int string, int track, int bar, int beat, int note, int velocity);

// The dynamics code for a MIDI velocity.
int32_t VolumeCodeForVelocity(int velocity);

// The text of a track's row in the list: "Track " and its number, then its name in brackets.
std::string MidiTrackListText(int index, const std::string& name);

}  // namespace plectaro
