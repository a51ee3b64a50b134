#include "rendering/notation.h"

#include <array>

namespace plectaro {

namespace {

constexpr int kFirstTablePitch = 23;
// Staff height of each pitch from 23 to 105: a natural and the sharp above it share a height.
// The steps of 3 and 4 are half the 7-unit line distance in whole units.
constexpr std::array<int16_t, 83> kStaffTable = {
    59,                                              // 23
    56, 56, 52, 52, 49, 45, 45, 42, 42, 38, 38, 35,  // 24..35
    31, 31, 28, 28, 24, 21, 21, 17, 17, 14, 14, 10,  // 36..47
    7, 7, 3, 3, 0, -3, -3, -7, -7, -10, -10, -13,    // 48..59
    -17, -17, -20, -20, -24, -27, -27, -31, -31, -34, -34, -38,  // 60..71
    -41, -41, -45, -45, -48, -52, -52, -55, -55, -59, -59, -62,  // 72..83
    -66, -66, -69, -69, -73, -76, -76, -80, -80, -83, -83, -87,  // 84..95
    -90, -90, -94, -94, -97, -101, -101, -104, -104, -108,       // 96..105
};

// Altered pitch classes in the order the signature adds them (circle of fifths).
constexpr std::array<int, 7> kFlatRoots = {58, 51, 56, 49, 54, 59, 52};   // Bb Eb Ab Db Gb Cb Fb
constexpr std::array<int, 7> kSharpRoots = {54, 49, 56, 51, 58, 53, 48};  // F# C# G# D# A# E# B#

}  // namespace

bool KeyUsesFlats(int32_t key) { return (key >= 8 && key <= 14) || (key >= -7 && key <= -2); }

bool KeyUsesFlats(const Track& track, int bar) {
  if (bar < 0 || bar >= static_cast<int>(track.Bars.size())) return false;
  return KeyUsesFlats(track.Bars[static_cast<size_t>(bar)]->KeySignature);
}

bool SamePitchClass(int p, int q) {
  for (int k = -10; k <= 10; ++k)
    if (static_cast<long long>(p) == static_cast<long long>(q) + 12LL * k) return true;
  return false;
}

int KeyAccidentalCount(int32_t key) {
  if (key >= 1 && key <= 7) return key;
  if (key >= 8 && key <= 14) return -(key - 7);
  if (key >= -7 && key <= -1) return key;
  return 0;
}

bool PitchInKey(int pitch, int32_t key) {
  int count = KeyAccidentalCount(key);
  if (count < 0) count = -count;
  const auto& roots = KeyUsesFlats(key) ? kFlatRoots : kSharpRoots;
  for (int i = 0; i < count; ++i)
    if (SamePitchClass(pitch, roots[static_cast<size_t>(i)])) return true;
  return false;
}

bool IsBlackKey(int pitch) {
  const int pc = ((pitch % 12) + 12) % 12;
  return pc == 1 || pc == 3 || pc == 6 || pc == 8 || pc == 10;
}

int16_t StaffPosition(int pitch, bool useFlat) {
  int value = 0;
  if (pitch >= kFirstTablePitch && pitch < kFirstTablePitch + static_cast<int>(kStaffTable.size()))
    value = kStaffTable[static_cast<size_t>(pitch - kFirstTablePitch)];
  // A black key written as a flat sits one letter higher (A sharp shown as B flat at B).
  if (useFlat && IsBlackKey(pitch)) value -= 3;
  return static_cast<int16_t>(value + 21);
}

Accidental AccidentalFor(int pitch, int32_t key) {
  const bool flats = KeyUsesFlats(key);
  if (IsBlackKey(pitch)) {
    if (PitchInKey(pitch, key)) return Accidental::None;
    return flats ? Accidental::Flat : Accidental::Sharp;
  }
  // A white key whose letter the signature alters is played natural and needs the sign:
  // F in G major (F# in the key), B in F major (Bb in the key). E# and B# keys alter white
  // keys themselves; a natural is never drawn for a pitch the key itself holds.
  if (PitchInKey(pitch, key)) return Accidental::None;
  if (flats ? PitchInKey(pitch - 1, key) : PitchInKey(pitch + 1, key)) return Accidental::Natural;
  return Accidental::None;
}

bool SlotPitch(const Track& track, const NoteSlot& slot, int string, int& pitch) {
  if (string < 0 || string >= kMaxStrings) return false;
  int fret = 0;
  if (!FretNumber(slot.Fret, fret) || fret < 0 || fret > 127) return false;
  int p = fret + track.Tuning.Offset[static_cast<size_t>(string)] + kStandardStringPitch[static_cast<size_t>(string)];
  if (track.Capo > 0 && track.Capo < 40) p += track.Capo;
  if (track.OctaveUp) p += 12;
  if (track.OctaveDown) p -= 12;
  pitch = p;
  return true;
}

}  // namespace plectaro
