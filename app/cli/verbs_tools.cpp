// The practice tools on the command line: drum patterns (.p4d, old .pld) and metronome
// programs (.p4m) play through `play` and turn into other files through `convert`.
#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <atomic>
#include <csignal>
#include <iostream>

#include "cli.h"
#include "live_output.h"
#include "playback/offline_play.h"
#include "playback/output_devices.h"
#include "playback/qt/qt_clock.h"
#include "playback/virtual_clock.h"
#include "shell/language.h"
#include "tools/drum_midi.h"
#include "tools/drum_sequencer.h"
#include "tools/metronome.h"
#include "tools/record_text.h"

namespace plectaro::cli {

namespace {

std::atomic<bool> gStop{false};
void onInterrupt(int) { gStop = true; }

template <class Read>
auto readToolFile(const std::filesystem::path& path, Read read) {
  try {
    return read(path);
  } catch (const ToolFileError& e) {
    throw InputError("\"" + path.string() + "\": " + e.what());
  }
}

int loopsOf(const Args& args) {
  const int loops = args.intValue("--loops", 1);
  if (loops < 1) throw UsageError("--loops takes a number of passes from 1");
  return loops;
}

// A tool player on some clock: `start` begins play, `playing` tells whether it still runs,
// `stop` ends it. Used with the virtual clock for --trace and Qt's for real time.
struct ToolRun {
  std::function<void(MidiOut&, PlaybackClock&)> start;
  std::function<bool()> playing;
  std::function<void()> stop;
};

int trace(Context& ctx, ToolRun& run) {
  VirtualClock clock;
  RecordingMidiOut out([&clock] { return clock.nowMs(); });
  out.onMessage = [&ctx](const MidiMessage& m) { ctx.out << FormatTraceLine(m) << "\n"; };
  run.start(out, clock);
  if (!clock.runUntilIdle(kOfflineLimitMs)) {
    run.stop();
    throw InputError("the file plays for more than three hours; give fewer --loops");
  }
  return 0;
}

// Real time on Qt's event loop, until the end or Ctrl+C, which stops play the same way the
// window's Stop button does.
int live(Context& ctx, const Args& args, ToolRun& run) {
  LiveOutput live = OpenLiveOutput(ctx, args.intValue("--device", 0));
  OutputDevices& devices = *live.devices;
  QtPlaybackClock clock;
  QEventLoop loop;
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, [&] {
    if (gStop) run.stop();
    if (!run.playing()) loop.quit();
  });
  watch.start(20);
  gStop = false;
  auto oldHandler = std::signal(SIGINT, onInterrupt);
  run.start(devices, clock);
  if (run.playing()) loop.exec();
  std::signal(SIGINT, oldHandler);
  MIDIClose(devices);
  return gStop ? 130 : 0;
}

int playTool(Context& ctx, const Args& args, ToolRun& run) {
  return args.has("--trace") ? trace(ctx, run) : live(ctx, args, run);
}

int playDrumbeat(Context& ctx, const Args& args) {
  const DrumPattern pattern = readToolFile(args.at(0), LoadDrumbeatFile);
  const int loops = loopsOf(args);
  std::unique_ptr<DrumSequencer> seq;
  ToolRun run{[&](MidiOut& out, PlaybackClock& clock) {
                seq = std::make_unique<DrumSequencer>(out, clock);
                seq->loop = true;
                seq->passes = loops;
                seq->play(pattern);
              },
              [&] { return seq && seq->playing(); }, [&] { if (seq) seq->stop(); }};
  return playTool(ctx, args, run);
}

int playMetronome(Context& ctx, const Args& args) {
  MetronomeFile file = readToolFile(args.at(0), LoadMetronomeFile);
  const Messages messages;
  const std::string why = CheckPlayable(file, [&](std::string_view key) { return messages.str(key); });
  if (!why.empty()) throw InputError(why);
  // --loops counts runs through the whole list; without it the file's own loop flag is
  // overridden so that the command ends.
  file.Loop = true;
  const int loops = loopsOf(args);
  std::unique_ptr<MetronomePlayer> player;
  ToolRun run{[&](MidiOut& out, PlaybackClock& clock) {
                player = std::make_unique<MetronomePlayer>(out, clock);
                player->passes = loops;
                player->play(file);
              },
              [&] { return player && player->playing(); }, [&] { if (player) player->stop(); }};
  return playTool(ctx, args, run);
}

void convertOldDrumbeat(Context&, const std::filesystem::path& in, const std::filesystem::path& out) {
  SaveDrumbeatFile(out, readToolFile(in, LoadDrumbeatFile));
}

void exportDrumbeat(Context&, const std::filesystem::path& in, const std::filesystem::path& out) {
  ExportDrumPatternMidi(out, readToolFile(in, LoadDrumbeatFile));
}

const Registrar p4dPlayer(".p4d", Player(playDrumbeat));
const Registrar pldPlayer(".pld", Player(playDrumbeat));
const Registrar p4mPlayer(".p4m", Player(playMetronome));
const Registrar pldToP4d(".pld", ".p4d", Converter(convertOldDrumbeat));
const Registrar p4dToP4d(".p4d", ".p4d", Converter(convertOldDrumbeat));
const Registrar p4dToMid(".p4d", ".mid", Converter(exportDrumbeat));
const Registrar pldToMid(".pld", ".mid", Converter(exportDrumbeat));

}  // namespace

}  // namespace plectaro::cli
