// What a MIDI device remembers of each of its sixteen channels: the instrument, the controller
// values and the pitch wheel.
//
// The built-in synthesizer reads its SoundFont on a worker thread, and the program talks to it
// before it is ready (the start-up instrument, each track's instrument, the tools choosing
// theirs). Those settings must not be lost, so they are kept here, the latest value of each, and
// sent to the synthesizer once it is there. Notes are not kept: a note that sounds half a second
// after its key was pressed is worse than one that does not sound at all.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace plectaro {

class ChannelMemory {
 public:
  // Keeps what a packed short message sets. False for what is not kept: notes, aftertouch,
  // system messages, and the channel mode controllers (120-127), which act on sounding notes
  // and nothing sounds yet.
  bool remember(uint32_t word);

  // The messages that bring a device that has been told `before` into this state: for each
  // channel, the changed controllers (bank select first, then the parameter number selectors,
  // so that a data entry lands on its parameter), then the instrument, then the pitch wheel.
  std::vector<uint32_t> changesSince(const ChannelMemory& before) const;
  // Everything kept, for a device that has been told nothing.
  std::vector<uint32_t> replay() const { return changesSince(ChannelMemory()); }

  bool operator==(const ChannelMemory&) const = default;

 private:
  static constexpr int16_t kUnset = -1;
  struct Channel {
    std::array<int16_t, 120> Controllers;
    int16_t Program = kUnset;
    int16_t BendLsb = kUnset;
    int16_t BendMsb = kUnset;
    Channel() { Controllers.fill(kUnset); }
    bool operator==(const Channel&) const = default;
  };
  std::array<Channel, 16> channels_;
};

}  // namespace plectaro
