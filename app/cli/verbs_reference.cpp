// The chord, scale and tuning libraries of the app folder: `library`.
#include <iostream>

#include "cli.h"
#include "json.h"
#include "reference/library_filter.h"
#include "reference/note_names.h"
#include "reference/tunings.h"

namespace plectaro::cli {

namespace {

void chordJson(Json& j, const std::string& name, const ChordData& c) {
  j.beginObject().field("name", name);
  j.field("startFret", int{c.StartFret}).field("numStrings", int{c.NumStrings}).field("barre", c.Barre);
  j.key("frets").beginArray();
  for (const std::string& f : c.Frets) j.value(f);
  j.endArray().key("tuning").beginArray();
  for (int16_t p : c.Tuning) j.value(int{p});
  j.endArray().key("fingers").beginArray();
  for (int16_t f : c.Fingers) j.value(int{f});
  j.endArray().endObject();
}

void scaleJson(Json& j, const std::string& name, const ScaleData& s) {
  j.beginObject().field("name", name).field("keywords", s.Keywords).field("numStrings", int{s.NumStrings});
  // One text of offset digits per string, string 1 first, as a guitarist reads a pattern.
  j.key("strings").beginArray();
  for (int r = 0; r < kScaleRows; ++r) {
    std::string digits;
    for (int d = 0; d < kScaleOffsets; ++d)
      if (s.Positions[static_cast<size_t>(d)][static_cast<size_t>(r)]) digits += static_cast<char>('0' + d);
    j.value(digits);
  }
  j.endArray().key("tuning").beginArray();
  for (int16_t p : s.Tuning) j.value(int{p});
  j.endArray().endObject();
}

void tuningJson(Json& j, const std::string& name, const TuningData& t) {
  j.beginObject().field("name", name).field("numStrings", int{t.NumStrings});
  j.key("notes").beginArray();
  for (int i = 1; i <= kMaxStrings; ++i) j.value(PitchToNoteName(i, t.pitch(i)));
  j.endArray().key("pitches").beginArray();
  for (int i = 1; i <= kMaxStrings; ++i) j.value(t.pitch(i));
  j.endArray().endObject();
}

// Lists a library; a record that will not load is named on stderr and left out, the rest is
// listed all the same.
template <class Load, class Write>
int listLibrary(Context& ctx, const Args& args, const FilterResult& found, Load load, Write write) {
  std::vector<std::string> broken = found.broken;
  if (args.has("--json")) {
    Json j(ctx.out);
    j.beginArray();
    for (const std::string& name : found.names) {
      try {
        auto record = load(name);
        write(j, name, record);
      } catch (const std::runtime_error&) {
        broken.push_back(name);
      }
    }
    j.endArray();
  } else {
    for (const std::string& name : found.names) ctx.out << name << "\n";
  }
  for (const std::string& name : broken) ctx.err << "skipped \"" << name << "\": the file cannot be read\n";
  return 0;
}

int runLibrary(Context& ctx, const Args& args) {
  args.expectPositional(1, 1);
  const std::string kind = args.at(0);
  const std::string filter = args.value("--filter");
  const auto data = ctx.app.data();
  if (kind == "chords") {
    // The first look at the library writes it, as opening the Chord Manager does.
    CreateAllChords(data);
    ChordFilter f;
    f.text = filter;
    auto load = [&](const std::string& n) { return LoadChordFile(data, n); };
    return listLibrary(ctx, args, ApplyChordFilter(ListChordNames(data), f, load, nullptr), load, chordJson);
  }
  if (kind == "scales") {
    CreateAllScales(data);
    ScaleFilter f;
    f.text = filter;
    auto load = [&](const std::string& n) { return LoadScaleFile(data, n); };
    return listLibrary(ctx, args, ApplyScaleFilter(ListScaleNames(data), f, load), load, scaleJson);
  }
  if (kind == "tunings") {
    const TuningLibrary tunings(data);
    tunings.createAll();
    FilterResult found;
    for (const std::string& name : tunings.names())
      if (ChordNameMatches(name, filter)) found.names.push_back(name);
    return listLibrary(ctx, args, found, [&](const std::string& n) { return tunings.load(n); }, tuningJson);
  }
  throw UsageError("unknown library \"" + kind + "\"");
}

const Registrar verbLibrary(Verb{"library", "library chords|scales|tunings [--filter TEXT] [--json]",
                                 {"--filter"}, {"--json"}, runLibrary});

}  // namespace

}  // namespace plectaro::cli
