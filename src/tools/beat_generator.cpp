#include "tools/beat_generator.h"

#include <algorithm>

namespace plectaro {

namespace {

int draw(RandomSource& rng, double times) {
  rng.reseed();
  return static_cast<int>(rng.next() * times);
}

}  // namespace

int GeneratorLastStep(int beatsOption) { return (8 << std::clamp(beatsOption, 0, 4)) - 1; }

std::string CheckGeneratorChoice(const BeatGeneratorChoice& choice) {
  if (choice.instruments.empty()) return "str_PleaseChooseAtLeastOneInstrument";
  if (choice.patterns.empty()) return "str_PleaseChooseAtLeastOnePattern";
  return {};
}

void GenerateDrumbeat(DrumMachine& machine, const BeatGeneratorChoice& choice, RandomSource& rng) {
  const int lastStep = GeneratorLastStep(choice.beatsOption);
  machine.ResetAllTiming();
  machine.ClearFile();
  machine.ResizeFileTo(lastStep, choice.instruments);
  for (int s = 0; s <= lastStep; ++s) machine.SetFileStatusTo(s, choice.lengthCode);
  if (choice.patterns.empty()) return;

  // The pattern is drawn with the list's upper bound, not its count: with several ticked the
  // last one never comes up. Beats made so far depend on this, so it stays.
  const int upperBound = static_cast<int>(choice.patterns.size()) - 1;
  for (int i = 0; i < static_cast<int>(choice.instruments.size()); ++i) {
    if (draw(rng, 3) != 0) continue;  // one chance in three that this instrument plays
    int s = -draw(rng, 9);
    const int p = choice.patterns[static_cast<size_t>(std::clamp(draw(rng, upperBound), 0, upperBound))];
    while (s <= lastStep) {
      if (s >= 0) machine.SetTrackNameTo(s, i, true);
      s += (p == kImprovisation) ? draw(rng, 8) + 1 : std::max(p, 1);
    }
  }
}

}  // namespace plectaro
