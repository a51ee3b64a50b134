#pragma once

#include <string>

namespace plectaro {

// The Italian tempo word shown under a tempo in beats per minute, in brackets: "(Grave)" for a
// very slow tempo up to "(Prestissimo)". The texts are part of the file properties window.
std::string TempoName(double bpm);

}  // namespace plectaro
