#include "tools/trainer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "score/value_text.h"

namespace plectaro {

namespace {

struct Field {
  const char* name;
  double TrainerStats::*member;
};
constexpr std::array<Field, 7> kFields = {{
    {"TotalRounds", &TrainerStats::TotalRounds},
    {"CorrectAttempts", &TrainerStats::CorrectAttempts},
    {"TotalAttempts", &TrainerStats::TotalAttempts},
    {"FailedAttempts", &TrainerStats::FailedAttempts},
    {"RoundsWon", &TrainerStats::RoundsWon},
    {"RoundsLost", &TrainerStats::RoundsLost},
    {"SkillLevel", &TrainerStats::SkillLevel},
}};

std::string key(std::string_view prefix, std::string_view name) { return std::string(prefix) + std::string(name); }

// The open strings from the high E down: their MIDI keys and their places in the name list.
constexpr std::array<int, 6> kOpenPitch = {64, 59, 55, 50, 45, 40};
constexpr std::array<int, 6> kOpenName = {7, 2, 10, 5, 0, 7};

}  // namespace

TrainerStats LoadTrainerStats(const SettingsStore& store, std::string_view prefix) {
  TrainerStats s;
  for (const Field& f : kFields) s.*f.member = ParseNumber(store.GetSetting(kToolsSection, key(prefix, f.name), "0"));
  s.Category = store.GetSetting(kToolsSection, key(prefix, "Category"), "");
  return s;
}

void SaveTrainerStats(SettingsStore& store, std::string_view prefix, const TrainerStats& s) {
  for (const Field& f : kFields) store.SaveSetting(kToolsSection, key(prefix, f.name), FormatDouble(s.*f.member));
  store.SaveSetting(kToolsSection, key(prefix, "Category"), s.Category);
}

void ResetTrainerStats(SettingsStore& store, std::string_view prefix, const std::string& firstCategory) {
  TrainerStats fresh;
  fresh.Category = firstCategory;
  SaveTrainerStats(store, prefix, fresh);
}

std::string_view SkillCategoryKey(double skill) {
  static constexpr std::array<std::string_view, 10> kKeys = {
      "str_AbsoluteNovice", "str_Novice", "str_Beginner", "str_Average", "str_AboveAverage",
      "str_VeryGood", "str_Excellent", "str_Expert", "str_Professional", "str_Phenomenal"};
  const int band = std::clamp(static_cast<int>(std::floor(skill / 100.0)), 0, 9);
  return kKeys[static_cast<size_t>(band)];
}

std::string_view UpdateTrainerStats(TrainerStats& s, int correct) {
  correct = std::clamp(correct, 0, kAttemptsPerRound);
  s.TotalRounds += 1;
  s.CorrectAttempts += correct;
  s.TotalAttempts += kAttemptsPerRound;
  s.FailedAttempts += kAttemptsPerRound - correct;
  if (correct < kWinMark) {
    s.RoundsLost += 1;
  } else {
    s.RoundsWon += 1;
    if (s.SkillLevel < 996) s.SkillLevel += 5;
  }
  // Each round costs 2; the record of rounds won is worth up to 10, the accuracy less than 1
  // unless every attempt ever was right. A poor record sinks, a good one climbs.
  const double won = s.TotalRounds > 0 ? s.RoundsWon / s.TotalRounds * 10 : 0;
  const double accurate = s.TotalAttempts > 0 ? s.CorrectAttempts / s.TotalAttempts : 0;
  s.SkillLevel = s.SkillLevel - 2 + std::trunc(won + accurate);
  s.SkillLevel = std::clamp(s.SkillLevel, 0.0, 1000.0);
  return SkillCategoryKey(s.SkillLevel);
}

std::string PercentText(double part, double whole) {
  const double v = whole != 0 ? part / whole * 100 : 0;
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f%%", v);
  return buf;
}

int32_t TimeAllowedMs(double skill) {
  const double s = std::trunc(skill);
  const double t = std::clamp(s / 1000 * 9000 + 1000, 1000.0, 10000.0);
  return static_cast<int32_t>(11000 - t);
}

TrainerNote DrawTrainerNote(RandomSource& rng) {
  TrainerNote n;
  rng.reseed();
  n.fret = static_cast<int>(std::lround(rng.next() * 18));
  rng.reseed();
  n.string = static_cast<int>(std::lround(rng.next() * 5));
  n.fret = std::clamp(n.fret, 0, 18);
  n.string = std::clamp(n.string, 0, 5);
  const auto s = static_cast<size_t>(n.string);
  n.answer = kTrainerNoteNames[(kOpenName[s] + n.fret) % 12];
  n.pitch = kOpenPitch[s] + n.fret;
  return n;
}

void TrainerRound::start() {
  attempts_ = correct_ = failed_ = 0;
  note_ = DrawTrainerNote(rng_);
}

TrainerRound::Result TrainerRound::guess(std::string_view name) {
  if (over()) return Result::Wrong;
  ++attempts_;
  if (name == note_.answer) {
    ++correct_;
    // No note is drawn once the tenth attempt is over, so nothing sounds after the round.
    if (!over()) note_ = DrawTrainerNote(rng_);
    return Result::Correct;
  }
  ++failed_;
  return Result::Wrong;
}

TrainerRound::Result TrainerRound::timeUp() {
  if (over()) return Result::Late;
  ++attempts_;
  ++failed_;
  return Result::Late;
}

}  // namespace plectaro
