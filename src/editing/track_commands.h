// The Track menu and the mix table: adding, deleting and setting up tracks. Each command runs
// through RunCommand, so the password guard, the change flags, the redraw and undo come with
// it, and a dialog's whole change is one step.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "editing/edit_context.h"

namespace plectaro {

// The channel pair (channel, effect channel) a new track gets: the lowest pair of adjacent
// channels that no other track plays on, never touching the percussion channel 9. A drum
// track always gets 9 for both. When all pairs are taken the new track shares 0 and 1.
std::array<int16_t, 2> NextFreeChannelPair(const Score& s, bool drumTrack);

// The drum map a new drum track starts with, so that every symbol typed on it sounds: line 1
// cymbals, 2 hi-hat, 3 snare, 4 high toms, 5 floor toms, 6 bass drum.
std::array<DrumMap, kMaxStrings> DefaultDrumMaps();

// General MIDI programs 32 to 39 are basses.
bool IsBassInstrument(int program);

// A new track set up as the Add a Track dialog does it: name, instrument (or drums) and tuning.
// A bass reads from the bass clef, so its notation staff is the bass staff, not the treble.
// Everything else takes the values of a new score's track.
Track NewTrackSetup(const std::string& name, bool drumTrack, int instrument,
                    const std::string& instrumentName, const TuningInfo& tuning);

// Adds `setup` as the last track. Its bars are ignored: it gets one bar per bar of the score,
// each holding one blank quarter beat, and the next free channel pair; it becomes the
// cursor's track. Refused (with a message) when the score already has 32768 tracks.
bool AddTrack(EditContext& ctx, const Track& setup);

// Delete this Track: refused for the only track, asks first otherwise. The cursor moves to
// the track that takes the deleted one's place (the one before it when it was the last).
bool DeleteTrack(EditContext& ctx);

// What ApplyTrackProperties reports besides success.
struct TrackPropertiesResult {
  bool applied = false;
  bool fretsKept = false;  // the strings or the tuning changed under existing notes
};

// Track Properties: every field of `props` but its bars and lyrics goes onto track `track`.
// A drum track always gets channel 9 whatever `props` says. When the number of strings or the
// tuning changes on a track that holds notes, every note keeps its fret text (so it now
// sounds at the new tuning) and the user is told so; notes are never moved silently.
TrackPropertiesResult ApplyTrackProperties(EditContext& ctx, int track, const Track& props);

// The mix table's row edits. Volume 0..100, instrument 0..127, channel 0..15.
bool SetTrackVolume(EditContext& ctx, int track, int volume);
// The name is the one the instrument list shows for the program.
bool SetTrackInstrument(EditContext& ctx, int track, int instrument, const std::string& name);
bool SetTrackChannel(EditContext& ctx, int track, int channel);

// Edit Lines: the five lyric lines of a track.
bool SetTrackLyrics(EditContext& ctx, int track, const std::array<std::string, 5>& lines);

// Whether any bar of the track holds a note on any string.
bool TrackHasNotes(const Track& track);

}  // namespace plectaro
