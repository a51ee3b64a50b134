#include "editing/track_commands.h"

#include <algorithm>
#include <set>

namespace plectaro {

namespace {

constexpr int kDrumChannel = 9;

Track& trackAt(Score& s, int track) { return s.trackMut(track); }

void requireRange(int value, int low, int high, const char* what) {
  if (value < low || value > high)
    throw ScoreError(std::string(what) + " must lie between " + std::to_string(low) + " and " +
                     std::to_string(high));
}

}  // namespace

std::array<int16_t, 2> NextFreeChannelPair(const Score& s, bool drumTrack) {
  if (drumTrack) return {kDrumChannel, kDrumChannel};
  std::set<int> used = {kDrumChannel};
  for (const Track& t : s.Tracks) {
    if (t.DrumTrack) continue;
    used.insert(t.Channel);
    used.insert(t.EffectChannel);
  }
  for (int c = 0; c + 1 < 16; ++c)
    if (!used.count(c) && !used.count(c + 1)) return {static_cast<int16_t>(c), static_cast<int16_t>(c + 1)};
  return {0, 1};
}

std::array<DrumMap, kMaxStrings> DefaultDrumMaps() {
  // Symbol order: X o x r f O s S c ~ t F. Numbers index the percussion list.
  std::array<DrumMap, kMaxStrings> maps{};
  maps[0].Drum = {15, 17, 19, 25, 21, 23, 0, 0, 18, 0, 0, 0};  // crash, ride, bell, splash, china
  maps[1].Drum = {12, 12, 8, 0, 10, 12, 0, 0, 0, 0, 0, 10};    // hi-hat open, closed, pedal
  maps[2].Drum = {4, 3, 3, 3, 5, 4, 4, 6, 0, 4, 0, 5};          // snare, side stick, roll
  maps[3].Drum = {16, 14, 13, 0, 0, 16, 0, 0, 0, 0, 16, 0};     // high and mid toms
  maps[4].Drum = {11, 9, 7, 0, 0, 11, 0, 0, 0, 0, 11, 7};       // low and floor toms
  maps[5].Drum = {1, 2, 1, 0, 0, 1, 0, 0, 0, 0, 0, 2};          // bass drums
  return maps;
}

bool IsBassInstrument(int program) { return program >= 32 && program <= 39; }

Track NewTrackSetup(const std::string& name, bool drumTrack, int instrument,
                    const std::string& instrumentName, const TuningInfo& tuning) {
  Track t;
  t.Name = name;
  t.DrumTrack = drumTrack;
  t.Instrument = static_cast<int16_t>(std::clamp(instrument, 0, 127));
  t.InstrumentName = drumTrack ? std::string() : instrumentName;
  t.Tuning = tuning;
  if (drumTrack) {
    t.DrumMaps = DefaultDrumMaps();
    // Drums read from a percussion line, not a staff of pitches.
    t.TrebleStaff = false;
  } else if (IsBassInstrument(instrument)) {
    t.TrebleStaff = false;
    t.BassStaff = true;
  }
  return t;
}

bool TrackHasNotes(const Track& track) {
  for (const Cow<TrackBar>& bar : track.Bars)
    for (const Beat& beat : bar->Beats)
      for (const NoteSlot& n : beat.Notes)
        if (n.hasNote()) return true;
  return false;
}

bool AddTrack(EditContext& ctx, const Track& setup) {
  if (ctx.doc.score.LastTrack() >= kMaxIndex) {
    ctx.message("str_NoMoreTracks", MessageIcon::Warning);
    return false;
  }
  const bool ok = RunCommand(ctx, [&] {
    Score& s = ctx.doc.score;
    Track t = setup;
    requireRange(t.Tuning.NumStrings, 1, kMaxStrings, "The number of strings");
    t.Bars.assign(s.BarInfos.size(), Cow<TrackBar>());
    const auto [channel, effect] = NextFreeChannelPair(s, t.DrumTrack);
    t.Channel = channel;
    t.EffectChannel = effect;
    s.Tracks.push_back(std::move(t));
    Document& d = ctx.doc;
    d.CursorTrack = static_cast<int16_t>(s.LastTrack());
    d.CursorBeat = 0;
    d.CursorString = 0;
    d.CursorLine = 0;
  }, "Add a Track");
  if (ok && ctx.hooks.trackChanged) ctx.hooks.trackChanged();
  return ok;
}

bool DeleteTrack(EditContext& ctx) {
  Document& d = ctx.doc;
  if (d.score.Tracks.size() <= 1) {
    ctx.message("str_CantDeleteOnlyTrack", MessageIcon::Information);
    return false;
  }
  if (!PasswordCorrect(ctx)) return false;
  const std::string name = d.score.track(d.CursorTrack).Name;
  if (!ctx.prompter.yesNo(ctx.text("str_ConfirmDeleteTrack1") + name + ctx.text("str_ConfirmDeleteTrack2"),
                          ctx.text("str_ConfirmationRequired")))
    return false;
  const bool ok = RunCommand(ctx, [&] {
    Score& s = d.score;
    s.track(d.CursorTrack);  // bounds check
    s.Tracks.erase(s.Tracks.begin() + d.CursorTrack);
    if (d.CursorTrack > s.LastTrack()) d.CursorTrack = static_cast<int16_t>(s.LastTrack());
    d.CursorBeat = 0;
  }, "Delete this Track");
  if (ok && ctx.hooks.trackChanged) ctx.hooks.trackChanged();
  return ok;
}

TrackPropertiesResult ApplyTrackProperties(EditContext& ctx, int track, const Track& props) {
  TrackPropertiesResult result;
  bool retuned = false;
  result.applied = RunCommand(ctx, [&] {
    Track& t = trackAt(ctx.doc.score, track);
    requireRange(props.Tuning.NumStrings, 1, kMaxStrings, "The number of strings");
    requireRange(props.Capo, 0, 24, "The capo fret");
    requireRange(props.Channel, 0, 15, "The channel");
    requireRange(props.EffectChannel, 0, 15, "The effect channel");
    requireRange(props.Volume, 0, 100, "The volume");
    requireRange(props.ChordVolume, 0, 100, "The chord volume");
    requireRange(props.Instrument, 0, 127, "The instrument");
    retuned = !t.DrumTrack && !(props.Tuning == t.Tuning) && TrackHasNotes(t);
    Track next = props;
    next.Bars = t.Bars;
    next.Lyrics = t.Lyrics;
    if (next.DrumTrack) {
      next.Channel = kDrumChannel;
      next.InstrumentName.clear();
    }
    t = std::move(next);
  }, "Track Properties");
  if (result.applied && retuned) {
    result.fretsKept = true;
    ctx.message("str_FretsKeptOnRetune", MessageIcon::Information);
  }
  return result;
}

bool SetTrackVolume(EditContext& ctx, int track, int volume) {
  return RunCommand(ctx, [&] {
    requireRange(volume, 0, 100, "The volume");
    trackAt(ctx.doc.score, track).Volume = static_cast<int16_t>(volume);
  }, "Volume");
}

bool SetTrackInstrument(EditContext& ctx, int track, int instrument, const std::string& name) {
  return RunCommand(ctx, [&] {
    requireRange(instrument, 0, 127, "The instrument");
    Track& t = trackAt(ctx.doc.score, track);
    t.Instrument = static_cast<int16_t>(instrument);
    if (!t.DrumTrack) t.InstrumentName = name;
  }, "Instrument");
}

bool SetTrackChannel(EditContext& ctx, int track, int channel) {
  return RunCommand(ctx, [&] {
    requireRange(channel, 0, 15, "The channel");
    Track& t = trackAt(ctx.doc.score, track);
    // A drum track plays on the percussion channel whatever is asked.
    t.Channel = static_cast<int16_t>(t.DrumTrack ? kDrumChannel : channel);
  }, "Channel");
}

bool SetTrackLyrics(EditContext& ctx, int track, const std::array<std::string, 5>& lines) {
  return RunCommand(ctx, [&] { trackAt(ctx.doc.score, track).Lyrics = lines; }, "Edit Lines");
}

}  // namespace plectaro
