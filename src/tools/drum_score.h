// The Drum Machine and the open score: a pattern read from a drum track, and a pattern written
// into one (a new track, or over the current one). These are editing commands: the password
// guard, one undo step, the change flags and the redraw come with RunCommand; the window only
// collects the pattern and shows what these report.
#pragma once

#include <optional>
#include <string>

#include "editing/edit_context.h"
#include "tools/drum_pattern.h"

namespace plectaro {

// Track `track` as a pattern: one step per beat of every bar, with the beat's length, dot and
// tuplet, and a cell on for each drum its symbols strike. The rows are those of a new pattern
// followed by any other drum the track uses, so the familiar grid comes back and nothing of
// the track is left out. Tempo is the score's. nullopt for a track that is not a drum track.
std::optional<DrumPattern> PatternFromTrack(const Score& s, int track);

// Replaces every bar of drum track `track` with the pattern, from the first bar: each step a
// beat of the step's length holding one symbol per struck drum (its line and symbol from the
// track's drum map, extended for a drum the map lacks), at the loudness of the row's volume.
// A step starts a new bar when it would overrun the one being filled; the score gets more
// bars, in the last bar's time, when the pattern outlasts it; the pattern's last bar is filled
// up with rests. Bars after the pattern are left empty. Returns the hits no line could take: a
// line holds one symbol per beat, so more drums at once than the track has lines are dropped.
int WritePatternToTrack(Score& s, int track, const DrumPattern& p);

struct DrumScoreResult {
  bool done = false;
  int lostHits = 0;
};

// mnuLoad_Click: the pattern of the cursor's track. A track that is not a drum track is refused
// with str_CantLoadTrack; a locked score with nothing said.
std::optional<DrumPattern> LoadPatternFromScore(EditContext& ctx);

// mnuAdd_Click: a new drum track named `name` after the last one, holding the pattern; the
// cursor moves to it.
DrumScoreResult AddPatternAsTrack(EditContext& ctx, const DrumPattern& p, const std::string& name);

// mnuOver_Click: the pattern over the cursor's track. A track that is not a drum track is
// refused with str_IsNotPercTrack; str_BeatWillBeLost asks before the track's beats go.
DrumScoreResult OverwriteTrackWithPattern(EditContext& ctx, const DrumPattern& p);

}  // namespace plectaro
