#include "shell/tempo_name.h"

#include <cmath>

namespace plectaro {

std::string TempoName(double bpm) {
  struct Step {
    double below;
    const char* name;
  };
  // Each word covers the tempos from the previous bound up to (not including) its own.
  static constexpr Step kSteps[] = {
      {40, "(Grave)"},     {60, "(Largo)"},     {66, "(Lento)"},  {76, "(Adagio)"},
      {108, "(Andante)"},  {120, "(Moderato)"}, {168, "(allegro)"}, {200, "(Presto)"},
  };
  if (std::isnan(bpm)) return "";
  for (const Step& s : kSteps)
    if (bpm < s.below) return s.name;
  return "(Prestissimo)";
}

}  // namespace plectaro
