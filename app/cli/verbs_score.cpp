// Verbs on the music file itself: new, info, dump, convert, check.
#include <iostream>

#include "cli.h"
#include "json.h"
#include "score/bar_timing.h"
#include "score/cipher.h"
#include "score/music_file.h"
#include "score/new_score.h"

namespace plectaro::cli {

namespace {

void loadPlm(Context& ctx, const std::filesystem::path& path, Document& doc) {
  ReadProgress progress;
  const OpenOutcome r = OpenMusicFile(doc, path, ctx.settings, &progress);
  if (r == OpenOutcome::WrongFile)
    throw InputError("\"" + path.string() + "\" is not a Plectaro music file");
  // A batch run has nobody to warn, so a cut-off file is refused rather than half converted.
  if (r == OpenOutcome::Damaged) throw InputError("\"" + path.string() + "\" is " + DescribeDamage(progress));
}

void savePlm(Context&, const Document& doc, const std::filesystem::path& path, const Args&) {
  SaveMusicFile(doc.score, path);
}

const Registrar plmLoader(".plm", Loader(loadPlm));
const Registrar plmSaver(".plm", Saver(savePlm));

// The first run of the program writes the defaults of new documents before the first new
// Score is made; a settings store without them has never been run.
void ensureFirstRunDefaults(SettingsStore& settings) {
  if (!settings.value(kDefaultInfoSection, "GFONTNAME")) SetDefaultVars(settings);
}

int runNew(Context& ctx, const Args& args) {
  args.expectPositional(1, 1);
  ensureFirstRunDefaults(ctx.settings);
  Document doc;
  InitScore(doc, ctx.settings);
  SaveDocument(ctx, doc, args.at(0), args);
  return 0;
}

struct BarTiming {
  bool measurable = true;
  double beats = 0, bar = 0;
  BarCheck check = kBarExact;
  std::string error;
};

BarTiming timingOf(const Score& s, int t, int b) {
  BarTiming r;
  try {
    r.beats = GetBeatsLength(s, t, b);
    r.bar = GetBarLength(s, t, b);
    r.check = CheckBar(s, t, b);
  } catch (const ScoreError& e) {
    r.measurable = false;
    r.error = e.what();
  }
  return r;
}

void infoJson(std::ostream& out, const Score& s) {
  Json j(out);
  j.beginObject();
  j.field("title", s.Title).field("subtitle", s.SubTitle).field("artist", s.Artist);
  j.field("tempo", static_cast<double>(s.Tempo));
  j.key("tracks").beginArray();
  for (int t = 0; t <= s.LastTrack(); ++t) {
    const Track& tr = s.Tracks[static_cast<size_t>(t)];
    j.beginObject();
    j.field("name", tr.Name).field("numStrings", int{tr.Tuning.NumStrings});
    j.key("tuning").beginArray();
    for (int16_t o : tr.Tuning.Offset) j.value(int{o});
    j.endArray();
    j.field("instrument", int{tr.Instrument}).field("drumTrack", tr.DrumTrack);
    j.key("bars").beginArray();
    for (int b = 0; b <= s.GetLastBar(t); ++b) {
      BarTiming bt = timingOf(s, t, b);
      j.beginObject().field("beats", s.GetLastBeat(t, b) + 1);
      if (bt.measurable) {
        j.field("beats64", bt.beats).field("bar64", bt.bar).field("check", int{bt.check});
      } else {
        j.key("beats64").null().key("bar64").null();
        j.field("check", -1).field("error", bt.error);
      }
      j.endObject();
    }
    j.endArray().endObject();
  }
  j.endArray().endObject();
}

void infoText(std::ostream& out, const Score& s) {
  out << "Title:    " << s.Title << "\n";
  if (!s.SubTitle.empty()) out << "Subtitle: " << s.SubTitle << "\n";
  if (!s.Artist.empty()) out << "Artist:   " << s.Artist << "\n";
  out << "Tempo:    " << s.Tempo << "\n";
  out << "Bars:     " << s.BarInfos.size() << "\n";
  for (int t = 0; t <= s.LastTrack(); ++t) {
    const Track& tr = s.Tracks[static_cast<size_t>(t)];
    int notes = 0, wrongBars = 0;
    for (int b = 0; b <= s.GetLastBar(t); ++b) {
      for (const Beat& bt : s.bar(t, b).Beats)
        for (const NoteSlot& n : bt.Notes) notes += n.hasNote();
      BarTiming timing = timingOf(s, t, b);
      wrongBars += !timing.measurable || timing.check != kBarExact;
    }
    out << "Track " << t + 1 << ": " << tr.Name << " ("
        << (tr.DrumTrack ? std::string("drums") : tr.InstrumentName) << ", "
        << tr.Tuning.NumStrings << " strings), " << notes << " notes";
    if (wrongBars) out << ", " << wrongBars << " bars not exact";
    out << "\n";
  }
}

int runInfo(Context& ctx, const Args& args) {
  args.expectPositional(1, 1);
  Document doc = LoadDocument(ctx, args.at(0));
  if (args.has("--json"))
    infoJson(ctx.out, doc.score);
  else
    infoText(ctx.out, doc.score);
  return 0;
}

int runDump(Context& ctx, const Args& args) {
  args.expectPositional(1, 1);
  const std::string plain = CipherBytes(ReadWholeFile(args.at(0)));
  ctx.out.write(plain.data(), static_cast<std::streamsize>(plain.size()));
  return 0;
}

int runConvert(Context& ctx, const Args& args) {
  args.expectPositional(2, 2);
  ctx.args = &args;
  if (const Converter* c = FindConverter(args.at(0), args.at(1))) {
    (*c)(ctx, args.at(0), args.at(1));
    return 0;
  }
  Document doc = LoadDocument(ctx, args.at(0));
  SaveDocument(ctx, doc, args.at(1), args);
  return 0;
}

const char* checkWord(BarCheck c) { return c == kBarTooShort ? "too short" : c == kBarTooLong ? "too long" : "exact"; }

int runCheck(Context& ctx, const Args& args) {
  args.expectPositional(1, 1);
  Document doc = LoadDocument(ctx, args.at(0));
  const Score& s = doc.score;
  int reported = 0;
  for (int t = 0; t <= s.LastTrack(); ++t) {
    for (int b = 0; b <= s.GetLastBar(t); ++b) {
      BarTiming bt = timingOf(s, t, b);
      if (bt.measurable && bt.check == kBarExact) continue;
      ++reported;
      ctx.out << "track " << t + 1 << " bar " << b + 1 << ": ";
      if (!bt.measurable)
        ctx.out << bt.error << "\n";
      else
        ctx.out << checkWord(bt.check) << " (" << Format64ths(bt.beats) << " 64ths -- "
                << Format64ths(bt.bar) << " 64ths)\n";
    }
  }
  if (reported == 0) ctx.out << "every bar is exact\n";
  if (args.has("--fix")) {
    Transact(doc, [&] {
      for (int t = 0; t <= doc.score.LastTrack(); ++t) FixAllBars(doc.score, t);
    });
    SaveDocument(ctx, doc, args.value("--fix"), args);
  }
  return 0;
}

const Registrar verbNew(Verb{"new", "new OUT.plm", {}, {}, runNew});
const Registrar verbInfo(Verb{"info", "info FILE [--json]", {}, {"--json"}, runInfo});
const Registrar verbDump(Verb{"dump", "dump FILE.plm", {}, {}, runDump});
const Registrar verbConvert(Verb{"convert",
                                  "convert IN OUT [--track N | --all-tracks] [--page P|all] [--dpi D] [--paper I] [--landscape] [--text] "
                                  "[--from B] [--to B] [--rate R] [--channels 1|2] [--bits 8|16] [--count-in] [--metronome] "
                                  "[--max-line L] [--warning|--no-warning] [--enforce-length L] [--timing N:D] [--details] "
                                  "[--tracks 1,3] [--quantize] [--ties] [--reverb] "
                                  "(IN - reads text tab from standard input)",
                                  {"--track", "--page", "--dpi", "--paper", "--from", "--to", "--rate", "--channels", "--bits",
                                   "--max-line", "--enforce-length", "--timing", "--tracks"},
                                  {"--all-tracks", "--landscape", "--text", "--count-in", "--metronome", "--details",
                                   "--warning", "--no-warning", "--quantize", "--ties", "--reverb"},
                                  runConvert});
const Registrar verbCheck(Verb{"check", "check FILE [--fix OUT.plm]", {"--fix"}, {}, runCheck});

}  // namespace

}  // namespace plectaro::cli
