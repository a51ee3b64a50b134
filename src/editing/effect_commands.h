// The effects that need more than a toggle: bend, tremolo bar, trill, grace note and beat text.
// Their dialogs collect the values; these commands write them into the cursor's slot or beat
// under the command guard, and sound the changed beat.
//
// Curves hold heights in quarter tones in equal time steps over the beat: 26 points for a
// bend (0 to 12, up to three tones), 25 for the tremolo bar (-12 to 12, dips below zero).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "editing/edit_context.h"
#include "score/score_records.h"

namespace plectaro {

using BendCurve = std::array<double, 26>;
using TremoloCurve = std::array<double, 25>;

inline constexpr double kMaxBendHeight = 12;
inline constexpr double kMaxTremoloDepth = 12;

// The preset curves of the two editors' lists, by list index.
const std::vector<std::string>& BendPresetNames();
BendCurve BendPreset(int index);  // index out of range: a flat curve
const std::vector<std::string>& TremoloPresetNames();
TremoloCurve TremoloPreset(int index);

// A random curve that a guitarist could play: a few anchor heights in whole quarter tones,
// joined by straight lines. The same seed gives the same curve.
BendCurve RandomBendCurve(uint32_t seed);
TremoloCurve RandomTremoloCurve(uint32_t seed);

// The text printed over a tremolo-bar beat: how far the curve goes from the note, either way,
// in semitones: "2" or "1½".
std::string TremoloLabel(const TremoloCurve& curve);

// A click or drag on a curve picture of `width` x `height` pixels at (x, y) sets the nearest
// point to the height under the pointer, rounded to a quarter tone. The picture spans
// 0..kMaxBendHeight bottom to top for a bend, -depth..+depth for the tremolo bar.
void SetBendPointAt(BendCurve& curve, double x, double y, double width, double height);
void SetTremoloPointAt(TremoloCurve& curve, double x, double y, double width, double height);

// Writes a bend on the cursor's slot; a slot without a fret is left alone.
void ApplyBend(EditContext& ctx, const BendInfo& bend);
void ClearBend(EditContext& ctx);
// The tremolo bar belongs to the whole beat; a rest takes none.
void ApplyTremoloBar(EditContext& ctx, const TremoloBarInfo& bar);
void ClearTremoloBar(EditContext& ctx);
void ApplyTrill(EditContext& ctx, const TrillInfo& trill);
void ClearTrill(EditContext& ctx);
void ApplyGrace(EditContext& ctx, const GraceInfo& grace);
void ClearGrace(EditContext& ctx);
// Sets the beat's text ("" removes it).
void ApplyText(EditContext& ctx, const std::string& text);

// The cursor's beat as it would be with a bend (or tremolo bar, trill, grace note) applied,
// in a copy of the score, for an editor's Play button before OK.
Score WithBend(const Document& doc, const BendInfo& bend);
Score WithTremoloBar(const Document& doc, const TremoloBarInfo& bar);
Score WithTrill(const Document& doc, const TrillInfo& trill);
Score WithGrace(const Document& doc, const GraceInfo& grace);

}  // namespace plectaro
