// The drum beat generator: fills the Drum Machine with a random beat made of the instruments
// and repeat patterns the user ticked. It writes through the machine's public setters and
// replaces what was there.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tools/drum_machine.h"

namespace plectaro {

// Numbers in [0, 1). The generator reseeds before each draw, as the random function of the
// classic runtime wants; a source for tests can ignore that and answer from a script.
class RandomSource {
 public:
  virtual ~RandomSource() = default;
  virtual void reseed() {}
  virtual double next() = 0;
};

class SystemRandom : public RandomSource {
 public:
  SystemRandom() : engine_(std::random_device{}()) {}
  explicit SystemRandom(uint32_t seed) : engine_(seed) {}
  double next() override { return std::uniform_real_distribution<double>(0.0, 1.0)(engine_); }

 private:
  std::mt19937 engine_;
};

// Pattern values: 1 to 8 hit every 1 to 8 steps; 9 is improvisation (random gaps of 1 to 8).
inline constexpr int kImprovisation = 9;

struct BeatGeneratorChoice {
  std::vector<std::string> instruments;  // the selected rows, in list order
  std::vector<int> patterns;             // the ticked pattern values, in list order
  int beatsOption = 2;                   // 0..4: 8, 16, 32, 64 or 128 steps
  int lengthCode = kSixteenthNote;       // the length of every step
};

// The upper step index of a "Select Number of Beats" option: 7, 15, 31, 63, 127.
int GeneratorLastStep(int beatsOption);
// "" or the message that refuses the choice (no instrument, no pattern).
std::string CheckGeneratorChoice(const BeatGeneratorChoice& choice);
// Resets, clears and sizes the machine, then draws the beat. The caller has checked the
// choice and asked whether the current beat may go.
void GenerateDrumbeat(DrumMachine& machine, const BeatGeneratorChoice& choice, RandomSource& rng);

}  // namespace plectaro
