// The one MIDI output port of the program and the channel messages that go through it.
//
// Every sound is a three-byte short message that leaves the moment it is asked for: this layer
// has no queue, no scheduling and no memory of which notes sound. All timing belongs to the
// callers (the scheduler, beat sounding, the tools).
//
// `MidiOut` is the device interface (open, close, short message, device list); the built-in
// synthesizer, ALSA sequencer ports and the recording sink of the tests implement it. The
// thirteen routines below are free functions over a MidiOut, so nothing here is global.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace plectaro {

// One row of the output device list: the name shown and the device number behind it. A list
// position is not a device number (a device that fails to answer is left out), which is why
// the row carries its number.
struct MidiDeviceInfo {
  std::string Name;
  int ItemData = 0;
  bool operator==(const MidiDeviceInfo&) const = default;
};

// Result codes of the device operations; 0 is success.
enum MidiResult : int {
  kMidiOk = 0,
  kMidiNoDevice = 1,     // no such device number
  kMidiNotOpen = 2,      // a message sent while no device is open
  kMidiOpenFailed = 3,   // the device exists but would not open (details in lastErrorText)
  kMidiSendFailed = 4,
};

class MidiOut {
 public:
  virtual ~MidiOut() = default;

  // Opens one device by its number; kMidiOk or an error code. Only one device is open at a time.
  virtual int openDevice(int deviceNumber) = 0;
  virtual void closeDevice() = 0;
  virtual bool isOpen() const = 0;
  // One packed short message: status + data1 * 256 + data2 * 65536.
  virtual int shortMsg(uint32_t word) = 0;
  // Every output device that answers, in list order.
  virtual std::vector<MidiDeviceInfo> devices() = 0;
  // Text for an error code, as specific as the backend can make it.
  virtual std::string errorText(int code) const;

  // A device may need a while after openDevice to get ready: the built-in synthesizer reads its
  // SoundFont on a worker thread. Meanwhile it counts as open, keeps what the channels are told
  // and drops notes. True until that load has ended, well or not (isOpen() then says which).
  virtual bool loading() const { return false; }
  // Called once each time such a load ends, on the loading thread: it must only pass the news
  // on, never block and never call back into the device. An empty function stops the calls.
  virtual void setOnLoaded(std::function<void()> onLoaded) { (void)onLoaded; }

  // Why there is no sound, once: the first failure is kept until someone takes it, so the
  // program can say it one time instead of interrupting playback with dialogs.
  std::string takeNotice();
  const std::string& lastErrorText() const { return lastError_; }
  void noteError(const std::string& text);

 private:
  std::string lastError_;
  bool noticeGiven_ = false;
};

// ---- the thirteen routines ----

uint32_t MIDIPack(int status, int data1, int data2);
void MIDISend(MidiOut& out, int status, int data1, int data2);
void MIDINoteOn(MidiOut& out, int channel, int note, int velocity);
// A note-on of velocity 0: status 80 is never sent.
void MIDINoteOff(MidiOut& out, int channel, int note);
void MIDIController(MidiOut& out, int channel, int controller, int value);
// Bank select (controller 0 only) always goes in front of the program change.
void MIDIProgramChange(MidiOut& out, int channel, int bank, int program);
void MIDIPitchBend(MidiOut& out, int channel, int lsb, int msb);
// All sound off (120) then all notes off (123) on one channel.
void MIDIChannelNotesOff(MidiOut& out, int channel);
// The same pair on channels 0 to 15, in order: 32 messages.
void MIDIAllNotesOff(MidiOut& out);
// Closes any open device first, even when the new one then fails. True if a device is open.
bool MIDIOpen(MidiOut& out, int deviceNumber);
void MIDIClose(MidiOut& out);
std::vector<MidiDeviceInfo> MIDIListDevices(MidiOut& out);
// Keeps the error's text for the one-time notice; never shows anything, never throws, so that
// no dialog can interrupt a running timer.
void MIDIReportError(MidiOut& out, int code);

// ---- names shown to the user ----

// General MIDI programs 0..127 under this program's own names; the index is the program.
extern const std::array<const char*, 128> kInstrumentNames;
// Name of percussion sound n: "-" for 0, the name for 1..46, "" for anything else.
std::string GetDrumString(int n);
// The General MIDI key of percussion sound n (1..46), found by its name; 0 for none.
int GetDrumNote(int n);

}  // namespace plectaro
