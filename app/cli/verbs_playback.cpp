// The `play` verb: a song through an output device in real time, its message trace, or the
// list of output devices. Bars and tracks are numbered from 1, as the other verbs show them.
#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <optional>

#include "cli.h"
#include "live_output.h"
#include "playback/fluidsynth_out.h"
#include "playback/offline_play.h"
#include "playback/output_devices.h"
#include "playback/qt/qt_clock.h"
#include "playback/scheduler.h"
#include "playback/speed_trainer.h"
#include "shell/ini_settings.h"
#include "shell/language.h"

namespace plectaro::cli {

namespace {

std::atomic<bool> gInterrupted{false};

void onInterrupt(int) { gInterrupted = true; }

// --trainer START,STEP,TOP,PASSES over the bars of --from and --to (from 1).
SpeedTrainer trainerOf(const std::string& text, int from, int to, int bars) {
  SpeedTrainerForm f;
  f.FromBar = from;
  f.ToBar = to;
  char tail = 0;
  if (std::sscanf(text.c_str(), "%d,%d,%d,%d%c", &f.StartTempo, &f.Step, &f.TopTempo, &f.Passes, &tail) != 4)
    throw UsageError("--trainer takes START,STEP,TOP,PASSES, for example 60,10,100,5");
  SpeedTrainer t;
  const std::string problem = CheckSpeedTrainer(f, bars, t, [](std::string_view key) {
    static const Messages english;
    return english.str(key);
  });
  if (!problem.empty()) throw InputError("--trainer " + text + ": " + problem);
  return t;
}

// Keeps only one track, for --track: the scheduler then plays it alone.
Score soloTrack(const Score& s, int track) {
  Score solo = s;
  solo.Tracks = {s.Tracks[static_cast<size_t>(track)]};
  return solo;
}

int listDevices(Context& ctx) {
  OutputDevices devices(FindSoundFont(&ctx.settings));
  const auto list = MIDIListDevices(devices);
  for (size_t row = 0; row < list.size(); ++row) ctx.out << row << " " << list[row].Name << "\n";
  return 0;
}

// Plays in real time on Qt's event loop until the song ends or Ctrl+C, which stops it the
// same way the Stop command does, so a hardware synthesizer keeps no hanging notes.
int playLive(Context& ctx, const Score& score, int from, int to, int deviceRow, const PlaybackOptions& options,
             const SpeedTrainer* trainer) {
  LiveOutput live = OpenLiveOutput(ctx, deviceRow);
  OutputDevices& devices = *live.devices;
  QtPlaybackClock clock;
  Scheduler scheduler(devices, clock);
  scheduler.options = options;
  QEventLoop loop;
  scheduler.hooks.stopped = [&loop] { QTimer::singleShot(0, &loop, &QEventLoop::quit); };
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, [&] {
    if (gInterrupted) scheduler.StopTab();
  });
  watch.start(50);
  gInterrupted = false;
  auto oldHandler = std::signal(SIGINT, onInterrupt);
  if (trainer) {
    scheduler.hooks.trainerPass = [&ctx](int pass, int tempo) {
      ctx.out << "pass " << pass << " at " << tempo << " bpm" << std::endl;
    };
    scheduler.PlayTrainer(score, *trainer);
  } else {
    scheduler.PlayTab(score, from, to);
  }
  if (scheduler.playing()) loop.exec();
  std::signal(SIGINT, oldHandler);
  MIDIClose(devices);
  return gInterrupted ? 130 : 0;
}

int runPlay(Context& ctx, const Args& args) {
  if (args.has("--list-devices")) {
    args.expectPositional(0, 0);
    return listDevices(ctx);
  }
  args.expectPositional(1, 1);
  if (const Player* player = FindPlayer(args.at(0))) return (*player)(ctx, args);
  Document doc = LoadDocument(ctx, args.at(0));
  Score& score = doc.score;
  const int bars = static_cast<int>(score.BarInfos.size());
  const int from = args.intValue("--from", 1);
  const int to = args.intValue("--to", bars);
  if (from < 1 || from > bars) throw InputError("--from " + std::to_string(from) + ": the song has bars 1 to " + std::to_string(bars));
  if (to < from || to > bars) throw InputError("--to " + std::to_string(to) + ": choose a bar from " + std::to_string(from) + " to " + std::to_string(bars));
  if (args.has("--track")) {
    const int track = args.intValue("--track", 1);
    if (track < 1 || track > score.LastTrack() + 1)
      throw InputError("--track " + std::to_string(track) + ": the song has tracks 1 to " + std::to_string(score.LastTrack() + 1));
    score = soloTrack(score, track - 1);
  }
  const PlaybackOptions options = UserPlaybackOptions(ctx, args.has("--count-in"), args.has("--metronome"));
  std::optional<SpeedTrainer> trainer;
  if (args.has("--trainer")) trainer = trainerOf(args.value("--trainer"), from, to, bars);

  if (args.has("--trace")) {
    const auto line = [&ctx](const MidiMessage& m) { ctx.out << FormatTraceLine(m) << "\n"; };
    try {
      if (trainer) {
        // Each pass is announced in the trace as a comment line with its time and tempo.
        TraceTrainer(score, *trainer, options, line, [&ctx](double ms, int pass, int tempo) {
          char at[32];
          std::snprintf(at, sizeof at, "%.3f", ms);
          ctx.out << "# " << at << " pass " << pass << " at " << tempo << " bpm\n";
        });
      } else {
        TraceSong(score, from - 1, to - 1, options, line);
      }
    } catch (const ScoreError& e) {
      throw InputError(e.what());
    }
    return 0;
  }
  return playLive(ctx, score, from - 1, to - 1, args.intValue("--device", 0), options, trainer ? &*trainer : nullptr);
}

const Registrar verbPlay(Verb{
    "play",
    "play FILE [--from BAR] [--to BAR] [--track N] [--device N] [--count-in] [--metronome] [--trace] "
    "[--trainer START,STEP,TOP,PASSES] | "
    "play FILE.p4d|FILE.p4m [--loops N] [--device N] [--trace] | play --list-devices",
    {"--from", "--to", "--track", "--device", "--loops", "--trainer"},
    {"--trace", "--list-devices", "--count-in", "--metronome"},
    runPlay});

}  // namespace

PlaybackOptions UserPlaybackOptions(const Context& ctx, bool countIn, bool metronome) {
  PlaybackOptions options;
  options.FollowPlayback = false;
  options.CountIn = countIn;
  options.Metronome = metronome;
  IniSettings ini;
  if (LoadINISettings(ini, ctx.app.iniFile())) {
    options.CountIn = options.CountIn || ini.CountIn;
    options.Metronome = options.Metronome || ini.Metronome;
    options.Effects = {ini.BendCoefficient, ini.VibratoBend, ini.WideVibratoBend, ini.VibratoCount};
  }
  return options;
}


LiveOutput OpenLiveOutput(Context& ctx, int deviceRow) {
  LiveOutput live;
  if (!QCoreApplication::instance()) {
    static int argc = 1;
    static char name[] = "plectaro-cli";
    static char* argv[] = {name, nullptr};
    live.ownApp = std::make_unique<QCoreApplication>(argc, argv);
  }
  live.devices = std::make_unique<OutputDevices>(FindSoundFont(&ctx.settings));
  const auto list = MIDIListDevices(*live.devices);
  if (deviceRow < 0 || static_cast<size_t>(deviceRow) >= list.size())
    throw UsageError("--device takes a row of play --list-devices (0 to " + std::to_string(list.size() - 1) + ")");
  MIDIOpen(*live.devices, list[static_cast<size_t>(deviceRow)].ItemData);
  if (std::string why = live.devices->takeNotice(); !why.empty()) ctx.err << "plectaro-cli: " << why << "\n";
  return live;
}

}  // namespace plectaro::cli
