#include "playback/sounding.h"

#include <algorithm>
#include <cmath>

namespace plectaro {

namespace {

constexpr int kDrumChannel = 9;

int roundEven(double v) { return static_cast<int>(std::nearbyint(v)); }

const Beat* findBeat(const Score& s, int t, int b, int k) {
  if (t < 0 || t > s.LastTrack()) return nullptr;
  const Track& tr = s.Tracks[static_cast<size_t>(t)];
  if (b < 0 || static_cast<size_t>(b) >= tr.Bars.size()) return nullptr;
  const auto& beats = tr.Bars[static_cast<size_t>(b)]->Beats;
  if (k < 0 || static_cast<size_t>(k) >= beats.size()) return nullptr;
  return &beats[static_cast<size_t>(k)];
}

// NumStrings comes clamped to 1..7 from the reader, but a score built in memory may hold anything.
int stringCount(const Track& tr) { return std::clamp<int>(tr.Tuning.NumStrings, 0, kMaxStrings); }

int volumeLevel(int32_t code) {
  switch (code) {
    case 3: return 7;
    case 2: return 6;
    case 1: return 5;
    case 0: return 4;
    case 4: return 3;
    case 5: return 2;
    case 6: return 1;
    default: return 0;  // 7 and any unknown code
  }
}

int harmonicOffset(int harmonic) {
  switch (harmonic) {
    case kArtificialHarmonic5: return 19;
    case kArtificialHarmonic7: return 24;
    case kArtificialHarmonic12:
    case kTappedHarmonic:
    case kPitchHarmonic: return 12;
    default: return 0;
  }
}

}  // namespace

int GetOctaveShift(const Track& track) {
  int shift = track.OctaveUp ? 12 : 0;
  if (track.OctaveDown) shift = -12;
  return shift;
}

int GetVolume(const Score& s, int t, int b, int k, int string) {
  const Beat* beat = findBeat(s, t, b, k);
  const Track* tr = (t >= 0 && t <= s.LastTrack()) ? &s.Tracks[static_cast<size_t>(t)] : nullptr;
  const double trackPart = tr ? tr->Volume / 50.0 * 63.5 : 0.0;
  const NoteSlot* slot = (beat && string >= 0 && string < kMaxStrings)
                             ? &beat->Notes[static_cast<size_t>(string)] : nullptr;
  const int level = slot ? volumeLevel(slot->Volume) : 0;
  // The track part is rounded on its own first, then added to the level part.
  int v = roundEven(level / 7.0 * 63.5 + roundEven(trackPart));
  v = std::clamp(v, 0, 127);
  if (slot && slot->GhostNote) v = roundEven(v / 2.0);
  return v;
}

bool SoundingPitch(const Score& s, int t, int b, int k, int string, int& pitch) {
  const Beat* beat = findBeat(s, t, b, k);
  if (!beat || string < 0 || string >= kMaxStrings) return false;
  int fret = 0;
  if (!FretNumber(beat->Notes[static_cast<size_t>(string)].Fret, fret)) return false;
  const Track& tr = s.Tracks[static_cast<size_t>(t)];
  pitch = GetStringPitch(string) + tr.Tuning.Offset[static_cast<size_t>(string)] + fret +
          GetOctaveShift(tr);
  return true;
}

void PlayNote(MidiOut& out, int pitch, int harmonic, int channel, int velocity, bool stopAtOnce) {
  if (harmonic == kSemiHarmonic) {
    const int v = roundEven(velocity / 1.2);
    MIDINoteOn(out, channel, pitch + 12, v);
    MIDINoteOn(out, channel, pitch, v);
    if (stopAtOnce) {
      MIDINoteOff(out, channel, pitch + 12);
      MIDINoteOff(out, channel, pitch);
    }
    return;
  }
  const int note = pitch + harmonicOffset(harmonic);
  MIDINoteOn(out, channel, note, velocity);
  if (stopAtOnce) MIDINoteOff(out, channel, note);
}

void PlayDrumBeat(MidiOut& out, const Score& s, int t, int b, int k) {
  const Beat* beat = findBeat(s, t, b, k);
  if (!beat) return;
  const Track& tr = s.Tracks[static_cast<size_t>(t)];
  for (int line = 0; line < stringCount(tr); ++line) {
    const std::string& fret = beat->Notes[static_cast<size_t>(line)].Fret;
    if (fret.size() != 1) continue;
    auto it = std::find(kDrumSymbols.begin(), kDrumSymbols.end(), fret[0]);
    if (it == kDrumSymbols.end()) continue;
    const int sound = tr.DrumMaps[static_cast<size_t>(line)].Drum[static_cast<size_t>(it - kDrumSymbols.begin())];
    const int key = GetDrumNote(sound);
    if (key == 0) continue;
    MIDINoteOn(out, kDrumChannel, key, GetVolume(s, t, b, k, line));
  }
}

void PlayChord(SoundOut so, const Score& s, int t, int b, int k, bool clearFirst, bool upward, Strum* strum) {
  if (clearFirst) MIDIAllNotesOff(so.out);
  const Beat* beat = findBeat(s, t, b, k);
  if (!beat) return;
  const Track& tr = s.Tracks[static_cast<size_t>(t)];
  if (tr.DrumTrack) {
    PlayDrumBeat(so.out, s, t, b, k);
    return;
  }
  // The program goes out with every beat, so an instrument change needs no event of its own
  // and a click that borrowed channel 0 gives it back at the track's next beat.
  MIDIProgramChange(so.out, tr.Channel, so.OutputBank, tr.Instrument);
  MIDIProgramChange(so.out, tr.EffectChannel, so.OutputBank, tr.Instrument);

  // A beat that continues notes of the one before must not strike them again.
  int prevBar = 0, prevBeat = 0;
  const bool continues = PreviousBeat(s, t, b, k, prevBar, prevBeat) && IsTie(s, t, prevBar, prevBeat);

  if (strum) *strum = Strum();
  const bool strummed = strum && (beat->Stroke == kUpStroke || beat->Stroke == kDownStroke);
  bool first = true;
  const int n = stringCount(tr);
  for (int i = 0; i < n; ++i) {
    const int string = upward ? i : n - 1 - i;
    const NoteSlot& slot = beat->Notes[static_cast<size_t>(string)];
    int pitch = 0;
    if (!SoundingPitch(s, t, b, k, string, pitch)) continue;
    if (slot.Tied && continues) continue;
    const int velocity = GetVolume(s, t, b, k, string);
    // Pitch effects move the wheel of the effect channel, so a bent note lives there and the
    // other strings stay put on the main channel.
    const int channel = slot.HasBend ? tr.EffectChannel : tr.Channel;
    if (strummed && !first) {
      strum->Notes[static_cast<size_t>(strum->Count++)] = {channel, pitch, slot.Harmonic, velocity};
      continue;
    }
    first = false;
    PlayNote(so.out, pitch, slot.Harmonic, channel, velocity, false);
  }
}

void PlayChordDiagram(SoundOut so, const Track& tr, const BeatChord& chord) {
  if (tr.DrumTrack) return;
  MIDIProgramChange(so.out, tr.Channel, so.OutputBank, tr.Instrument);
  const int velocity = std::clamp(roundEven(4 / 7.0 * 63.5 + roundEven(tr.ChordVolume / 50.0 * 63.5)), 0, 127);
  const int n = std::clamp<int>(chord.NumStrings, 0, kMaxStrings);
  for (int i = n - 1; i >= 0; --i) {
    int fret = 0;
    if (!FretNumber(chord.Frets[static_cast<size_t>(i)], fret)) continue;
    int open = chord.Tuning[static_cast<size_t>(i)];
    if (open <= 0) open = GetStringPitch(i) + tr.Tuning.Offset[static_cast<size_t>(i)];
    MIDINoteOn(so.out, tr.Channel, open + fret + GetOctaveShift(tr), velocity);
  }
}

bool PreviousBeat(const Score& s, int t, int b, int k, int& prevBar, int& prevBeat) {
  if (t < 0 || t > s.LastTrack()) return false;
  const Track& tr = s.Tracks[static_cast<size_t>(t)];
  if (k > 0) {
    prevBar = b;
    prevBeat = k - 1;
    return findBeat(s, t, b, k - 1) != nullptr;
  }
  if (b <= 0 || static_cast<size_t>(b - 1) >= tr.Bars.size()) return false;
  const auto& beats = tr.Bars[static_cast<size_t>(b - 1)]->Beats;
  if (beats.empty()) return false;
  prevBar = b - 1;
  prevBeat = static_cast<int>(beats.size()) - 1;
  return true;
}

bool IsTie(const Score& s, int t, int b, int k) {
  // The tie is written on the note that continues, i.e. on the following beat.
  const Beat* here = findBeat(s, t, b, k);
  if (!here) return false;
  const Beat* next = findBeat(s, t, b, k + 1);
  if (!next && findBeat(s, t, b + 1, 0)) next = findBeat(s, t, b + 1, 0);
  if (!next) return false;
  for (const NoteSlot& n : next->Notes)
    if (n.Tied && n.hasNote()) return true;
  return false;
}

bool IsRing(const Score& s, int t, int b, int k) {
  const Beat* here = findBeat(s, t, b, k);
  if (!here) return false;
  for (const NoteSlot& n : here->Notes)
    if (n.LetRing && n.hasNote()) return true;
  return false;
}

}  // namespace plectaro
