#include "playback/speed_trainer.h"

#include <algorithm>
#include <cmath>

namespace plectaro {

SpeedTrainerForm DefaultSpeedTrainerForm(const Score& score, int cursorBar, int selFirst, int selLast) {
  SpeedTrainerForm f;
  const int last = std::max(0, static_cast<int>(score.BarInfos.size()) - 1);
  const bool selected = selFirst >= 0 && selLast >= selFirst;
  f.FromBar = std::clamp(selected ? selFirst : cursorBar, 0, last) + 1;
  f.ToBar = std::clamp(selected ? selLast : cursorBar, f.FromBar - 1, last) + 1;
  const int song = std::clamp(static_cast<int>(std::lround(score.Tempo)), 1, 999);
  // Practice starts well below the song's speed and climbs to it.
  f.TopTempo = song;
  f.StartTempo = std::max(1, static_cast<int>(std::lround(song * 0.6)));
  f.Step = std::max(1, (f.TopTempo - f.StartTempo + 3) / 4);
  f.Passes = 5;
  return f;
}

std::string CheckSpeedTrainer(const SpeedTrainerForm& f, int barCount, SpeedTrainer& out,
                              const std::function<std::string(std::string_view)>& text) {
  const auto bad = [&](int v) { return v < 1 || v > 999; };
  if (bad(f.StartTempo)) return text("str_StartRateInvalid1") + text("str_Invalid2");
  if (bad(f.TopTempo)) return text("str_FinalRateInvalid1") + text("str_Invalid2");
  if (f.TopTempo < f.StartTempo) return text("str_FinalRateTooLow");
  if (bad(f.Step)) return text("str_IncreaseInvalid1") + text("str_Invalid2");
  if (bad(f.Passes)) return text("str_IncreaseFreqInvalid1") + text("str_Invalid2");
  if (f.FromBar < 1 || f.ToBar < f.FromBar || f.ToBar > barCount) return text("str_PleaseEnterValidNumber");
  out.StartBar = static_cast<int16_t>(f.FromBar - 1);
  out.EndBar = static_cast<int16_t>(f.ToBar - 1);
  out.Tempo = static_cast<int16_t>(f.StartTempo);
  out.Step = static_cast<int16_t>(f.Step);
  out.MaxTempo = static_cast<int16_t>(f.TopTempo);
  out.Loops = static_cast<int16_t>(f.Passes - 1);  // the scheduler counts the jumps back
  return {};
}

std::vector<int> TrainerPassTempos(const SpeedTrainer& t) {
  std::vector<int> tempos{t.Tempo};
  int tempo = t.Tempo;
  for (int loop = 0; loop < t.Loops; ++loop) {
    if (tempo + t.Step > t.MaxTempo) {
      tempos.push_back(t.MaxTempo);
    } else {
      tempo += t.Step;
      tempos.push_back(tempo);
    }
  }
  return tempos;
}

}  // namespace plectaro
