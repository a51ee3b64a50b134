#include "playback/recording_out.h"

#include <cstdio>

namespace plectaro {

std::string FormatTraceLine(const MidiMessage& m) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.3f %02X %d %d", m.TimeMs, m.Status, m.Data1, m.Data2);
  return buf;
}

int RecordingMidiOut::openDevice(int deviceNumber) {
  if (deviceNumber != 0) return kMidiNoDevice;
  open_ = true;
  return kMidiOk;
}

int RecordingMidiOut::shortMsg(uint32_t word) {
  if (!open_) return kMidiNotOpen;
  MidiMessage m{now_ ? now_() : 0.0, static_cast<uint8_t>(word & 0xFF),
                static_cast<uint8_t>((word >> 8) & 0xFF), static_cast<uint8_t>((word >> 16) & 0xFF)};
  messages.push_back(m);
  if (onMessage) onMessage(m);
  return kMidiOk;
}

}  // namespace plectaro
