// The chord and scale windows sound through the main window's player.
#pragma once

#include "reference/ui/reference_env.h"
#include "score/document.h"

namespace plectaro {

class Player;

// Chords sound at the chord volume of the cursor's track, scale notes with its instrument;
// nothing sounds while the score plays.
void AttachPlayer(ReferenceEnv& env, Player& player, const Document& doc);

}  // namespace plectaro
