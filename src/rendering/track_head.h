// The line that names the track at the head of the first staff of every page, so a reader of
// a band arrangement always knows which part is in front of them.
#pragma once

#include <string>

#include "rendering/bar_drawing.h"

namespace plectaro {

// "2. Lead - Distortion Guitar", and when the strings are not tuned the standard way their
// open notes from the lowest string up: "2. Lead - Distortion Guitar (D A D G B E)". A drum
// track has no tuning to show.
std::string TrackHeadText(const Score& score, int track);

// Draws that line just above the first staff of the row whose top is `rowTop`, from `x`.
void DrawTrackHead(DrawContext& ctx, double x, double rowTop);

}  // namespace plectaro
