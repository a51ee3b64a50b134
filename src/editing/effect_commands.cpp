#include "editing/effect_commands.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "editing/cursor_access.h"

namespace plectaro {

namespace {

// A curve by its corners: (point index, height) pairs in rising index order, joined by
// straight lines; the last height holds to the end.
template <size_t N>
std::array<double, N> corners(std::initializer_list<std::pair<int, double>> at) {
  std::array<double, N> c{};
  for (size_t i = 0; i < N; ++i) {
    const int x = static_cast<int>(i);
    const std::pair<int, double>* prev = at.begin();
    const std::pair<int, double>* next = nullptr;
    for (const auto& p : at) {
      if (p.first <= x) prev = &p;
      else if (!next) next = &p;
    }
    if (!next || prev->first > x) {
      c[i] = prev->second;
    } else {
      const double f = static_cast<double>(x - prev->first) / (next->first - prev->first);
      c[i] = prev->second + f * (next->second - prev->second);
    }
  }
  return c;
}

// Bends rise over the first third of the beat: the pick strikes, then the string goes up.
struct BendPresetDef {
  const char* name;
  BendCurve curve;
};
const std::vector<BendPresetDef>& bendPresets() {
  static const std::vector<BendPresetDef> p = {
      {"Full", corners<26>({{0, 0}, {8, 4}})},
      {"Half", corners<26>({{0, 0}, {8, 2}})},
      {"Quarter", corners<26>({{0, 0}, {6, 1}})},
      {"One and a Half", corners<26>({{0, 0}, {10, 6}})},
      {"Two", corners<26>({{0, 0}, {12, 8}})},
      {"Bend and Release", corners<26>({{0, 0}, {6, 4}, {14, 4}, {22, 0}})},
      {"Pre-Bend", corners<26>({{0, 4}})},
      {"Pre-Bend and Release", corners<26>({{0, 4}, {8, 4}, {18, 0}})},
  };
  return p;
}

struct TremoloPresetDef {
  const char* name;
  TremoloCurve curve;
};
const std::vector<TremoloPresetDef>& tremoloPresets() {
  static const std::vector<TremoloPresetDef> p = {
      {"Dip", corners<25>({{0, 0}, {6, -4}, {12, 0}})},
      {"Dive", corners<25>({{0, 0}, {16, -8}})},
      {"Release Up", corners<25>({{0, -4}, {16, 0}})},
      {"Inverted Dip", corners<25>({{0, 0}, {6, 4}, {12, 0}})},
      {"Return", corners<25>({{0, -4}, {4, -4}, {14, 0}})},
      {"Release Down", corners<25>({{0, 4}, {16, 0}})},
  };
  return p;
}

template <size_t N>
std::array<double, N> randomCurve(uint32_t seed, double lo, double hi) {
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int> height(static_cast<int>(lo), static_cast<int>(hi));
  std::uniform_int_distribution<int> corner(3, static_cast<int>(N) / 3);
  // Mostly from the note's own pitch, sometimes from a pre-bend.
  const double start = std::uniform_int_distribution<int>(0, 3)(rng) == 0 ? height(rng) : 0;
  const int a = corner(rng);
  const int b = a + corner(rng);
  return corners<N>({{0, start}, {a, static_cast<double>(height(rng))}, {b, static_cast<double>(height(rng))},
                     {static_cast<int>(N) - 1, static_cast<double>(height(rng))}});
}

template <size_t N>
void setPointAt(std::array<double, N>& curve, double x, double y, double width, double height, double lo,
                double hi) {
  if (!(width > 0) || !(height > 0)) return;
  const double step = width / (N - 1);
  const int i = std::clamp(static_cast<int>(std::lround(x / step)), 0, static_cast<int>(N) - 1);
  const double v = hi - std::clamp(y / height, 0.0, 1.0) * (hi - lo);
  curve[static_cast<size_t>(i)] = std::clamp(std::round(v), lo, hi);
}

// Runs a change of the cursor's slot that needs a fret there, and sounds the beat after.
// `step` names the undo step, as the Edit menu shows it.
void onNote(EditContext& ctx, std::string_view step, const std::function<void(NoteSlot&)>& change) {
  if (RunCommand(ctx, [&] {
        if (CursorSlot(ctx.doc).hasNote()) change(CursorSlotMut(ctx.doc));
      }, step))
    ctx.playBeat();
}

void onBeat(EditContext& ctx, std::string_view step, const std::function<void(Beat&)>& change, bool sound) {
  if (RunCommand(ctx, [&] { change(CursorBeatMut(ctx.doc)); }, step) && sound) ctx.playBeat();
}

Score withSlot(const Document& doc, const std::function<void(NoteSlot&)>& change) {
  Score s = doc.score;
  change(s.noteMut(doc.CursorTrack, doc.CursorBar, doc.CursorBeat, doc.CursorString));
  return s;
}

}  // namespace

const std::vector<std::string>& BendPresetNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> n;
    for (const auto& p : bendPresets()) n.emplace_back(p.name);
    return n;
  }();
  return names;
}

BendCurve BendPreset(int index) {
  if (index < 0 || static_cast<size_t>(index) >= bendPresets().size()) return {};
  return bendPresets()[static_cast<size_t>(index)].curve;
}

const std::vector<std::string>& TremoloPresetNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> n;
    for (const auto& p : tremoloPresets()) n.emplace_back(p.name);
    return n;
  }();
  return names;
}

TremoloCurve TremoloPreset(int index) {
  if (index < 0 || static_cast<size_t>(index) >= tremoloPresets().size()) return {};
  return tremoloPresets()[static_cast<size_t>(index)].curve;
}

BendCurve RandomBendCurve(uint32_t seed) { return randomCurve<26>(seed, 0, 8); }
TremoloCurve RandomTremoloCurve(uint32_t seed) { return randomCurve<25>(seed, -8, 4); }

std::string TremoloLabel(const TremoloCurve& curve) {
  double deepest = 0;
  for (double v : curve)
    if (std::isfinite(v) && std::abs(v) > std::abs(deepest)) deepest = v;
  const int quarters = static_cast<int>(std::lround(std::abs(deepest)));
  const int semis = quarters / 2;
  std::string text = semis > 0 || quarters % 2 == 0 ? std::to_string(semis) : "";
  if (quarters % 2) text += "\xC2\xBD";  // ½
  return text;
}

void SetBendPointAt(BendCurve& curve, double x, double y, double width, double height) {
  setPointAt(curve, x, y, width, height, 0, kMaxBendHeight);
}

void SetTremoloPointAt(TremoloCurve& curve, double x, double y, double width, double height) {
  setPointAt(curve, x, y, width, height, -kMaxTremoloDepth, kMaxTremoloDepth);
}

void ApplyBend(EditContext& ctx, const BendInfo& bend) {
  onNote(ctx, "Bend", [&](NoteSlot& n) {
    n.Bend.mut() = bend;
    n.HasBend = true;
  });
}

void ClearBend(EditContext& ctx) {
  onNote(ctx, "Bend", [](NoteSlot& n) {
    n.Bend.mut() = BendInfo();
    n.HasBend = false;
  });
}

void ApplyTremoloBar(EditContext& ctx, const TremoloBarInfo& bar) {
  onBeat(ctx, "Tremolo Bar", [&](Beat& b) {
    if (b.isRest()) return;
    b.TremoloBar.mut() = bar;
    b.HasTremoloBar = true;
  }, true);
}

void ClearTremoloBar(EditContext& ctx) {
  onBeat(ctx, "Tremolo Bar", [](Beat& b) {
    b.TremoloBar.mut() = TremoloBarInfo();
    b.HasTremoloBar = false;
  }, true);
}

void ApplyTrill(EditContext& ctx, const TrillInfo& trill) {
  onNote(ctx, "Trill", [&](NoteSlot& n) {
    n.Trill = trill;
    n.HasTrill = true;
  });
}

void ClearTrill(EditContext& ctx) {
  onNote(ctx, "Trill", [](NoteSlot& n) {
    n.Trill = TrillInfo();
    n.HasTrill = false;
  });
}

void ApplyGrace(EditContext& ctx, const GraceInfo& grace) {
  onNote(ctx, "Grace Note", [&](NoteSlot& n) {
    n.Grace = grace;
    n.HasGrace = true;
  });
}

void ClearGrace(EditContext& ctx) {
  onNote(ctx, "Grace Note", [](NoteSlot& n) {
    n.Grace = {};
    n.HasGrace = false;
  });
}

void ApplyText(EditContext& ctx, const std::string& text) {
  onBeat(ctx, "Text", [&](Beat& b) { b.Text = text; }, false);
}

Score WithBend(const Document& doc, const BendInfo& bend) {
  return withSlot(doc, [&](NoteSlot& n) {
    n.Bend.mut() = bend;
    n.HasBend = true;
  });
}

Score WithTremoloBar(const Document& doc, const TremoloBarInfo& bar) {
  Score s = doc.score;
  Beat& b = s.beatMut(doc.CursorTrack, doc.CursorBar, doc.CursorBeat);
  b.TremoloBar.mut() = bar;
  b.HasTremoloBar = true;
  return s;
}

Score WithTrill(const Document& doc, const TrillInfo& trill) {
  return withSlot(doc, [&](NoteSlot& n) {
    n.Trill = trill;
    n.HasTrill = true;
  });
}

Score WithGrace(const Document& doc, const GraceInfo& grace) {
  return withSlot(doc, [&](NoteSlot& n) {
    n.Grace = grace;
    n.HasGrace = true;
  });
}

}  // namespace plectaro
