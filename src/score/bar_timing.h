// Whether a bar's beats add up to its time signature, and the two repairs of the Fix Bar(s)
// menu. The unit of time is the sixty-fourth note.
#pragma once

#include "score/document.h"

namespace plectaro {

enum BarCheck : int16_t { kBarTooShort = 0, kBarExact = 1, kBarTooLong = 2 };

// Duration of one beat in 64ths. Tuplets are n notes in the time of two (a 5-tuplet of
// sixteenths takes 8), and the dot applies after the tuplet factor. An unknown Length or
// Tuplet number throws ScoreError.
double GetNumOf64ths(int length, int tuplet, bool isTuplet, bool dotted);
double GetNumOf64ths(const Beat& beat);

// Sum of the beats of a bar; 0 for a bar number beyond the track.
double GetBeatsLength(const Score& s, int track, int bar);
// What the bar should hold: numerator / denominator x 64; 0 beyond the track. A zero
// denominator throws ScoreError.
double GetBarLength(const Score& s, int track, int bar);

// Compares both sums after a round trip through text with three decimals; that rounding is
// the tolerance that lets three triplets make a whole.
BarCheck CheckBar(const Score& s, int track, int bar);

// Fills a too-short bar with rests, longest first; returns the final check. A bar that is
// already exact or too long is left alone.
BarCheck FixBar(Score& s, int track, int bar);

// Repairs one bar the way FixAllBars repairs each: a short bar is filled; a long bar loses
// beats from the end until it is short, then is filled.
void RepairBar(Score& s, int track, int bar);

// Repairs every bar of one track: short bars are filled; long bars lose beats from the end
// until they are short, then are filled. Throws ScoreError (leaving a partly repaired score,
// so callers run it under Transact) when a bar cannot be measured.
void FixAllBars(Score& s, int track);

// The "0.0##" form used by the check messages and the status bar: "48.0", "10.667".
std::string Format64ths(double value);

}  // namespace plectaro
