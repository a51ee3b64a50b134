// From string and fret to a place on the treble or bass staff: pitch, staff height and the
// accidental the bar's key asks for. Notation is written one octave above sounding pitch.
#pragma once

#include <cstdint>

#include "score/score_records.h"

namespace plectaro {

// Key signature codes 8..14 and -7..-2 are flat keys; all others take sharps.
bool KeyUsesFlats(int32_t keySignature);
bool KeyUsesFlats(const Track& track, int bar);
// p and q differ by a multiple of 12 (tested up to 120 either way).
bool SamePitchClass(int p, int q);
// Whether the key alters this pitch class (a sharp or flat of the signature).
bool PitchInKey(int pitch, int32_t keySignature);
bool IsBlackKey(int pitch);
// Height of a note relative to the staff; a black key shown as a flat sits 3 higher.
int16_t StaffPosition(int pitch, bool useFlat);

// Number of sharps (positive) or flats (negative) the key signature code shows.
int KeyAccidentalCount(int32_t keySignature);

enum class Accidental : uint8_t { None, Sharp, Flat, Natural };
// The accidental drawn before a note of this pitch in a bar of this key.
Accidental AccidentalFor(int pitch, int32_t keySignature);

// Sounding pitch of a slot with a numeric fret (tuning, capo and octave flags applied), or
// false for empty, dead or drum slots and frets beyond any instrument.
bool SlotPitch(const Track& track, const NoteSlot& slot, int string, int& pitch);

}  // namespace plectaro
