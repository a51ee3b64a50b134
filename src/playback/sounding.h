// Sounding one beat of one track: program changes, the pitch and velocity of every note, drum
// lines, and the small helpers that the scheduler and the editor share.
#pragma once

#include "playback/effects.h"
#include "playback/midi_out.h"
#include "score/score_records.h"

namespace plectaro {

// The output and the bank that goes in front of every program change.
struct SoundOut {
  MidiOut& out;
  int OutputBank = 0;
};

// The notes of a strummed beat after the first, held back so that the caller can sound them
// one by one, a few milliseconds apart, the way a pick crosses the strings.
struct Strum {
  struct Note {
    int Channel = 0, Pitch = 0, Harmonic = 0, Velocity = 0;
  };
  std::array<Note, kMaxStrings> Notes{};
  int Count = 0;
  int Next = 0;
  bool pending() const { return Next < Count; }
};

// Sounds beat (track, bar, beat). clearFirst silences all channels first; upward plays the
// strings from the highest (string 0) down to the lowest, else from the lowest up. A beat that
// does not exist sounds nothing. Given a Strum, a beat marked with a stroke sounds only its
// first note now and leaves the others in it; without one, all notes sound at once.
// Given an EffectPlayer, the beat's effects start on it too (their speed from `tempo`, the
// score's tempo when 0); without one, every note sounds plain.
void PlayChord(SoundOut so, const Score& s, int track, int bar, int beat, bool clearFirst, bool upward,
               Strum* strum = nullptr, EffectPlayer* fx = nullptr, double tempo = 0);

// The channel a note of the beat sounds on: the track's effect channel when an effect moves
// its pitch wheel or silences its channel between notes, so the other strings are left alone.
int NoteChannel(const Track& track, const Beat& beat, const NoteSlot& slot);

// The key a natural harmonic sounds at the fret where it is touched: the node's overtone
// (12th fret: the octave; 7th and 19th: the fifth above it; 5th and 24th: two octaves; ...).
// Frets with no clear node sound the fretted key.
int NaturalHarmonicKey(int openKey, int fret);

// Sounds one note with the offset of its harmonic; stopAtOnce ends it at once.
void PlayNote(MidiOut& out, int pitch, int harmonic, int channel, int velocity, bool stopAtOnce);

// Sounds the drum symbols of a beat of a drum track on channel 9.
void PlayDrumBeat(MidiOut& out, const Score& s, int track, int bar, int beat);

// Sounds the chord diagram of a beat at the track's chord volume (clicking a chord chart).
void PlayChordDiagram(SoundOut so, const Track& track, const BeatChord& chord);

// +12 for the octave up flag, -12 for octave down; octave down wins when both are set.
int GetOctaveShift(const Track& track);
// Velocity of a note from the track volume and the slot's dynamics; halved for ghost notes.
int GetVolume(const Score& s, int track, int bar, int beat, int string);
// The MIDI key a slot sounds (tuning, octave flags; the capo is not added: frets are written
// where they are played on the neck). False when the slot holds no fret number.
bool SoundingPitch(const Score& s, int track, int bar, int beat, int string, int& pitch);

// Whether the notes of a beat must keep sounding into the next beat instead of being cut when
// it starts: the next beat continues one of them (IsTie), or one is let ring (IsRing).
bool IsTie(const Score& s, int track, int bar, int beat);
bool IsRing(const Score& s, int track, int bar, int beat);

// The beat of a track that comes before (bar, beat), across the bar line; false at the very
// start or when there is none.
bool PreviousBeat(const Score& s, int track, int bar, int beat, int& prevBar, int& prevBeat);

}  // namespace plectaro
