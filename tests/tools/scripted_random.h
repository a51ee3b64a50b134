// A random source that answers from a list, so the generators' rules can be checked draw by
// draw; past the end of the list it keeps giving the last value.
#pragma once

#include <vector>

#include "tools/beat_generator.h"

namespace plectaro::test {

class ScriptedRandom : public RandomSource {
 public:
  explicit ScriptedRandom(std::vector<double> values) : values_(std::move(values)) {}
  double next() override {
    ++draws;
    if (pos_ < values_.size()) return values_[pos_++];
    return values_.empty() ? 0.0 : values_.back();
  }
  int draws = 0;

 private:
  std::vector<double> values_;
  size_t pos_ = 0;
};

}  // namespace plectaro::test
