#include "playback/channel_memory.h"

#include "playback/midi_out.h"

namespace plectaro {

bool ChannelMemory::remember(uint32_t word) {
  const int status = static_cast<int>(word & 0xFF);
  const int d1 = static_cast<int>((word >> 8) & 0x7F);
  const int d2 = static_cast<int>((word >> 16) & 0x7F);
  Channel& ch = channels_[static_cast<size_t>(status & 0x0F)];
  switch (status & 0xF0) {
    case 0xB0:
      if (d1 >= static_cast<int>(ch.Controllers.size())) return false;
      ch.Controllers[static_cast<size_t>(d1)] = static_cast<int16_t>(d2);
      return true;
    case 0xC0:
      ch.Program = static_cast<int16_t>(d1);
      return true;
    case 0xE0:
      ch.BendLsb = static_cast<int16_t>(d1);
      ch.BendMsb = static_cast<int16_t>(d2);
      return true;
    default:
      return false;
  }
}

namespace {

// Bank select (MSB, LSB) must reach the device before the program change it qualifies, and the
// registered and non-registered parameter numbers before the data entry that sets them; every
// other controller is independent of its neighbours.
constexpr std::array<int, 6> kFirstControllers = {0, 32, 99, 98, 101, 100};

bool isFirst(int controller) {
  for (int c : kFirstControllers)
    if (c == controller) return true;
  return false;
}

}  // namespace

std::vector<uint32_t> ChannelMemory::changesSince(const ChannelMemory& before) const {
  std::vector<uint32_t> words;
  for (int n = 0; n < 16; ++n) {
    const Channel& now = channels_[static_cast<size_t>(n)];
    const Channel& was = before.channels_[static_cast<size_t>(n)];
    if (now == was) continue;
    auto controller = [&](int c) {
      const int16_t v = now.Controllers[static_cast<size_t>(c)];
      if (v != kUnset && v != was.Controllers[static_cast<size_t>(c)]) words.push_back(MIDIPack(0xB0 + n, c, v));
    };
    for (int c : kFirstControllers) controller(c);
    for (int c = 0; c < static_cast<int>(now.Controllers.size()); ++c)
      if (!isFirst(c)) controller(c);
    // A bank select alone changes nothing until the next program change, so a new bank sends
    // the program again.
    const bool bankChanged = now.Controllers[0] != was.Controllers[0] || now.Controllers[32] != was.Controllers[32];
    if (now.Program != kUnset && (now.Program != was.Program || bankChanged))
      words.push_back(MIDIPack(0xC0 + n, now.Program, 0));
    if (now.BendLsb != kUnset && (now.BendLsb != was.BendLsb || now.BendMsb != was.BendMsb))
      words.push_back(MIDIPack(0xE0 + n, now.BendLsb, now.BendMsb));
  }
  return words;
}

}  // namespace plectaro
