// Small scores for tests, built the way the editor would build them.
#pragma once

#include <string>
#include <vector>

#include "score/document.h"

namespace plectaro::testing {

// A default Score (one 4/4 bar holding a quarter rest) with first-run fonts.
Score BlankScore();

// Sets the frets of beat k of bar b on track t: one text per string from string 0, "" for none.
void SetFrets(Score& s, int t, int b, int k, const std::vector<std::string>& frets);

// A score that uses every tag of the music file at least once, with awkward texts.
Score EveryTagScore();

}  // namespace plectaro::testing
