#include "playback/output_devices.h"

namespace plectaro {

OutputDevices::OutputDevices(std::string soundFont, bool background)
    : synth_(std::make_unique<FluidSynthOut>(FluidSynthOut::Config{.SoundFont = std::move(soundFont), .Background = background})),
      ports_(std::make_unique<SequencerPortOut>()) {}

OutputDevices::~OutputDevices() { closeDevice(); }

MidiOut* OutputDevices::backendFor(int deviceNumber, int& backendNumber) {
  if (deviceNumber == kDefaultDevice) {
    backendNumber = 0;
    return synth_.get();
  }
  if (deviceNumber < 1) return nullptr;
  backendNumber = deviceNumber - 1;
  return ports_.get();
}

int OutputDevices::openDevice(int deviceNumber) {
  closeDevice();
  int n = 0;
  MidiOut* backend = backendFor(deviceNumber, n);
  lastTried_ = backend;
  if (!backend) return kMidiNoDevice;
  int r = backend->openDevice(n);
  if (r == kMidiOk) current_ = backend;
  return r;
}

void OutputDevices::closeDevice() {
  if (current_) current_->closeDevice();
  current_ = nullptr;
}

bool OutputDevices::isOpen() const { return current_ && current_->isOpen(); }

bool OutputDevices::loading() const { return current_ && current_->loading(); }

// Only the built-in synthesizer loads in the background.
void OutputDevices::setOnLoaded(std::function<void()> onLoaded) { synth_->setOnLoaded(std::move(onLoaded)); }

int OutputDevices::shortMsg(uint32_t word) { return current_ ? current_->shortMsg(word) : kMidiNotOpen; }

std::vector<MidiDeviceInfo> OutputDevices::devices() {
  std::vector<MidiDeviceInfo> list = {{FluidSynthOut::kDeviceName, kDefaultDevice}};
  for (const MidiDeviceInfo& port : ports_->devices()) list.push_back({port.Name, port.ItemData + 1});
  return list;
}

std::string OutputDevices::errorText(int code) const {
  if (code == kMidiNotOpen && lastTried_) return lastTried_->errorText(kMidiOpenFailed);
  if (lastTried_) return lastTried_->errorText(code);
  return MidiOut::errorText(code);
}

}  // namespace plectaro
