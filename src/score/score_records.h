// The records of an open document: Score, Track, TrackBar, Beat, NoteSlot, BarInfo and the
// small records inside them, with the accessors that every subsystem uses.
//
// Field names are the team's vocabulary and are kept as they are named in the design (PascalCase).
// Widths are those of the stored values: i16 fields are int16_t, i32 fields int32_t. Booleans are
// bool in memory; the music file writes them as "True"/"False".
//
// Records are plain values with operator==. A TrackBar is held in a Cow box so that copies of
// a Score (undo snapshots, the command guard) share every bar that did not change; large, rarely
// used sub-records (bend curve, tremolo-bar curve, chord diagram) are boxed for the same reason.
// Read a bar through `bars[b]->...` and write it through `bars[b].mut()....`.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "score/cow.h"
#include "score/small_text.h"

namespace plectaro {

// A bounds check or a value that a command cannot work with. The command guard catches it,
// restores the document as it was before the command and reports the message.
class ScoreError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

constexpr int kMaxStrings = 7;       // NoteSlots in every Beat, whatever NumStrings says
constexpr int kMaxIndex = 32767;     // track, bar and beat numbers are 16-bit signed

// ---- enumerations (stored numbers are part of the file format) ----

// Beat.Length: smaller number means longer note.
enum NoteLength : int32_t {
  kWhole = 0, kHalf = 1, kQuarter = 2, kEighth = 3, kSixteenth = 4, kThirtySecond = 5,
  kSixtyFourth = 6
};

// Beat.Tuplet; its index is the menu position. n notes in the time of two.
enum TupletKind : int32_t {
  kTriplet = 0, k5Tuplet = 1, k6Tuplet = 2, k7Tuplet = 3, k9Tuplet = 4, k10Tuplet = 5,
  k11Tuplet = 6, k12Tuplet = 7, k13Tuplet = 8
};
constexpr int kTupletKinds = 9;
// Notes per tuplet for each TupletKind.
constexpr std::array<int, kTupletKinds> kTupletNotes = {3, 5, 6, 7, 9, 10, 11, 12, 13};

// NoteSlot.Volume stored numbers. 0 is MF (the default), not silence.
enum NoteVolume : int32_t {
  kVolMF = 0, kVolF = 1, kVolFF = 2, kVolFFF = 3, kVolMP = 4, kVolP = 5, kVolPP = 6, kVolPPP = 7
};
// Menu order, loudest first, mapped to the stored number.
constexpr std::array<int32_t, 8> kVolumeMenuToStored = {3, 2, 1, 0, 4, 5, 6, 7};
constexpr std::array<const char*, 8> kVolumeMenuCaptions = {"FFF", "FF", "F",  "MF",
                                                            "MP",  "P",  "PP", "PPP"};

enum HarmonicKind : int32_t {
  kNoHarmonic = 0, kNaturalHarmonic = 1, kArtificialHarmonic5 = 2, kArtificialHarmonic7 = 3,
  kArtificialHarmonic12 = 4, kTappedHarmonic = 5, kPitchHarmonic = 6, kSemiHarmonic = 7
};

// The number 5 is never set. Slide Into Up/Down are crossed against the menu order.
enum NoteTechnique : int32_t {
  kNoTechnique = 0, kStaccato = 1, kTremoloPicking8 = 2, kTremoloPicking16 = 3,
  kTremoloPicking32 = 4, kSlideUp = 6, kSlideDown = 7, kLegatoSlide = 8, kSlideIntoUp = 9,
  kSlideIntoDown = 10, kHammerOnPullOff = 11
};

enum ChordTechnique : int32_t {
  kNoChordTechnique = 0, kVibrato = 1, kWideVibrato = 2, kPalmMute = 3, kTapping = 4,
  kSlapping = 5, kPopping = 6, kFadeIn = 7
};

enum StrokeKind : int32_t { kNoStroke = 0, kUpStroke = 1, kDownStroke = 2 };

// GraceInfo.Transition
enum GraceTransition : int32_t { kGraceNone = 0, kGraceSlide = 1, kGraceBend = 2, kGraceHammer = 3 };

// The twelve drum symbols of a drum track's Fret, in the field order of DrumMap.
constexpr std::array<char, 12> kDrumSymbols = {'X', 'o', 'x', 'r', 'f', 'O', 's', 'S', 'c', '~', 't', 'F'};

// Open pitch of each string number; a note's MIDI key is fret + offset + this.
constexpr std::array<int, kMaxStrings> kStandardStringPitch = {64, 59, 55, 50, 45, 40, 35};

// ---- small records ----

struct FontInfo {
  bool Bold = false;
  bool Italic = false;
  std::string Name;
  int16_t Size = 0;
  bool Strikethrough = false;
  bool Underline = false;
  int32_t Color = 0;  // RGB
  bool operator==(const FontInfo&) const = default;
};

struct TuningInfo {
  int16_t NumStrings = 6;
  std::array<int16_t, kMaxStrings> Offset{};
  bool operator==(const TuningInfo&) const = default;
};

// Drum to sound for each symbol on one line of a drum track, in kDrumSymbols order.
struct DrumMap {
  std::array<int16_t, 12> Drum{};
  bool operator==(const DrumMap&) const = default;
};

struct GraceInfo {
  SmallText Fret;          // "x" for a dead note
  int32_t Length = 0;      // 0 sixteenth, 1 thirty-second, 2 sixty-fourth
  int32_t Volume = 0;      // NoteVolume numbers
  int32_t Transition = 0;  // GraceTransition
  bool operator==(const GraceInfo&) const = default;
};

struct TrillInfo {
  int16_t TrillFret = 0;
  int32_t Period = 0;  // 0 thirty-second, 1 sixteenth, 2 eighth
  bool operator==(const TrillInfo&) const = default;
};

struct BendInfo {
  std::array<double, 26> Points{};  // curve height in equal time steps over the beat
  int32_t PresetIndex = 0;
  int32_t Scale = 0;  // 11 minus the position of the scale control
  bool operator==(const BendInfo&) const = default;
};

struct TremoloBarInfo {
  std::array<double, 25> Points{};
  int32_t Kind = 0;  // 0..5
  std::string Label;  // depth as printed, e.g. "5" or "4½"
  bool operator==(const TremoloBarInfo&) const = default;
};

struct BeatChord {
  int16_t StartFret = 0;
  int16_t NumStrings = 0;
  bool Barre = false;
  std::array<std::string, kMaxStrings> Frets;
  std::array<std::string, kMaxStrings> Fingers;
  std::array<int16_t, kMaxStrings> Tuning{};  // MIDI pitch of each open string
  std::string Name;
  bool operator==(const BeatChord&) const = default;
};

// ---- the document records ----

// Laid out small: a beat holds seven of these and most of them are empty. The fret text lives
// inside the slot, the grace note and bend curve are boxed (a blank box is a null pointer),
// and the fields are ordered so that no padding falls between them.
struct NoteSlot {
  SmallText Fret;  // "" no note; decimal fret; "x" dead note; a drum symbol on a drum track
  Cow<GraceInfo> Grace;
  Cow<BendInfo> Bend;
  int32_t Volume = kVolMF;
  int32_t Harmonic = kNoHarmonic;
  int32_t Technique = kNoTechnique;
  int32_t LeftFinger = 0;   // 0 none, 1 T, 2 "1" .. 5 "4"
  int32_t RightFinger = 0;  // 0 none, 1 T, 2 I, 3 M, 4 A, 5 O
  TrillInfo Trill;
  bool LetRing = false;
  bool Accentuate = false;
  bool Tied = false;
  bool HasGrace = false;
  bool HasTrill = false;
  bool HasBend = false;
  bool GhostNote = false;
  bool operator==(const NoteSlot&) const = default;

  bool hasNote() const { return !Fret.empty(); }
};

struct Beat {
  std::array<NoteSlot, kMaxStrings> Notes;  // string 0 is the highest
  Cow<TremoloBarInfo> TremoloBar;
  Cow<BeatChord> Chord;
  std::string Text;
  std::string GotoName;
  int32_t Length = kWhole;  // a blank beat is a whole-note rest, as a newly grown beat is
  int32_t ChordTechnique = kNoChordTechnique;
  int32_t Stroke = kNoStroke;
  int32_t Tuplet = kTriplet;  // meaningful only while IsTuplet
  bool HasTremoloBar = false;
  bool IsTuplet = false;
  bool Dotted = false;
  bool HasChord = false;
  bool operator==(const Beat&) const = default;

  // A beat with no fret on any string is a rest.
  bool isRest() const;
};

struct TrackBar {
  std::vector<Beat> Beats = {quarterRest()};  // a new bar holds one quarter-note rest
  int32_t KeySignature = 0;
  bool KeyMinor = false;
  bool operator==(const TrackBar&) const = default;

  static Beat quarterRest() {
    Beat b;
    b.Length = kQuarter;
    return b;
  }
};

struct BarInfo {
  int32_t TimeSigNumerator = 4;
  int32_t TimeSigDenominator = 4;
  bool DSAlCoda = false;
  bool Coda = false;
  bool ToCoda = false;
  bool Sign = false;
  bool RepeatOpen = false;
  int16_t RepeatClose = 0;  // 0 none, else the repeat count
  bool operator==(const BarInfo&) const = default;
};

struct Track {
  std::array<std::string, 5> Lyrics;
  std::string Name = "Track 1";
  std::string InstrumentName = "A. Guitar (Nylon)";
  int16_t Volume = 50;
  int16_t Instrument = 24;  // General MIDI program, 0-based
  TuningInfo Tuning;
  int16_t Channel = 0;  // a drum track always has 9
  int16_t EffectChannel = 1;
  bool OctaveDown = false;
  bool OctaveUp = false;
  int16_t ChordVolume = 30;
  std::array<DrumMap, kMaxStrings> DrumMaps{};
  bool Reverb = false;
  int16_t Capo = 0;
  std::vector<Cow<TrackBar>> Bars = {Cow<TrackBar>()};
  bool TrebleStaff = true;
  bool BassStaff = false;
  bool TabStaff = true;
  bool DrumTrack = false;
  bool operator==(const Track&) const = default;
};

struct Score {
  std::string CurrentFileName;
  std::string ResourceAddress;
  std::string ResourceText;
  std::vector<Track> Tracks = {Track()};
  std::vector<BarInfo> BarInfos = {BarInfo()};
  std::string Title = "Untitled";
  bool PasswordProtected = false;
  std::string Password;
  std::string SubTitle;
  std::string Author;
  std::string Artist;
  std::string Album;
  std::string Copyright;
  std::string TabAuthor;
  std::string Instructions;
  std::string Notice;
  std::string Notes;
  float Tempo = 60;
  bool ShuffleRhythm = false;
  int16_t RowSpacing = 100;
  bool AlwaysDrawChordCharts = true;
  bool AlwaysDrawFileHeaders = false;
  FontInfo HeaderFont{false, false, "Times New Roman", 19, false, false, 0};
  int32_t LineColor = 0;
  FontInfo NoteFont{false, false, "Arial", 8, false, false, 0};
  bool operator==(const Score&) const = default;

  // ---- bounds-checked access; every failure throws ScoreError ----
  const Track& track(int t) const;
  Track& trackMut(int t);
  const BarInfo& barInfo(int b) const;
  BarInfo& barInfoMut(int b);
  const TrackBar& bar(int t, int b) const;
  TrackBar& barMut(int t, int b);  // detaches the bar from any snapshot that shares it
  const Beat& beat(int t, int b, int k) const;
  Beat& beatMut(int t, int b, int k);
  const NoteSlot& note(int t, int b, int k, int s) const;
  NoteSlot& noteMut(int t, int b, int k, int s);

  // ---- the shared accessors ----
  int LastTrack() const { return static_cast<int>(Tracks.size()) - 1; }
  int GetLastBar(int track) const;
  int GetLastBeat(int track, int bar) const;
  // Resizes Beats to lastBeat + 1 keeping what stands; new beats are blank.
  void SetBeatCount(int track, int bar, int lastBeat);
  // Makes every NoteSlot of the beat blank and clears the beat's marks; Length and GotoName stay.
  void ClearBeat(int track, int bar, int beat);
  void SetTuning(int track, const std::array<int16_t, kMaxStrings>& offsets, int numStrings);
  void SetTimeSignature(int bar, int numerator, int denominator);
  // Resizes BarInfos and the Bars of every track together to lastBar + 1.
  void SetBarCount(int lastBar);
  // MIDI key of a note: fret + tuning offset + open pitch of the string. Throws ScoreError
  // when the slot holds no number (empty, dead note, drum symbol).
  int GetNotePitch(int track, int bar, int beat, int string) const;
};

// Open pitch of a string number plus nothing else (0..6).
int GetStringPitch(int string);

// Parses a Fret text as a fret number; false for "", "x", drum symbols and anything else.
bool FretNumber(std::string_view fret, int& out);

}  // namespace plectaro
