// The exchange formats of `convert`: PDF (engraved pages, or the text tab with --text), wave
// files rendered by the built-in synthesizer, and MIDI files both ways; and `batch`, which
// converts a folder of files from one kind to another through the same table of formats as
// the Batch Convert window.
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <sstream>

#include "cli.h"
#include "exchange/batch_convert.h"
#include "exchange/midi_export.h"
#include "exchange/midi_import.h"
#include "exchange/text_pdf.h"
#include "exchange/wave_export.h"
#include "playback/fluidsynth_out.h"
#include "rendering/qt/page_export.h"
#include "score/file_io.h"
#include "shell/ini_settings.h"
#include "verbs_rendering.h"

namespace plectaro::cli {

namespace {

void savePdf(Context&, const Document& original, const std::filesystem::path& path, const Args& args) {
  if (args.has("--all-tracks") && args.has("--track")) throw UsageError("choose --track N or --all-tracks, not both");
  if (args.has("--text")) {
    if (args.has("--all-tracks")) throw UsageError("--text prints one track; choose it with --track N");
    try {
      ExportPDF(original.score, PageTrackOption(original, args), TextExportOptions{}, path);
    } catch (const FileError& e) {
      throw InputError(e.what());
    } catch (const ScoreError& e) {
      throw InputError(e.what());
    }
    return;
  }
  EnsureGuiApplication();
  Document doc = original;
  const LayoutSettings settings = PageSettingsFrom(doc, args);
  std::vector<int> tracks;
  if (args.has("--all-tracks")) {
    for (int t = 0; t <= doc.score.LastTrack(); ++t) tracks.push_back(t);
  } else {
    tracks.push_back(PageTrackOption(doc, args));
  }
  try {
    ExportPagesPDF(doc, tracks, settings, DrawTexts{}, path);
  } catch (const FileError& e) {
    throw InputError(e.what());
  }
}

int intOption(const Args& args, const char* name, int fallback, std::initializer_list<int> allowed) {
  const int v = args.intValue(name, fallback);
  for (int a : allowed)
    if (a == v) return v;
  std::string list;
  for (int a : allowed) list += (list.empty() ? "" : " or ") + std::to_string(a);
  throw UsageError(std::string(name) + " takes " + list);
}

void saveWav(Context& ctx, const Document& doc, const std::filesystem::path& path, const Args& args) {
  const Score& score = doc.score;
  const int bars = static_cast<int>(score.BarInfos.size());
  WaveJob job;
  const int from = args.intValue("--from", 1);
  const int to = args.intValue("--to", bars);
  if (from < 1 || from > bars) throw InputError("--from " + std::to_string(from) + ": the song has bars 1 to " + std::to_string(bars));
  if (to < from || to > bars)
    throw InputError("--to " + std::to_string(to) + ": choose a bar from " + std::to_string(from) + " to " + std::to_string(bars));
  job.FromBar = from - 1;
  job.ToBar = to - 1;
  job.Rate = args.intValue("--rate", 44100);
  job.Channels = intOption(args, "--channels", 2, {1, 2});
  job.Bits = intOption(args, "--bits", 16, {8, 16});
  if (!WaveFormatSupported(job.Rate, job.Channels, job.Bits))
    throw InputError("--rate " + std::to_string(job.Rate) + ": the wave writer takes 4000 to 96000 samples a second");
  job.Options = UserPlaybackOptions(ctx, args.has("--count-in"), args.has("--metronome"));
  job.SoundFont = FindSoundFont(&ctx.settings);
  // Progress on a terminal only, so that scripts and logs stay clean.
  if (::isatty(STDERR_FILENO)) {
    int shown = -1;
    job.Progress = [&ctx, shown](double done) mutable {
      const int percent = static_cast<int>(done * 100);
      if (percent != shown) {
        shown = percent;
        ctx.err << "\rrendering " << percent << "%" << (percent >= 100 ? "\n" : "") << std::flush;
      }
      return true;
    };
  }
  try {
    ExportWave(score, job, path);
  } catch (const FileError& e) {
    throw InputError(e.what());
  }
}

const Registrar pdfSaver(".pdf", Saver(savePdf));
const Registrar wavSaver(".wav", Saver(saveWav));

// --tracks 1,3 counts from 1 like every track number on the command line.
MidiImportOptions midiOptions(const Args* args) {
  MidiImportOptions o;
  if (!args) return o;
  o.AddTies = args->has("--ties");
  o.Reverb = args->has("--reverb");
  o.Quantize = args->has("--quantize");
  if (args->has("--tracks")) {
    std::stringstream list(args->value("--tracks"));
    std::string item;
    while (std::getline(list, item, ',')) {
      size_t used = 0;
      int n = 0;
      try {
        n = std::stoi(item, &used);
      } catch (const std::exception&) {
        used = 0;
      }
      if (used == 0 || used != item.size() || n < 1) throw UsageError("--tracks takes track numbers from 1, like 1,3");
      o.Tracks.push_back(n - 1);
    }
  }
  return o;
}

void loadMid(Context& ctx, const std::filesystem::path& path, Document& doc) {
  const MidiImportOptions options = midiOptions(ctx.args);
  const MidiImportSource source = OpenMIDIFile(path);
  for (int t : options.Tracks)
    if (static_cast<size_t>(t) >= source.TrackList.size())
      throw InputError("\"" + path.string() + "\" has no track " + std::to_string(t + 1) + "; it has " +
                       std::to_string(source.TrackList.size()));
  for (const MidiImportTrackReport& r : FullImport(source, options, doc.score))
    if (r.Lost > 0)
      ctx.err << "plectaro-cli: " << r.Lost << " of " << r.Lost + r.Placed << " notes of MIDI track "
              << r.MidiTrack + 1 << " (" << r.Name << ") fit no string and were left out\n";
  doc.score.Title = path.stem().string();
}

void saveMid(Context&, const Document& doc, const std::filesystem::path& path, const Args&) {
  MakeMIDIFile(doc.score, path);
}

const Registrar midLoader(".mid", Loader(loadMid));
const Registrar midiLoader(".midi", Loader(loadMid));
const Registrar midSaver(".mid", Saver(saveMid));

std::string dotted(const std::string& ext) { return ext.empty() || ext[0] == '.' ? ext : "." + ext; }

int runBatch(Context& ctx, const Args& args) {
  args.expectPositional(1, 1);
  if (!args.has("--to")) throw UsageError("--to names the kind to write");
  BatchJob job;
  job.InFolder = args.at(0);
  job.To = dotted(args.value("--to"));
  job.From = dotted(args.value("--from"));
  job.OutFolder = args.value("--out");
  job.Settings.Settings = &ctx.settings;
  job.Settings.Midi = midiOptions(&args);
  // Text tab is written with the warning block and line length the user set for exports.
  IniSettings ini;
  LoadINISettings(ini, ctx.app.iniFile());
  job.Settings.Text = {ini.CopyrightWarning, ini.MaxLineLength};
  // The engraved PDF needs the window system's painter, which this program has and the
  // library does not: every track, pages as `convert` lays them out by default.
  AddBatchFormat({".pdf", "PDF documents", {}, {},
                  [&ctx](const Document& doc, const std::filesystem::path& path, const BatchSettings&) {
                    savePdf(ctx, doc, path, Args({"--all-tracks"}, {}, {"--all-tracks"}));
                  }});
  std::vector<std::filesystem::path> files;
  try {
    files = BatchFiles(job);
  } catch (const ScoreError& e) {
    throw UsageError(e.what());
  }
  // The progress line only on a terminal: in a pipe or a log it would be noise.
  const bool terminal = isatty(STDERR_FILENO);
  const BatchResult r = BatchConvert(job, [&](int done, int total, const std::filesystem::path& file) {
    if (terminal) {
      ctx.err << "\r\033[K" << done << "/" << total;
      if (!file.empty()) ctx.err << " " << file.filename().string();
      ctx.err.flush();
    }
    return true;
  });
  if (terminal) ctx.err << "\r\033[K";
  for (const BatchFailure& f : r.Failures) ctx.err << f.File.string() << ": " << f.Reason << "\n";
  ctx.out << "converted " << r.Converted << " of " << r.Total << " files to " << job.To;
  if (!r.Failures.empty()) ctx.out << ", " << r.Failures.size() << " failed";
  ctx.out << "\n";
  return r.Failures.empty() ? 0 : 1;
}

const Registrar verbBatch(Verb{"batch", "batch DIR --to mid|plm|txt|pdf|wav [--from KIND] [--out DIR] [--tracks 1,3] [--quantize] [--ties] [--reverb]",
                               {"--to", "--from", "--out", "--tracks"}, {"--quantize", "--ties", "--reverb"}, runBatch});

}  // namespace

}  // namespace plectaro::cli
