#include "tools/drum_score.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "editing/track_commands.h"
#include "exchange/midi_import.h"
#include "playback/midi_out.h"
#include "score/bar_timing.h"
#include "score/drum_map.h"

namespace plectaro {

namespace {

// A velocity inside each loudness code's band (the bands of VolumeCodeForVelocity), so that a
// pattern read from a track and written back keeps every hit's loudness. FFF is full velocity,
// as a new pattern's rows are.
int VelocityOfCode(int32_t code) {
  static constexpr std::array<int, 8> kVelocity = {79, 97, 109, 127, 61, 43, 25, 8};  // by NoteVolume
  return code >= 0 && code < static_cast<int32_t>(kVelocity.size()) ? kVelocity[static_cast<size_t>(code)] : 79;
}

// The percussion list's number of a drum name; 0 for a name it lacks.
int SoundOfName(const std::string& name) {
  for (int n = 1;; ++n) {
    const std::string drum = GetDrumString(n);
    if (drum.empty()) return 0;
    if (drum == name) return n;
  }
}

Beat StepBeat(const DrumPattern& p, size_t step) {
  Beat b;
  b.Length = std::clamp<int32_t>(p.BeatLength[step], kWhole, kSixtyFourth);
  b.IsTuplet = p.Tupleted[step];
  b.Tuplet = std::clamp<int32_t>(p.TupletCode[step], 0, kTupletKinds - 1);
  b.Dotted = p.Dotted[step];
  return b;
}

bool cursorOnTrack(const Document& d) { return d.CursorTrack >= 0 && d.CursorTrack <= d.score.LastTrack(); }

}  // namespace

std::optional<DrumPattern> PatternFromTrack(const Score& s, int track) {
  if (track < 0 || track > s.LastTrack()) return std::nullopt;
  const Track& tr = s.Tracks[static_cast<size_t>(track)];
  if (!tr.DrumTrack) return std::nullopt;
  DrumPattern p;
  p.Tempo = static_cast<int16_t>(std::clamp(std::lround(s.Tempo), 1L, 999L));
  p.Instruments = DefaultDrumInstruments();
  p.Volumes.assign(p.Instruments.size(), 127);
  std::vector<bool> volumeTaken(p.Instruments.size(), false);
  const int lines = std::clamp<int>(tr.Tuning.NumStrings, 1, kMaxStrings);
  for (const Cow<TrackBar>& bar : tr.Bars) {
    for (const Beat& beat : bar->Beats) {
      const size_t step = p.Pattern.size();
      p.Pattern.emplace_back(p.Instruments.size(), false);
      p.BeatLength.push_back(std::clamp<int32_t>(beat.Length, kWhole, kSixtyFourth));
      p.Tupleted.push_back(beat.IsTuplet);
      p.TupletCode.push_back(std::clamp<int32_t>(beat.Tuplet, 0, kTupletKinds - 1));
      p.Dotted.push_back(beat.Dotted);
      for (int line = 0; line < lines; ++line) {
        const NoteSlot& slot = beat.Notes[static_cast<size_t>(line)];
        const std::string name = GetDrumString(DrumSoundAt(tr, line, slot.Fret));
        if (name.empty() || name == "-") continue;
        auto row = static_cast<size_t>(std::find(p.Instruments.begin(), p.Instruments.end(), name) - p.Instruments.begin());
        if (row == p.Instruments.size()) {
          p.Instruments.push_back(name);
          p.Volumes.push_back(127);
          volumeTaken.push_back(false);
          for (auto& cells : p.Pattern) cells.push_back(false);
        }
        p.Pattern[step][row] = true;
        // A row has one volume: the first hit of the drum gives it.
        if (!volumeTaken[row]) {
          p.Volumes[row] = static_cast<int16_t>(VelocityOfCode(slot.Volume));
          volumeTaken[row] = true;
        }
      }
    }
  }
  if (p.Pattern.empty()) return std::nullopt;
  return p;
}

int WritePatternToTrack(Score& s, int track, const DrumPattern& p) {
  Track& tr = s.trackMut(track);
  std::vector<int> sounds;
  for (const std::string& name : p.Instruments) sounds.push_back(SoundOfName(name));
  // Every bar of the track starts empty; its key signature stays.
  for (Cow<TrackBar>& bar : tr.Bars) bar.mut().Beats.clear();
  int lost = 0;
  int bar = 0;
  double used = 0;
  constexpr double kEps = 1e-6;
  for (size_t step = 0; step < p.Pattern.size(); ++step) {
    Beat beat = StepBeat(p, step);
    const double length = GetNumOf64ths(beat);
    if (!s.bar(track, bar).Beats.empty() && used + length > GetBarLength(s, track, bar) + kEps) {
      FixBar(s, track, bar);
      ++bar;
      used = 0;
      if (bar > s.GetLastBar(track)) {
        const BarInfo last = s.barInfo(bar - 1);
        s.SetBarCount(bar);
        s.SetTimeSignature(bar, last.TimeSigNumerator, last.TimeSigDenominator);
        s.barMut(track, bar).Beats.clear();
      }
    }
    for (size_t row = 0; row < sounds.size() && row < p.Pattern[step].size(); ++row) {
      if (!p.Pattern[step][row]) continue;
      const auto slot = DrumSlotFor(s.trackMut(track), sounds[row],
                                    [&beat](int line) { return !beat.Notes[static_cast<size_t>(line)].hasNote(); });
      if (!sounds[row] || !slot) {
        ++lost;
        continue;
      }
      NoteSlot& note = beat.Notes[static_cast<size_t>(slot->line)];
      note.Fret = std::string(1, kDrumSymbols[static_cast<size_t>(slot->symbol)]);
      note.Volume = VolumeCodeForVelocity(p.Volumes[row]);
    }
    s.barMut(track, bar).Beats.push_back(std::move(beat));
    used += length;
  }
  FixBar(s, track, bar);
  // The bars after the pattern get the rest a new bar holds.
  for (int b = bar + 1; b <= s.GetLastBar(track); ++b) s.barMut(track, b).Beats = TrackBar{}.Beats;
  return lost;
}

std::optional<DrumPattern> LoadPatternFromScore(EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return std::nullopt;
  const Document& d = ctx.doc;
  auto p = cursorOnTrack(d) ? PatternFromTrack(d.score, d.CursorTrack) : std::nullopt;
  if (!p) ctx.message("str_CantLoadTrack", MessageIcon::Warning);
  return p;
}

DrumScoreResult AddPatternAsTrack(EditContext& ctx, const DrumPattern& p, const std::string& name) {
  DrumScoreResult r;
  if (ctx.doc.score.LastTrack() >= kMaxIndex) {
    ctx.message("str_NoMoreTracks", MessageIcon::Warning);
    return r;
  }
  r.done = RunCommand(ctx, [&] {
    Score& s = ctx.doc.score;
    Track t = NewTrackSetup(name, true, 0, "", TuningInfo{});
    t.Bars.assign(s.BarInfos.size(), Cow<TrackBar>());
    const auto [channel, effect] = NextFreeChannelPair(s, true);
    t.Channel = channel;
    t.EffectChannel = effect;
    s.Tracks.push_back(std::move(t));
    r.lostHits = WritePatternToTrack(s, s.LastTrack(), p);
    Document& d = ctx.doc;
    d.CursorTrack = static_cast<int16_t>(s.LastTrack());
    d.CursorBar = 0;
    d.CursorBeat = 0;
    d.CursorString = 0;
    d.CursorLine = 0;
  }, "Add Drum Pattern");
  if (r.done && ctx.hooks.trackChanged) ctx.hooks.trackChanged();
  return r;
}

DrumScoreResult OverwriteTrackWithPattern(EditContext& ctx, const DrumPattern& p) {
  DrumScoreResult r;
  if (!PasswordCorrect(ctx)) return r;
  const Document& d = ctx.doc;
  if (!cursorOnTrack(d) || !d.score.Tracks[static_cast<size_t>(d.CursorTrack)].DrumTrack) {
    ctx.message("str_IsNotPercTrack", MessageIcon::Warning);
    return r;
  }
  if (!ctx.prompter.yesNo(ctx.text("str_BeatWillBeLost"), ctx.text("str_DrumMachine"))) return r;
  r.done = RunCommand(ctx, [&] {
    r.lostHits = WritePatternToTrack(ctx.doc.score, ctx.doc.CursorTrack, p);
    ctx.doc.CursorBeat = 0;
  }, "Overwrite Drum Track");
  return r;
}

}  // namespace plectaro
