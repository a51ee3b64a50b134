// Setting up tracks and transposing from scripts:
//   plectaro-cli track-add IN.plm OUT.plm [--name N] [--drums] [--instrument K] [--strings S]
//                [--tuning "E A D G B E" | --tuning PRESET]
//   plectaro-cli track-set IN.plm OUT.plm --track N [the same options] [--capo C] [--volume V]
//   plectaro-cli transpose IN.plm OUT.plm --semitones S [--tracks 1,2]
// They run the editor's own commands, so a script gets what the dialogs give. An instrument is
// a program number 0..127 as the instrument list shows it, or its name; a preset is the name
// of a tuning of the tunings library.
#include <algorithm>
#include <cctype>
#include <iostream>
#include <sstream>

#include "batch_prompter.h"
#include "cli.h"
#include "editing/operations.h"
#include "editing/track_commands.h"
#include "json.h"
#include "playback/midi_out.h"
#include "reference/tunings.h"

namespace plectaro::cli {

namespace {

const std::vector<std::string> kSetupOptions = {"--name", "--instrument", "--strings", "--tuning", "--password"};

std::string lower(std::string s) {
  std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return s;
}

int instrumentOption(const Args& args, int fallback) {
  if (!args.has("--instrument")) return fallback;
  const std::string v = args.value("--instrument");
  for (size_t i = 0; i < kInstrumentNames.size(); ++i)
    if (lower(v) == lower(kInstrumentNames[i])) return static_cast<int>(i);
  const int k = args.intValue("--instrument", -1);
  if (k < 0 || k > 127) throw InputError("--instrument takes a program 0 to 127 or a name of the instrument list");
  return k;
}

// --tuning as note names, or a preset of the tunings library; --strings alone gives the
// standard tuning of that many strings.
TuningInfo tuningOption(Context& ctx, const Args& args, TuningInfo tuning) {
  if (args.has("--tuning")) {
    const std::string text = args.value("--tuning");
    if (auto typed = ParseTuningNames(text)) {
      tuning = *typed;
    } else {
      TuningLibrary lib(ctx.app.data());
      lib.createAll();
      if (!TuningLibrary::validName(text) || !lib.exists(text))
        throw InputError("--tuning \"" + text + "\" is neither note names nor a tuning of the library");
      try {
        tuning = ToTuningInfo(lib.load(text));
      } catch (const TuningError& e) {
        throw InputError(e.what());
      }
    }
  }
  if (args.has("--strings")) {
    const int strings = args.intValue("--strings", 6);
    if (strings < 1 || strings > kMaxStrings) throw InputError("--strings takes 1 to 7");
    if (args.has("--tuning") && ParseTuningNames(args.value("--tuning")) && strings != tuning.NumStrings)
      throw InputError("--strings " + std::to_string(strings) + " but --tuning names " +
                       std::to_string(tuning.NumStrings) + " strings");
    tuning.NumStrings = static_cast<int16_t>(strings);
  }
  return tuning;
}

struct Session {
  Document doc;
  BatchPrompter prompter;
  EditContext edit;
  Session(Context& ctx, const Args& args, const char* verb)
      : doc(LoadDocument(ctx, args.at(0))), prompter(ctx.err, verb, args.value("--password")), edit(doc, prompter) {}

  void save(Context& ctx, const Args& args, bool ok) {
    if (doc.score.PasswordProtected && !doc.PasswordEntered)
      throw InputError("the score is protected by a password; give it with --password");
    if (!ok) throw InputError("the score was not changed");
    SaveDocument(ctx, doc, args.at(1), args);
  }
};

void printTracks(Context& ctx, const Score& s, const std::vector<UnplacedNote>* unplaced = nullptr) {
  Json j(ctx.out);
  j.beginObject();
  j.key("tracks").beginArray();
  for (const Track& t : s.Tracks) {
    j.beginObject().field("name", t.Name).field("drums", t.DrumTrack).field("instrument", int{t.Instrument});
    j.field("channel", int{t.Channel}).field("effectChannel", int{t.EffectChannel});
    j.field("strings", int{t.Tuning.NumStrings}).field("capo", int{t.Capo}).field("volume", int{t.Volume});
    j.key("openPitches").beginArray();
    for (int str = 0; str < t.Tuning.NumStrings; ++str)
      j.value(GetStringPitch(str) + t.Tuning.Offset[static_cast<size_t>(str)]);
    j.endArray();
    j.field("bars", static_cast<int>(t.Bars.size()));
    j.endObject();
  }
  j.endArray();
  if (unplaced) {
    j.key("unplaced").beginArray();
    for (const UnplacedNote& n : *unplaced)
      j.beginObject().field("track", n.track + 1).field("bar", n.bar + 1).field("beat", n.beat + 1)
          .field("string", n.string + 1).field("fret", n.fret).endObject();
    j.endArray();
  }
  j.endObject();
  ctx.out << "\n";
}

int runTrackAdd(Context& ctx, const Args& args) {
  args.expectPositional(2, 2);
  Session s(ctx, args, "track-add");
  const bool drums = args.has("--drums");
  const int instrument = instrumentOption(args, drums ? 0 : 24);
  const std::string name = args.value("--name", "Track " + std::to_string(s.doc.score.Tracks.size() + 1));
  // A bass gets a bass's tuning unless one is given.
  const TuningInfo usual =
      !drums && IsBassInstrument(instrument) ? BassTuning(args.intValue("--strings", 4)) : TuningInfo{};
  Track setup = NewTrackSetup(name, drums, instrument, kInstrumentNames[static_cast<size_t>(instrument)],
                              tuningOption(ctx, args, usual));
  s.save(ctx, args, AddTrack(s.edit, setup));
  printTracks(ctx, s.doc.score);
  return 0;
}

int runTrackSet(Context& ctx, const Args& args) {
  args.expectPositional(2, 2);
  if (!args.has("--track")) throw UsageError("--track is needed");
  Session s(ctx, args, "track-set");
  const int track = args.intValue("--track", 1) - 1;
  if (track < 0 || track > s.doc.score.LastTrack())
    throw InputError("--track " + std::to_string(track + 1) + ": the score has tracks 1 to " +
                     std::to_string(s.doc.score.LastTrack() + 1));
  Track props = s.doc.score.Tracks[static_cast<size_t>(track)];
  props.Name = args.value("--name", props.Name);
  if (args.has("--drums")) {
    props.DrumTrack = true;
    if (props.DrumMaps == std::array<DrumMap, kMaxStrings>{}) props.DrumMaps = DefaultDrumMaps();
  }
  props.Instrument = static_cast<int16_t>(instrumentOption(args, props.Instrument));
  if (args.has("--instrument")) props.InstrumentName = kInstrumentNames[static_cast<size_t>(props.Instrument)];
  props.Tuning = tuningOption(ctx, args, props.Tuning);
  props.Capo = static_cast<int16_t>(std::clamp(args.intValue("--capo", props.Capo), -1, 25));
  props.Volume = static_cast<int16_t>(std::clamp(args.intValue("--volume", props.Volume), -1, 101));
  s.doc.CursorTrack = static_cast<int16_t>(track);
  s.doc.clampCursor();
  s.save(ctx, args, ApplyTrackProperties(s.edit, track, props).applied);
  printTracks(ctx, s.doc.score);
  return 0;
}

int runTranspose(Context& ctx, const Args& args) {
  args.expectPositional(2, 2);
  if (!args.has("--semitones")) throw UsageError("--semitones is needed");
  const int semitones = args.intValue("--semitones", 0);
  if (semitones < -48 || semitones > 48) throw InputError("--semitones takes -48 to 48");
  Session s(ctx, args, "transpose");
  std::vector<int> tracks;
  if (args.has("--tracks")) {
    std::stringstream in(args.value("--tracks"));
    std::string item;
    while (std::getline(in, item, ',')) {
      int t = 0;
      try {
        t = std::stoi(item);
      } catch (const std::exception&) {
        throw UsageError("--tracks takes track numbers separated by commas: 1,2");
      }
      if (t < 1 || t > s.doc.score.LastTrack() + 1)
        throw InputError("--tracks " + item + ": the score has tracks 1 to " + std::to_string(s.doc.score.LastTrack() + 1));
      tracks.push_back(t - 1);
    }
  } else {
    for (int t = 0; t <= s.doc.score.LastTrack(); ++t) tracks.push_back(t);
  }
  // The command itself reports notes that found no place; the list goes into the JSON too.
  std::vector<UnplacedNote> unplaced;
  {
    Score copy = s.doc.score;
    unplaced = TransposeTracks(copy, tracks, semitones);
  }
  s.save(ctx, args, Transpose(s.edit, tracks, semitones));
  printTracks(ctx, s.doc.score, &unplaced);
  return 0;
}

std::vector<std::string> with(std::vector<std::string> v, std::initializer_list<const char*> more) {
  v.insert(v.end(), more.begin(), more.end());
  return v;
}

const Registrar verbTrackAdd(Verb{
    "track-add",
    "track-add IN.plm OUT.plm [--name N] [--drums] [--instrument K] [--strings S] [--tuning \"E A D G B E\"|PRESET] [--password P]",
    kSetupOptions, {"--drums"}, runTrackAdd});
const Registrar verbTrackSet(Verb{
    "track-set",
    "track-set IN.plm OUT.plm --track N [--name N] [--drums] [--instrument K] [--strings S] [--tuning T] [--capo C] [--volume V] [--password P]",
    with(kSetupOptions, {"--track", "--capo", "--volume"}), {"--drums"}, runTrackSet});
const Registrar verbTranspose(Verb{"transpose",
                                   "transpose IN.plm OUT.plm --semitones S [--tracks 1,2] [--password P]",
                                   {"--semitones", "--tracks", "--password"}, {}, runTranspose});

}  // namespace

}  // namespace plectaro::cli
