// A MIDI output that keeps every message with the time it was sent. It serves the tests and
// `play --trace`, and can stand in for a real device that would not open.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "playback/midi_out.h"

namespace plectaro {

struct MidiMessage {
  double TimeMs = 0;
  uint8_t Status = 0;
  uint8_t Data1 = 0;
  uint8_t Data2 = 0;
  bool operator==(const MidiMessage&) const = default;
};

// "125.000 90 64 100": milliseconds with three decimals, status in hex, data in decimal.
std::string FormatTraceLine(const MidiMessage& m);

class RecordingMidiOut : public MidiOut {
 public:
  // `now` gives the time stamp of each message; without it every stamp is 0.
  explicit RecordingMidiOut(std::function<double()> now = {}, bool openAtStart = true)
      : now_(std::move(now)), open_(openAtStart) {}

  int openDevice(int deviceNumber) override;
  void closeDevice() override { open_ = false; }
  bool isOpen() const override { return open_; }
  int shortMsg(uint32_t word) override;
  std::vector<MidiDeviceInfo> devices() override { return {{"Recorder", 0}}; }

  std::vector<MidiMessage> messages;
  // Called with each message as it is recorded (the trace prints as it goes).
  std::function<void(const MidiMessage&)> onMessage;

 private:
  std::function<double()> now_;
  bool open_;
};

}  // namespace plectaro
