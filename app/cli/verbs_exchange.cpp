// Savers of `convert` for the exchange formats: PDF (engraved pages, or the text tab with
// --text) and wave files rendered by the built-in synthesizer.
#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "cli.h"
#include "exchange/text_pdf.h"
#include "exchange/wave_export.h"
#include "playback/fluidsynth_out.h"
#include "rendering/qt/page_export.h"
#include "score/file_io.h"
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
  job.Options.FollowPlayback = false;
  job.Options.CountIn = args.has("--count-in");
  job.Options.Metronome = args.has("--metronome");
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

}  // namespace

}  // namespace plectaro::cli
