#include "playback/sounding.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "score/bar_timing.h"

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

int NoteChannel(const Track& tr, const Beat& beat, const NoteSlot& slot) {
  const bool beatWheel = beat.HasTremoloBar || beat.ChordTechnique == kVibrato || beat.ChordTechnique == kWideVibrato;
  const bool picked = slot.Technique >= kTremoloPicking8 && slot.Technique <= kTremoloPicking32;
  if (beatWheel || slot.HasBend) return tr.EffectChannel;
  // The effect channel's wheel belongs to a bend on another string of the beat, if there is
  // one. A trill beside it is played on the main channel, so it keeps its pitch while the
  // bent string rises; a trill on the bent note itself stays with the bend and rises too.
  if (slot.HasTrill && std::any_of(beat.Notes.begin(), beat.Notes.end(),
                                   [](const NoteSlot& n) { return n.HasBend && n.hasNote(); }))
    return tr.Channel;
  if (slot.HasTrill || slot.HasGrace || picked) return tr.EffectChannel;
  return tr.Channel;
}

int NaturalHarmonicKey(int openKey, int fret) {
  switch (fret) {
    case 12: return openKey + 12;
    case 7: case 19: return openKey + 19;
    case 5: case 24: return openKey + 24;
    case 4: case 9: case 16: return openKey + 28;
    case 3: return openKey + 31;
    default: return openKey + fret;
  }
}

namespace {

// The rules by which effects that the stored records leave open are played.
//
// Slides out of a note (Slide Up, Slide Down, Legato Slide) hold the note for the first half
// of the beat, then run in semitones over the second half towards the next note on the string,
// stopping one semitone short of it: the next beat lands on the target itself. With no next
// note in its direction (Legato: in either direction), Slide Up and Slide Down fall away by
// kSlideOutSemitones, as a slide off into nothing sounds. Slides into a note start
// kSlideOutSemitones below (Into Up) or above (Into Down) and reach the note within a 16th.
constexpr int kSlideOutSemitones = 5;
constexpr double kSlideInto64ths = 4;
// Trill and tremolo picking: one note per period of the slot's code, for the whole beat.
double trillPeriod(int32_t code) { return code == 2 ? 8 : code == 1 ? 4 : 2; }
double pickingPeriod(int32_t technique) {
  return technique == kTremoloPicking8 ? 8 : technique == kTremoloPicking16 ? 4 : 2;
}
// Grace notes take their length from the start of the beat (the main note comes late), never
// more than half the beat. A grace note joined to its note by a slide, bend or hammer-on lets
// the main note in softer, as the left hand sounds it, not the pick.
double grace64ths(int32_t code) { return code == 2 ? 1 : code == 1 ? 2 : 4; }
constexpr double kLegatoVelocity = 0.8;

int velocityFor(const Track& tr, int32_t volumeCode) {
  const int v = roundEven(volumeLevel(volumeCode) / 7.0 * 63.5 + roundEven(tr.Volume / 50.0 * 63.5));
  return std::clamp(v, 0, 127);
}

double beatLength64ths(const Beat& beat) {
  try {
    return GetNumOf64ths(beat);
  } catch (const ScoreError&) {
    return 16;  // a damaged length plays as a quarter, as the scheduler does
  }
}

struct EffectStart {
  EffectPlayer& fx;
  double stepMs;
  double beat64ths;
};

// Starts the effects of one slot that sound the note themselves; false when the slot has none
// and the caller sounds it plain.
bool startNoteTakingEffect(const EffectStart& e, const Score& s, int t, int b, int k, int string, int key,
                           int velocity, int channel) {
  const Beat& beat = s.Tracks[static_cast<size_t>(t)].Bars[static_cast<size_t>(b)]->Beats[static_cast<size_t>(k)];
  const NoteSlot& slot = beat.Notes[static_cast<size_t>(string)];
  const Track& tr = s.Tracks[static_cast<size_t>(t)];
  int fret = 0;
  FretNumber(slot.Fret, fret);
  if (slot.HasGrace) {
    int graceFret = 0;
    const bool dead = !FretNumber(slot.Grace->Fret, graceFret);
    const int graceKey = dead ? -1 : key - fret + graceFret;
    const int mainVelocity = slot.Grace->Transition == kGraceNone
                                 ? velocity : roundEven(velocity * kLegatoVelocity);
    const double len = std::min(grace64ths(slot.Grace->Length), e.beat64ths / 2);
    e.fx.start(PlanGrace(channel, graceKey, velocityFor(tr, slot.Grace->Volume), key, mainVelocity, e.stepMs, len));
    return true;
  }
  if (slot.HasTrill) {
    const int other = key - fret + slot.Trill.TrillFret;
    e.fx.start(PlanTrill(channel, key, other, velocity, e.stepMs, e.beat64ths, trillPeriod(slot.Trill.Period)));
    return true;
  }
  if (slot.Technique == kSlideIntoUp || slot.Technique == kSlideIntoDown) {
    const int from = slot.Technique == kSlideIntoUp ? key - kSlideOutSemitones : key + kSlideOutSemitones;
    const double span = std::min(kSlideInto64ths, e.beat64ths);
    e.fx.start(PlanSlide(channel, from, key, velocity, 1,
                         CurveInterval(e.stepMs, span, kSlideOutSemitones), true));
    return true;
  }
  return false;
}

void startBend(const EffectStart& e, const NoteSlot& slot, int channel) {
  if (slot.HasBend)
    e.fx.start(PlanBend(slot.Bend->Points, channel, e.stepMs, e.beat64ths, e.fx.settings.BendCoefficient));
}

// The key of the note on the same string in the beat after (t, b, k); false if none.
bool nextKeyOnString(const Score& s, int t, int b, int k, int string, int& key) {
  if (SoundingPitch(s, t, b, k + 1, string, key)) return true;
  return k + 1 >= static_cast<int>(s.Tracks[static_cast<size_t>(t)].Bars[static_cast<size_t>(b)]->Beats.size()) &&
         SoundingPitch(s, t, b + 1, 0, string, key);
}

// Effects that move a note already struck.
void startNoteEffects(const EffectStart& e, const Score& s, int t, int b, int k, int string, int key,
                      int velocity, int channel) {
  const NoteSlot& slot =
      s.Tracks[static_cast<size_t>(t)].Bars[static_cast<size_t>(b)]->Beats[static_cast<size_t>(k)].Notes[static_cast<size_t>(string)];
  startBend(e, slot, channel);
  const int tech = slot.Technique;
  if (tech != kSlideUp && tech != kSlideDown && tech != kLegatoSlide) return;
  int target = 0;
  int to = key;
  if (nextKeyOnString(s, t, b, k, string, target) &&
      ((tech == kSlideUp && target > key) || (tech == kSlideDown && target < key) || tech == kLegatoSlide)) {
    to = target > key ? target - 1 : target < key ? target + 1 : key;
  } else if (tech != kLegatoSlide) {
    to = tech == kSlideUp ? key + kSlideOutSemitones : key - kSlideOutSemitones;
  }
  const int steps = std::abs(to - key);
  if (steps == 0) return;
  e.fx.start(PlanSlide(channel, key, to, velocity, steps, CurveInterval(e.stepMs, e.beat64ths, 2.0 * steps), false));
}

}  // namespace

void PlayChord(SoundOut so, const Score& s, int t, int b, int k, bool clearFirst, bool upward, Strum* strum,
               EffectPlayer* fx, double tempo) {
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

  if (tempo <= 0) tempo = s.Tempo;
  const double stepMs = tempo > 0 && std::isfinite(tempo) ? 3750.0 / tempo : 62.5;
  const std::optional<EffectStart> fxStart =
      fx ? std::optional<EffectStart>(EffectStart{*fx, stepMs, beatLength64ths(*beat)}) : std::nullopt;

  if (strum) *strum = Strum();
  const bool strummed = strum && (beat->Stroke == kUpStroke || beat->Stroke == kDownStroke);
  bool first = true;
  bool wheelTaken = false;
  bool anyNote = false;
  std::vector<int> picked;
  int pickedTechnique = 0, pickedVelocity = 0;
  const int n = stringCount(tr);
  for (int i = 0; i < n; ++i) {
    const int string = upward ? i : n - 1 - i;
    const NoteSlot& slot = beat->Notes[static_cast<size_t>(string)];
    int pitch = 0;
    if (!SoundingPitch(s, t, b, k, string, pitch)) continue;
    if (slot.Tied && continues) continue;
    if (slot.Harmonic == kNaturalHarmonic) {
      int fret = 0;
      FretNumber(slot.Fret, fret);
      pitch = NaturalHarmonicKey(pitch - fret, fret);
    }
    const int velocity = GetVolume(s, t, b, k, string);
    const int channel = NoteChannel(tr, *beat, slot);
    anyNote = true;
    if (fxStart) {
      if (startNoteTakingEffect(*fxStart, s, t, b, k, string, pitch, velocity, channel)) {
        // A bent string that trills (or takes a grace note) bends every note it sounds.
        startBend(*fxStart, slot, channel);
        wheelTaken = wheelTaken || slot.HasBend;
        continue;
      }
      if (slot.Technique >= kTremoloPicking8 && slot.Technique <= kTremoloPicking32) {
        // The picked strings of a beat are struck again together, so one element serves them.
        picked.push_back(pitch);
        pickedTechnique = slot.Technique;
        pickedVelocity = std::max(pickedVelocity, velocity);
        continue;
      }
    }
    if (strummed && !first) {
      strum->Notes[static_cast<size_t>(strum->Count++)] = {channel, pitch, slot.Harmonic, velocity};
    } else {
      first = false;
      PlayNote(so.out, pitch, slot.Harmonic, channel, velocity, false);
    }
    if (fxStart) {
      startNoteEffects(*fxStart, s, t, b, k, string, pitch, velocity, channel);
      wheelTaken = wheelTaken || slot.HasBend;
    }
  }
  if (!fxStart || !anyNote) return;
  const EffectStart& e = *fxStart;
  if (!picked.empty())
    e.fx.start(PlanTremoloPicking(tr.EffectChannel, picked, pickedVelocity, e.stepMs, e.beat64ths,
                                  pickingPeriod(pickedTechnique)));
  if (beat->HasTremoloBar) {
    e.fx.start(PlanTremoloBar(beat->TremoloBar->Points, tr.EffectChannel, e.stepMs, e.beat64ths,
                              e.fx.settings.BendCoefficient));
    wheelTaken = true;
  }
  // A written bend or bar dip is what the player does with the note; vibrato on top of it
  // would fight it for the one wheel, so the curve wins.
  if (!wheelTaken && (beat->ChordTechnique == kVibrato || beat->ChordTechnique == kWideVibrato))
    e.fx.start(PlanVibrato(tr.EffectChannel, e.stepMs, e.beat64ths, beat->ChordTechnique == kWideVibrato,
                           e.fx.settings));
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
    // Stored frets count from the chart's first fret, so a shape above the nut sounds there.
    MIDINoteOn(so.out, tr.Channel, open + fret + chord.StartFret + GetOctaveShift(tr), velocity);
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
