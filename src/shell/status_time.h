#pragma once

#include <optional>
#include <string>

#include "score/document.h"

namespace plectaro {

// Where the cursor stands in the song, in seconds from the start of the current Track: the
// beats before it, one sixty-fourth lasting 3750 / Tempo ms. Repeats are not unfolded. A
// Tempo that is not positive, or a beat that cannot be measured, gives nothing.
std::optional<double> CursorTimeSeconds(const Document& doc);

// The status bar's form, minutes and seconds as a player shows them: "0:05", "12:34", "75:00".
std::string FormatStatusTime(double seconds);

}  // namespace plectaro
