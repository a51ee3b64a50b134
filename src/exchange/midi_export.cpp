#include "exchange/midi_export.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "playback/offline_play.h"
#include "playback/virtual_clock.h"
#include "score/bar_timing.h"
#include "score/file_io.h"

namespace plectaro {

namespace {

constexpr int kAllSoundOff = 120;
constexpr int kAllNotesOff = 123;
constexpr int kBankSelect = 0;

double exactLength(const Beat& b) {
  try {
    return GetNumOf64ths(b);
  } catch (const ScoreError&) {
    return 16;  // a damaged length plays as a quarter, and is stored as one
  }
}

// Exact 64ths of the first `count` beats of a track's bar.
double beatsBefore(const Score& s, int t, int bar, int count) {
  if (bar < 0 || bar > s.GetLastBar(t)) return 0;
  const auto& beats = s.bar(t, bar).Beats;
  double p = 0;
  for (int k = 0; k < count && k < static_cast<int>(beats.size()); ++k) p += exactLength(beats[static_cast<size_t>(k)]);
  return p;
}

// A channel message at its tick. Eight bytes instead of a full MidiEvent: a long song sends
// hundreds of thousands of these, and the export's time goes into moving memory otherwise.
struct Placed {
  uint32_t Tick;
  uint8_t Status, Data1, Data2;
};

uint32_t ticksOf(double pos, int tpq) {
  return static_cast<uint32_t>(std::max(0.0, std::nearbyint(pos * tpq / 16.0)));
}

// Listens to the scheduler: learns from each beat start where in the unfolded song that beat
// lies, and turns the messages that follow into file events at that place.
class ExportOut : public MidiOut {
 public:
  ExportOut(const Score& s, const VirtualClock& clock, int tpq) : s_(s), clock_(clock), tpq_(tpq) {
    const size_t n = s.Tracks.size();
    anchorPos_.assign(n, 0);
    anchorMs_.assign(n, 0);
    passOf_.assign(n, -1);
    events.resize(n);
    // A note-on and a note-off for every note, and room for a few more: growing vectors of a
    // long song otherwise spend most of the export copying.
    for (size_t t = 0; t < n; ++t) {
      size_t notes = 0;
      for (const auto& bar : s.Tracks[t].Bars)
        for (const Beat& beat : bar->Beats)
          for (const NoteSlot& slot : beat.Notes) notes += slot.hasNote();
      events[t].reserve(notes * 2 + 64);
    }
    for (auto& ch : sounding_) ch.fill(-1);
    program_.fill(-1);
  }

  int openDevice(int) override { return kMidiOk; }
  void closeDevice() override {}
  bool isOpen() const override { return true; }
  std::vector<MidiDeviceInfo> devices() override { return {{"MIDI file", 0}}; }

  // A beat of track t starts: (bar, beat) as the scheduler stands on it. The scheduler moves
  // on to another pass of a bar when a track starts beat 0 a second time in the same pass; the
  // pass before lasted as long as the notes of the last track's bar, which decide when a bar
  // ends.
  void beatStarts(int t, int bar, int beat) {
    const size_t ti = static_cast<size_t>(t);
    if (ti >= passOf_.size()) return;
    if (pass_ < 0) {
      pass_ = 0;
      passBar_ = bar;
      signature(bar);
    } else if (beat == 0 && passOf_[ti] == pass_) {
      const int last = s_.LastTrack();
      passStart_ += beatsBefore(s_, last, passBar_, s_.GetLastBar(last) >= passBar_ ? s_.GetLastBeat(last, passBar_) + 1 : 0);
      ++pass_;
      passBar_ = bar;
      signature(bar);
    }
    passOf_[ti] = pass_;
    anchorPos_[ti] = passStart_ + beatsBefore(s_, t, bar, beat);
    anchorMs_[ti] = clock_.nowMs();
    lastTrack_ = t;
    lastHookMs_ = clock_.nowMs();
  }

  int shortMsg(uint32_t word) override {
    const uint8_t status = word & 0xFF;
    const uint8_t d1 = (word >> 8) & 0x7F;
    const uint8_t d2 = (word >> 16) & 0x7F;
    const int t = trackFor(status & 0x0F);
    if (t < 0) return kMidiOk;  // before the first beat: the start's silence, nothing sounds yet
    const double pos = anchorPos_[static_cast<size_t>(t)] +
                       (clock_.nowMs() - anchorMs_[static_cast<size_t>(t)]) * s_.Tempo / 3750.0;
    endPos = std::max(endPos, pos);
    const int ch = status & 0x0F;
    switch (status & 0xF0) {
      case 0x90:
        if (d2 > 0) {
          noteOff(ch, d1, pos);  // a key struck again ends its last note first
          sounding_[static_cast<size_t>(ch)][d1] = static_cast<int8_t>(t);
          keys_[static_cast<size_t>(ch)].push_back(d1);
          put(t, pos, status, d1, d2);
        } else {
          noteOff(ch, d1, pos);
        }
        break;
      case 0x80: noteOff(ch, d1, pos); break;
      case 0xB0:
        // The all-off pairs that end every beat become note-offs of what sounds, which is
        // what sequencers and notation programs need to see how long a note lasts.
        if (d1 == kAllSoundOff || d1 == kAllNotesOff) {
          // Every beat sends these pairs on two channels: walk only the keys that sound.
          auto& keys = keys_[static_cast<size_t>(ch)];
          for (uint8_t key : keys) noteOff(ch, key, pos);
          keys.clear();  // keeps its room for the next beat
        } else if (d1 == kBankSelect) {
          bank_[static_cast<size_t>(ch)] = d2;
        } else {
          put(t, pos, status, d1, d2);
        }
        break;
      case 0xC0: {
        // Playback sends the program with every beat; the file needs it only when it changes.
        const int want = bank_[static_cast<size_t>(ch)] * 128 + d1;
        if (program_[static_cast<size_t>(ch)] != want) {
          program_[static_cast<size_t>(ch)] = want;
          put(t, pos, static_cast<uint8_t>(0xB0 | ch), kBankSelect, static_cast<uint8_t>(bank_[static_cast<size_t>(ch)]));
          put(t, pos, status, d1, 0);
        }
        break;
      }
      default: put(t, pos, status, d1, d2); break;
    }
    return kMidiOk;
  }

  void finish() {
    for (int ch = 0; ch < 16; ++ch)
      for (int key = 0; key < 128; ++key) noteOff(ch, key, endPos);
  }

  std::vector<std::vector<Placed>> events;
  std::vector<std::pair<double, std::pair<int, int>>> signatures;  // position, numerator/denominator
  double endPos = 0;

 private:
  // Messages inside a beat start belong to that beat's track; later ones (effect and strum
  // timers) to the track that plays on their channel.
  int trackFor(int ch) const {
    if (lastTrack_ < 0) return -1;
    if (clock_.nowMs() == lastHookMs_ && playsOn(lastTrack_, ch)) return lastTrack_;
    for (int t = 0; t <= s_.LastTrack(); ++t)
      if (playsOn(t, ch)) return t;
    return lastTrack_;
  }
  bool playsOn(int t, int ch) const {
    const Track& tr = s_.Tracks[static_cast<size_t>(t)];
    return tr.DrumTrack ? ch == 9 : (tr.Channel == ch || tr.EffectChannel == ch);
  }

  void noteOff(int ch, int key, double pos) {
    int8_t& owner = sounding_[static_cast<size_t>(ch)][static_cast<size_t>(key)];
    if (owner < 0) return;
    put(owner, pos, static_cast<uint8_t>(0x80 | ch), static_cast<uint8_t>(key), 0);
    owner = -1;
  }

  void put(int t, double pos, uint8_t status, uint8_t d1, uint8_t d2) {
    events[static_cast<size_t>(t)].push_back({ticksOf(pos, tpq_), status, d1, d2});
  }

  void signature(int bar) {
    if (bar < 0 || bar >= static_cast<int>(s_.BarInfos.size())) return;
    const BarInfo& info = s_.BarInfos[static_cast<size_t>(bar)];
    const std::pair<int, int> sig{info.TimeSigNumerator, info.TimeSigDenominator};
    if (signatures.empty() || signatures.back().second != sig) signatures.push_back({passStart_, sig});
  }

  const Score& s_;
  const VirtualClock& clock_;
  int tpq_;
  std::vector<double> anchorPos_, anchorMs_;
  std::vector<int> passOf_;
  int pass_ = -1;
  int passBar_ = 0;
  double passStart_ = 0;
  int lastTrack_ = -1;
  double lastHookMs_ = -1;
  std::array<std::array<int8_t, 128>, 16> sounding_{};  // track that sounds each key, -1 none
  std::array<std::vector<uint8_t>, 16> keys_;  // keys struck on each channel since its last all-off
  std::array<int, 16> bank_{};
  std::array<int, 16> program_{};
};

}  // namespace

MidiFileData MakeMIDIData(const Score& score, const MidiExportOptions& options) {
  const int tpq = std::clamp(options.TicksPerQuarter, 1, 0x7FFF);
  VirtualClock clock;
  ExportOut out(score, clock, tpq);
  {
    Scheduler scheduler(out, clock);
    scheduler.options.FollowPlayback = false;
    scheduler.options.OutputBank = static_cast<int16_t>(options.OutputBank);
    scheduler.hooks.beatStarts = [&out](int t, int bar, int beat) { out.beatStarts(t, bar, beat); };
    scheduler.PlayTab(score, 0, static_cast<int>(score.BarInfos.size()) - 1);
    RunToEnd(scheduler, clock);
  }
  out.finish();

  MidiFileData file;
  file.Format = score.Tracks.size() == 1 ? 0 : 1;
  file.Division = static_cast<uint16_t>(tpq);
  for (size_t t = 0; t < score.Tracks.size(); ++t) {
    std::vector<Placed>& placed = out.events[t];
    // A note-off that another track's beat sent can come in late by a fraction of a step.
    const auto byTick = [](const Placed& a, const Placed& b) { return a.Tick < b.Tick; };
    if (!std::is_sorted(placed.begin(), placed.end(), byTick)) std::stable_sort(placed.begin(), placed.end(), byTick);

    // The meta events lead at their tick; the messages follow in the order they were sent.
    std::vector<MidiEvent> metas;
    metas.push_back(MakeMetaEvent(0, kMetaTrackName, score.Tracks[t].Name));
    if (t == 0) {
      const double tempo = score.Tempo > 0 ? score.Tempo : 60;
      metas.push_back(MakeTempoEvent(0, static_cast<uint32_t>(std::nearbyint(60000000.0 / tempo))));
      for (const auto& [pos, sig] : out.signatures)
        metas.push_back(MakeTimeSignatureEvent(ticksOf(pos, tpq), sig.first, sig.second));
      std::stable_sort(metas.begin(), metas.end(), [](const MidiEvent& a, const MidiEvent& b) { return a.Tick < b.Tick; });
    }
    MidiTrackChunk chunk;
    chunk.Events.reserve(metas.size() + placed.size() + 1);
    size_t m = 0;
    for (const Placed& p : placed) {
      while (m < metas.size() && metas[m].Tick <= p.Tick) chunk.Events.push_back(std::move(metas[m++]));
      chunk.Events.push_back(MidiEvent{p.Tick, p.Status, p.Data1, p.Data2, {}});
    }
    while (m < metas.size()) chunk.Events.push_back(std::move(metas[m++]));
    chunk.Events.push_back(MakeMetaEvent(ticksOf(out.endPos, tpq), kMetaEndOfTrack, ""));
    std::vector<Placed>().swap(placed);
    file.Tracks.push_back(std::move(chunk));
  }
  return file;
}

void MakeMIDIFile(const Score& score, const std::filesystem::path& path, const MidiExportOptions& options) {
  WriteFileAtomically(path, SerializeMidiFile(MakeMIDIData(score, options)));
}

}  // namespace plectaro
