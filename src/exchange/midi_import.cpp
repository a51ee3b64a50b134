#include "exchange/midi_import.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <span>

#include "playback/midi_out.h"
#include "score/bar_timing.h"
#include "score/drum_map.h"

namespace plectaro {

namespace {

constexpr int kDrumChannel = 9;
constexpr int kHighestFret = 29;
constexpr double kEps = 1e-6;

struct MidiNote {
  double Start = 0, End = 0;  // 64ths
  int Key = 0, Velocity = 0, Channel = 0;
};

struct BarSlot {
  double Start = 0, Length = 64;
  int Numerator = 4, Denominator = 4;
};

// A length that a beat can have, in 64ths. Triplets are the only tuplets that files written
// by notation programs use often enough to be worth recognising.
struct LengthChoice {
  double Value;
  int32_t Length;
  bool Dotted;
  bool Triplet;
};

const std::vector<LengthChoice>& lengthChoices() {
  static const std::vector<LengthChoice> choices = [] {
    std::vector<LengthChoice> c;
    for (int32_t len = kWhole; len <= kSixtyFourth; ++len)
      for (int kind = 0; kind < 3; ++kind) {
        const bool dotted = kind == 1, triplet = kind == 2;
        if (dotted && len == kSixtyFourth) continue;  // a dotted 64th is not a whole 64th step
        c.push_back({GetNumOf64ths(len, kTriplet, triplet, dotted), len, dotted, triplet});
      }
    std::sort(c.begin(), c.end(), [](const auto& a, const auto& b) { return a.Value > b.Value; });
    return c;
  }();
  return choices;
}

// Splits a span into the fewest beat lengths, longest first. A remainder shorter than the
// shortest beat is left out; the caller measures from positions, so it does not add up.
// A span of whole 64ths takes plain and dotted lengths only; a span with a third in it takes
// one triplet that leaves whole 64ths, so that triplets appear only where the notes need them.
// At most 64 parts, kept on the stack: an import splits a span for every chord it lays.
struct SpanParts {
  std::array<LengthChoice, 64> items;
  size_t count = 0;
  void push_back(const LengthChoice& c) { items[count++] = c; }
  size_t size() const { return count; }
  bool empty() const { return count == 0; }
  const LengthChoice& operator[](size_t i) const { return items[i]; }
  const LengthChoice* begin() const { return items.data(); }
  const LengthChoice* end() const { return items.data() + count; }
};

SpanParts splitSpan(double span) {
  SpanParts out;
  const auto whole = [](double v) { return std::fabs(v - std::nearbyint(v)) < 1e-3; };
  if (!whole(span)) {
    for (const LengthChoice& c : lengthChoices())
      if (c.Triplet && c.Value <= span + kEps && whole(span - c.Value)) {
        out.push_back(c);
        span -= c.Value;
        break;
      }
  }
  for (const LengthChoice& c : lengthChoices()) {
    if (c.Triplet && whole(span)) continue;
    while (c.Value <= span + kEps && out.size() < 64) {
      out.push_back(c);
      span -= c.Value;
    }
  }
  return out;
}

// Note starts without "Quantize" stay where the file puts them, on the grid of whole and
// triplet 64ths that a beat can show; "Quantize" truncates them to whole 64ths.
double snap(double p, bool quantize) {
  if (quantize) return std::floor(p + kEps);
  const double third = std::nearbyint(p * 3) / 3;
  if (std::fabs(p - third) < 0.05) return third;
  return std::nearbyint(p);
}

// A signature that a bar cut short by a change of signature can carry: the old denominator if
// the length is whole in its units, else the shortest denominator that fits.
std::pair<int, int> fittedSignature(double length, int denominator) {
  for (int d : {denominator, 4, 8, 16, 32}) {
    const double units = length * d / 64.0;
    if (units >= 1 - kEps && std::fabs(units - std::nearbyint(units)) < kEps) return {static_cast<int>(std::nearbyint(units)), d};
  }
  return {std::max(1, static_cast<int>(std::nearbyint(length / 16))), 4};
}

std::vector<BarSlot> barGrid(const MidiFileData& file, double songEnd) {
  std::vector<std::pair<double, std::pair<int, int>>> sigs;
  for (const MidiTrackChunk& t : file.Tracks)
    for (const MidiEvent& e : t.Events) {
      int n = 0, d = 0;
      if (e.isMeta() && e.Data1 == kMetaTimeSignature && TimeSignatureOf(e, n, d))
        sigs.push_back({e.Tick * 16.0 / file.Division, {n, d}});
    }
  std::stable_sort(sigs.begin(), sigs.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

  std::vector<BarSlot> bars;
  std::pair<int, int> cur{4, 4};
  size_t next = 0;
  double pos = 0;
  while ((pos < songEnd - kEps || bars.empty()) && bars.size() <= static_cast<size_t>(kMaxIndex)) {
    while (next < sigs.size() && sigs[next].first <= pos + kEps) cur = sigs[next++].second;
    const double length = cur.first * 64.0 / cur.second;
    if (next < sigs.size() && sigs[next].first < pos + length - kEps) {
      // A change of signature inside a bar starts a new bar there.
      const double part = sigs[next].first - pos;
      const auto [n, d] = fittedSignature(part, cur.second);
      bars.push_back({pos, part, n, d});
      pos = sigs[next].first;
      continue;
    }
    bars.push_back({pos, length, cur.first, cur.second});
    pos += length;
  }
  if (bars.size() > static_cast<size_t>(kMaxIndex)) bars.resize(static_cast<size_t>(kMaxIndex));
  return bars;
}

std::vector<MidiNote> notesOf(const MidiTrackChunk& track, int division, uint32_t fileEnd) {
  std::vector<MidiNote> notes;
  std::map<std::pair<int, int>, std::vector<size_t>> open;  // channel and key to notes sounding
  const auto at = [division](uint32_t tick) { return tick * 16.0 / division; };
  for (const MidiEvent& e : track.Events) {
    if (e.isMeta()) continue;
    if (e.isNoteOn()) {
      open[{e.channel(), e.Data1}].push_back(notes.size());
      notes.push_back({at(e.Tick), at(e.Tick), e.Data1, e.Data2, e.channel()});
    } else if (e.isNoteOff()) {
      auto it = open.find({e.channel(), e.Data1});
      if (it == open.end() || it->second.empty()) continue;
      notes[it->second.front()].End = at(e.Tick);
      it->second.erase(it->second.begin());
    }
  }
  // A note never switched off lasts to the end of the file.
  for (auto& [key, list] : open)
    for (size_t i : list) notes[i].End = at(fileEnd);
  return notes;
}

uint32_t lastTick(const MidiFileData& file) {
  uint32_t end = 0;
  for (const MidiTrackChunk& t : file.Tracks)
    if (!t.Events.empty()) end = std::max(end, t.Events.back().Tick);
  return end;
}

std::string upper(std::string s) {
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

// Lays the beats of one track out bar by bar and places the notes.
class TrackBuilder {
 public:
  TrackBuilder(Score& s, int t, const std::vector<BarSlot>& bars, const MidiImportOptions& o)
      : s_(s), t_(t), bars_(bars), o_(o) {}

  MidiImportTrackReport report;

  void build(std::vector<MidiNote> notes) {
    std::stable_sort(notes.begin(), notes.end(), [](const MidiNote& a, const MidiNote& b) { return a.Start < b.Start; });
    // A strummed or played-by-hand chord reaches the file a few milliseconds apart string by
    // string: notes starting less than a 64th after the first of a chord belong to it.
    double chordStart = -1, snapped = 0;
    for (MidiNote& n : notes) {
      if (chordStart < 0 || n.Start >= chordStart + 0.95) {
        chordStart = n.Start;
        snapped = snap(n.Start, o_.Quantize);
      }
      n.End = std::max(snap(n.End, o_.Quantize), snapped + 1);
      n.Start = snapped;
    }
    std::stable_sort(notes.begin(), notes.end(), [](const MidiNote& a, const MidiNote& b) { return a.Start < b.Start; });
    size_t i = 0;
    for (size_t b = 0; b < bars_.size(); ++b) {
      const BarSlot& bar = bars_[b];
      const double barEnd = bar.Start + bar.Length;
      auto& beats = s_.barMut(t_, static_cast<int>(b)).Beats;
      beats.clear();
      // Room for a beat per chord, which is what a bar of notes holds when nothing needs
      // splitting: growing the bar beat by beat moves every beat several times.
      size_t chords = 0;
      for (size_t n = i; n < notes.size() && notes[n].Start < barEnd - kEps; ++n)
        chords += n == i || notes[n].Start != notes[n - 1].Start;
      beats.reserve(std::max<size_t>(chords, 1));
      double cursor = bar.Start;
      while (i < notes.size() && notes[i].Start < barEnd - kEps) {
        size_t j = i;
        double chordEnd = 0;
        while (j < notes.size() && notes[j].Start == notes[i].Start) chordEnd = std::max(chordEnd, notes[j++].End);
        const double p = std::max(notes[i].Start, cursor);
        const double nextStart = j < notes.size() ? notes[j].Start : barEnd;
        // Drums do not sustain: a hit lasts until the next one.
        if (drums()) chordEnd = nextStart;
        cursor = carryTie(static_cast<int>(b), cursor, p);
        cursor = lay(static_cast<int>(b), cursor, p, {});
        const double end = std::min({chordEnd, nextStart, barEnd});
        const int first = static_cast<int>(beats.size());
        cursor = lay(static_cast<int>(b), cursor, std::max(end, p + kEps), std::span(notes).subspan(i, j - i));
        if (o_.AddTies && chordEnd > barEnd + kEps && first < static_cast<int>(beats.size())) {
          tie_ = beats[static_cast<size_t>(first)];
          tieEnd_ = chordEnd;
        }
        i = j;
        if (o_.progress && grandTotal > 0) o_.progress(static_cast<int>(100.0 * static_cast<double>(doneBefore + i) / grandTotal));
      }
      cursor = carryTie(static_cast<int>(b), cursor, barEnd);
      lay(static_cast<int>(b), cursor, barEnd, {});
      if (beats.empty()) addRest(beats, lengthChoices().back());
    }
    // Notes behind the last bar a score can hold are lost.
    report.Lost += static_cast<int>(notes.size() - i);
  }

  size_t doneBefore = 0, grandTotal = 0;  // notes of the tracks before, and of all, for the progress

 private:
  bool drums() const { return s_.Tracks[static_cast<size_t>(t_)].DrumTrack; }

  // Built in place: a Beat is large, and a temporary would be written twice.
  static Beat& addRest(std::vector<Beat>& beats, const LengthChoice& c) {
    Beat& beat = beats.emplace_back();
    beat.Length = c.Length;
    beat.Dotted = c.Dotted;
    beat.IsTuplet = c.Triplet;
    beat.Tuplet = kTriplet;
    return beat;
  }

  // Fills cursor..until with beats. The first holds `chord`; the rest continue it as tied
  // beats with "Add ties", else they are rests. Returns where the beats end.
  double lay(int bar, double cursor, double until, std::span<const MidiNote> chord) {
    const SpanParts parts = splitSpan(until - cursor);
    auto& beats = s_.barMut(t_, bar).Beats;
    for (size_t k = 0; k < parts.size(); ++k) {
      if (beats.size() >= static_cast<size_t>(kMaxIndex)) break;
      addRest(beats, parts[k]);
      const int beat = static_cast<int>(beats.size()) - 1;
      if (k == 0) {
        for (const MidiNote& n : chord) place(bar, beat, n);
      } else if (o_.AddTies && !chord.empty()) {
        tieFrom(beats[beats.size() - 2], beats.back());
      }
      cursor += parts[k].Value;
    }
    if (parts.empty() && !chord.empty()) report.Lost += static_cast<int>(chord.size());
    return cursor;
  }

  // The rest of a note from the bar before, tied, up to `until` or to where the note ends.
  double carryTie(int bar, double cursor, double until) {
    if (!tie_) return cursor;
    const double end = std::min(tieEnd_, until);
    const SpanParts parts = splitSpan(end - cursor);
    auto& beats = s_.barMut(t_, bar).Beats;
    for (const LengthChoice& c : parts) {
      tieFrom(*tie_, addRest(beats, c));
      cursor += c.Value;
    }
    if (tieEnd_ <= until + kEps) tie_.reset();
    return cursor;
  }

  static void tieFrom(const Beat& from, Beat& to) {
    for (size_t k = 0; k < from.Notes.size(); ++k) {
      if (!from.Notes[k].hasNote()) continue;
      to.Notes[k].Fret = from.Notes[k].Fret;
      to.Notes[k].Volume = from.Notes[k].Volume;
      to.Notes[k].Tied = true;
    }
  }

  void place(int bar, int beat, const MidiNote& n) {
    bool placed = false;
    if (drums()) {
      placed = PlacePercussionHit(bar, beat, n);
    } else {
      Track& tr = s_.trackMut(t_);
      for (int string = 0; string < kMaxStrings && !placed; ++string) {
        if (string >= tr.Tuning.NumStrings) break;
        if (s_.note(t_, bar, beat, string).hasNote()) continue;
        tr.Channel = static_cast<int16_t>(n.Channel);
        tr.EffectChannel = static_cast<int16_t>(n.Channel);
        placed = PlaceNoteOnString(s_, string, t_, bar, beat, n.Key, n.Velocity);
      }
    }
    ++(placed ? report.Placed : report.Lost);
  }

  // The drum line that plays a sound: one already set up for it, else a new symbol on the
  // line with the fewest sounds, so that each sound gets its own line while lines last.
  bool PlacePercussionHit(int bar, int beat, const MidiNote& n) {
    // Sound numbers run with the keys from 35 (note - 34), except where the list has a gap or
    // two sounds swapped; looking the key up keeps those hits on their own sound.
    int sound = 0;
    for (int k = 1; k <= 46 && !sound; ++k)
      if (GetDrumNote(k) == n.Key) sound = k;
    if (!sound) return false;
    const auto slot = DrumSlotFor(s_.trackMut(t_), sound);
    return slot && putHit(bar, beat, slot->line, static_cast<size_t>(slot->symbol), n);
  }

  bool putHit(int bar, int beat, int line, size_t symbol, const MidiNote& n) {
    NoteSlot& slot = s_.noteMut(t_, bar, beat, line);
    if (slot.hasNote()) return false;
    slot.Fret = std::string(1, kDrumSymbols[symbol]);
    slot.Volume = VolumeCodeForVelocity(n.Velocity);
    return true;
  }

  Score& s_;
  int t_;
  const std::vector<BarSlot>& bars_;
  const MidiImportOptions& o_;
  std::optional<Beat> tie_;
  double tieEnd_ = 0;
};

}  // namespace

std::string MidiTrackListText(int index, const std::string& name) {
  return "Track " + std::to_string(index + 1) + " (" + (name.empty() ? "null" : name) + ")";
}

MidiImportSource OpenMIDIData(MidiFileData file) {
  MidiImportSource src;
  for (size_t i = 0; i < file.Tracks.size(); ++i) {
    const MidiTrackChunk& t = file.Tracks[i];
    src.TrackList.push_back(MidiTrackListText(static_cast<int>(i), t.name()));
    src.NotesPerTrack.push_back(static_cast<int>(std::count_if(t.Events.begin(), t.Events.end(),
                                                               [](const MidiEvent& e) { return e.isNoteOn(); })));
  }
  src.File = std::move(file);
  return src;
}

MidiImportSource OpenMIDIFile(const std::filesystem::path& path) { return OpenMIDIData(ReadMidiFile(path.string())); }

int32_t VolumeCodeForVelocity(int velocity) {
  const int level = static_cast<int>(std::nearbyint(velocity / 127.0 * 50));
  if (level < 7) return kVolPPP;
  if (level < 14) return kVolPP;
  if (level < 21) return kVolP;
  if (level < 28) return kVolMP;
  if (level < 35) return kVolMF;
  if (level < 42) return kVolF;
  if (level < 45) return kVolFF;
  return kVolFFF;
}

bool PlaceNoteOnString(Score& s, int string, int track, int bar, int beat, int note, int velocity) {
  Track& tr = s.trackMut(track);
  const int fret = note - tr.Tuning.Offset[static_cast<size_t>(string)] - GetStringPitch(string);
  if (fret < 0 || fret > kHighestFret) {
    if (string == 5 && fret < 0 && tr.Tuning.NumStrings == 6) tr.Tuning.NumStrings = 7;
    return false;
  }
  NoteSlot& slot = s.noteMut(track, bar, beat, string);
  slot.Fret = std::to_string(fret);
  slot.Volume = VolumeCodeForVelocity(velocity);
  return true;
}

std::vector<MidiImportTrackReport> FullImport(const MidiImportSource& source, const MidiImportOptions& options,
                                              Score& score) {
  const MidiFileData& file = source.File;
  std::vector<int> chosen = options.Tracks;
  if (chosen.empty())
    for (size_t i = 0; i < source.NotesPerTrack.size(); ++i)
      if (source.NotesPerTrack[i] > 0) chosen.push_back(static_cast<int>(i));
  std::erase_if(chosen, [&](int i) { return i < 0 || static_cast<size_t>(i) >= file.Tracks.size(); });
  if (chosen.empty()) throw ScoreError("the MIDI file has no notes to import");

  const uint32_t fileEnd = lastTick(file);
  std::vector<std::vector<MidiNote>> notes;
  double songEnd = 0;
  for (int i : chosen) {
    notes.push_back(notesOf(file.Tracks[static_cast<size_t>(i)], file.Division, fileEnd));
    // The song lasts until its last note ends, so a held final chord keeps its bar.
    for (const MidiNote& n : notes.back()) songEnd = std::max({songEnd, n.Start + kEps, n.End - 0.5});
  }
  const std::vector<BarSlot> bars = barGrid(file, songEnd);

  // The tempo of the first tempo event, wherever it stands.
  const MidiEvent* tempo = nullptr;
  for (const MidiTrackChunk& t : file.Tracks)
    for (const MidiEvent& e : t.Events)
      if (e.isMeta() && e.Data1 == kMetaTempo && TempoOf(e) > 0 && (!tempo || e.Tick < tempo->Tick)) {
        tempo = &e;
        break;
      }
  score.Tempo = tempo ? static_cast<float>(std::clamp(std::nearbyint(60000000.0 / TempoOf(*tempo)), 1.0, 999.0)) : 120.0f;

  score.Tracks.assign(chosen.size(), Track());
  score.BarInfos.assign(1, BarInfo());
  for (Track& tr : score.Tracks) tr.Bars.resize(1);
  score.SetBarCount(static_cast<int>(bars.size()) - 1);
  for (size_t b = 0; b < bars.size(); ++b) score.SetTimeSignature(static_cast<int>(b), bars[b].Numerator, bars[b].Denominator);

  std::vector<MidiImportTrackReport> reports;
  size_t done = 0, grandTotal = 0;
  for (const auto& n : notes) grandTotal += n.size();
  for (size_t k = 0; k < chosen.size(); ++k) {
    const MidiTrackChunk& chunk = file.Tracks[static_cast<size_t>(chosen[k])];
    Track& tr = score.Tracks[k];
    const std::string name = chunk.name();
    tr.Name = name.empty() ? "Track " + std::to_string(k + 1) : name;
    std::string instrumentText;
    int drumNotes = 0;
    bool haveProgram = false;
    for (const MidiEvent& e : chunk.Events) {
      if (e.isMeta() && e.Data1 == kMetaInstrumentName && instrumentText.empty()) instrumentText = e.Meta;
      if (!e.isMeta() && e.kind() == 0xC0 && !haveProgram) {
        haveProgram = true;
        tr.Instrument = e.Data1;
        tr.InstrumentName = kInstrumentNames[e.Data1];
      }
      if (e.isNoteOn() && e.channel() == kDrumChannel) ++drumNotes;
    }
    tr.Tuning = TuningInfo();
    tr.TabStaff = true;
    tr.DrumTrack = false;
    tr.Reverb = options.Reverb;
    const bool bass = upper(name + " " + source.TrackList[static_cast<size_t>(chosen[k])] + " " + instrumentText + " " +
                            (haveProgram ? tr.InstrumentName : ""))
                          .find("BASS") != std::string::npos;
    if (drumNotes * 2 > source.NotesPerTrack[static_cast<size_t>(chosen[k])]) {
      tr.DrumTrack = true;
      tr.Channel = tr.EffectChannel = kDrumChannel;
      tr.TrebleStaff = false;
      std::vector<int> sounds;
      for (const MidiEvent& e : chunk.Events)
        if (e.isNoteOn() && std::find(sounds.begin(), sounds.end(), e.Data1) == sounds.end()) sounds.push_back(e.Data1);
      tr.Tuning.NumStrings = static_cast<int16_t>(std::clamp<size_t>(sounds.size(), 1, kMaxStrings));
    } else if (bass) {
      tr.Tuning.Offset.fill(-12);
      tr.TrebleStaff = false;
      tr.BassStaff = true;
    }

    TrackBuilder builder(score, static_cast<int>(k), bars, options);
    builder.report.MidiTrack = chosen[k];
    builder.report.Name = tr.Name;
    builder.doneBefore = done;
    builder.grandTotal = grandTotal;
    done += notes[k].size();
    builder.build(notes[k]);
    reports.push_back(builder.report);
  }
  if (options.progress) options.progress(100);
  return reports;
}

std::vector<MidiImportTrackReport> ImportMIDIFile(const std::filesystem::path& path, const MidiImportOptions& options,
                                                  Score& score) {
  const MidiImportSource source = OpenMIDIFile(path);
  auto reports = FullImport(source, options, score);
  score.Title = path.stem().string();
  return reports;
}

}  // namespace plectaro
