// A drum pattern as a Standard MIDI File: one track, the pattern's tempo, every on cell a
// percussion note of its instrument's key and volume that lasts until the next step.
#pragma once

#include <filesystem>
#include <string>

#include "tools/drum_pattern.h"

namespace plectaro {

inline constexpr int kDrumMidiTicksPerQuarter = 480;

std::string DrumPatternToMidi(const DrumPattern& p);
void ExportDrumPatternMidi(const std::filesystem::path& path, const DrumPattern& p);

}  // namespace plectaro
