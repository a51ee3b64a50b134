// All MIDI outputs of the machine behind one MidiOut: the built-in synthesizer first (device
// 0, the default), then the ports of the ALSA sequencer (devices 1, 2, ...). This is what the
// window and `play` open, and what the device list shows.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "playback/fluidsynth_out.h"
#include "playback/midi_out.h"
#include "playback/rtmidi_out.h"

namespace plectaro {

class OutputDevices : public MidiOut {
 public:
  // `background`: the built-in synthesizer reads its SoundFont on a worker thread (the editor);
  // otherwise opening it waits for the font (the command line).
  explicit OutputDevices(std::string soundFont, bool background = false);
  ~OutputDevices() override;

  int openDevice(int deviceNumber) override;
  void closeDevice() override;
  bool isOpen() const override;
  int shortMsg(uint32_t word) override;
  std::vector<MidiDeviceInfo> devices() override;
  std::string errorText(int code) const override;
  bool loading() const override;
  void setOnLoaded(std::function<void()> onLoaded) override;

  static constexpr int kDefaultDevice = 0;

 private:
  MidiOut* backendFor(int deviceNumber, int& backendNumber);

  std::unique_ptr<FluidSynthOut> synth_;
  std::unique_ptr<SequencerPortOut> ports_;
  MidiOut* current_ = nullptr;
  MidiOut* lastTried_ = nullptr;
};

}  // namespace plectaro
