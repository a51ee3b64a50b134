// Output to the ports of the ALSA sequencer, so that a hardware synthesizer or another program
// can play the score. Without a sequencer (no sound card, no snd-seq module) the port list is
// simply empty and the reason is kept for the one-time notice.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "playback/midi_out.h"

class RtMidiOut;

namespace plectaro {

class SequencerPortOut : public MidiOut {
 public:
  SequencerPortOut();
  ~SequencerPortOut() override;

  // Device numbers are port numbers, 0 upwards.
  int openDevice(int deviceNumber) override;
  void closeDevice() override;
  bool isOpen() const override { return open_; }
  int shortMsg(uint32_t word) override;
  std::vector<MidiDeviceInfo> devices() override;
  std::string errorText(int code) const override;

  // Why there is no sequencer, if there is none.
  const std::string& unavailableReason() const { return unavailable_; }

 private:
  bool ensureClient();

  std::unique_ptr<::RtMidiOut> midi_;
  bool open_ = false;
  bool tried_ = false;
  std::string unavailable_;
  std::string failure_;
  std::vector<unsigned char> message_;
};

}  // namespace plectaro
