#include "playback/rtmidi_out.h"

#include <alsa/asoundlib.h>
#include <rtmidi/RtMidi.h>

#include <iostream>
#include <sstream>

namespace plectaro {

namespace {
// RtMidi prints warnings itself unless it is given a callback; we collect them instead.
void quietErrors(RtMidiError::Type, const std::string& text, void* data) {
  if (data) *static_cast<std::string*>(data) = text;
}
// alsa-lib prints its own complaints to stderr; the reason reaches the user once, through
// the notice, instead.
void silentAlsa(const char*, int, const char*, int, const char*, ...) {}

// RtMidi prints the error of a failed construction before it throws; we keep the text in
// the exception and the stream quiet.
class QuietCerr {
 public:
  QuietCerr() : old_(std::cerr.rdbuf(sink_.rdbuf())) {}
  ~QuietCerr() { std::cerr.rdbuf(old_); }
  QuietCerr(const QuietCerr&) = delete;
  QuietCerr& operator=(const QuietCerr&) = delete;

 private:
  std::ostringstream sink_;
  std::streambuf* old_;
};

}  // namespace

SequencerPortOut::SequencerPortOut() { message_.reserve(3); }

SequencerPortOut::~SequencerPortOut() {
  if (midi_ && open_) {
    try {
      midi_->closePort();
    } catch (...) {
    }
  }
}

bool SequencerPortOut::ensureClient() {
  if (midi_) return true;
  if (tried_) return false;
  tried_ = true;
  snd_lib_error_set_handler(silentAlsa);
  QuietCerr quiet;
  try {
    midi_ = std::make_unique<::RtMidiOut>(RtMidi::LINUX_ALSA, "Plectaro");
    midi_->setErrorCallback(quietErrors, &failure_);
  } catch (const RtMidiError& e) {
    unavailable_ = "the ALSA sequencer is not available (" + e.getMessage() + ")";
    midi_.reset();
  } catch (const std::exception& e) {
    unavailable_ = std::string("the ALSA sequencer is not available (") + e.what() + ")";
    midi_.reset();
  }
  return midi_ != nullptr;
}

std::vector<MidiDeviceInfo> SequencerPortOut::devices() {
  std::vector<MidiDeviceInfo> list;
  if (!ensureClient()) return list;
  try {
    const unsigned count = midi_->getPortCount();
    for (unsigned i = 0; i < count; ++i) {
      std::string name = midi_->getPortName(i);
      // A port that does not answer is left out; its number is kept by the others.
      if (!name.empty()) list.push_back({name, static_cast<int>(i)});
    }
  } catch (const RtMidiError&) {
  }
  return list;
}

int SequencerPortOut::openDevice(int deviceNumber) {
  failure_.clear();
  if (!ensureClient()) {
    failure_ = unavailable_;
    return kMidiOpenFailed;
  }
  if (deviceNumber < 0) return kMidiNoDevice;
  try {
    if (static_cast<unsigned>(deviceNumber) >= midi_->getPortCount()) return kMidiNoDevice;
    midi_->openPort(static_cast<unsigned>(deviceNumber), "Plectaro output");
  } catch (const RtMidiError& e) {
    failure_ = "the MIDI port could not be opened (" + e.getMessage() + ")";
    return kMidiOpenFailed;
  }
  if (!midi_->isPortOpen()) {
    if (failure_.empty()) failure_ = "the MIDI port could not be opened";
    return kMidiOpenFailed;
  }
  open_ = true;
  return kMidiOk;
}

void SequencerPortOut::closeDevice() {
  if (midi_ && open_) {
    try {
      midi_->closePort();
    } catch (const RtMidiError&) {
    }
  }
  open_ = false;
}

int SequencerPortOut::shortMsg(uint32_t word) {
  if (!open_ || !midi_) return kMidiNotOpen;
  message_.clear();
  message_.push_back(static_cast<unsigned char>(word & 0xFF));
  message_.push_back(static_cast<unsigned char>((word >> 8) & 0x7F));
  // Program change and channel pressure carry one data byte on the wire.
  const unsigned kind = word & 0xF0;
  if (kind != 0xC0 && kind != 0xD0) message_.push_back(static_cast<unsigned char>((word >> 16) & 0x7F));
  try {
    midi_->sendMessage(&message_);
  } catch (const RtMidiError&) {
    return kMidiSendFailed;
  }
  return kMidiOk;
}

std::string SequencerPortOut::errorText(int code) const {
  if (code == kMidiOpenFailed && !failure_.empty()) return failure_;
  return MidiOut::errorText(code);
}

}  // namespace plectaro
