#include "playback/midi_out.h"

namespace plectaro {

std::string MidiOut::errorText(int code) const {
  switch (code) {
    case kMidiOk: return "no error";
    case kMidiNoDevice: return "there is no MIDI output device with that number";
    case kMidiNotOpen: return "no MIDI output device is open";
    case kMidiOpenFailed: return "the MIDI output device could not be opened";
    case kMidiSendFailed: return "a MIDI message could not be sent";
    default: return "MIDI error " + std::to_string(code);
  }
}

void MidiOut::noteError(const std::string& text) {
  if (lastError_.empty()) lastError_ = text;
}

std::string MidiOut::takeNotice() {
  if (noticeGiven_ || lastError_.empty()) return {};
  noticeGiven_ = true;
  return lastError_;
}

uint32_t MIDIPack(int status, int data1, int data2) {
  return static_cast<uint32_t>(status & 0xFF) | (static_cast<uint32_t>(data1 & 0xFF) << 8) |
         (static_cast<uint32_t>(data2 & 0xFF) << 16);
}

void MIDISend(MidiOut& out, int status, int data1, int data2) {
  // A wrong channel, note or value (they come from files unchecked) would turn into a
  // different message once packed; such a message is dropped instead of sent. It says nothing
  // about the device, so it is not reported as a reason for silence.
  if (status < 0x80 || status > 0xFF || data1 < 0 || data1 > 127 || data2 < 0 || data2 > 127) return;
  int result = out.shortMsg(MIDIPack(status, data1, data2));
  if (result != kMidiOk) MIDIReportError(out, result);
}

namespace {
// Channel messages carry the channel in the low nibble; anything outside 0..15 would spill
// into the status kind, so it makes the status invalid and the message is dropped.
int channelStatus(int kind, int channel) {
  return (channel >= 0 && channel <= 15) ? kind + channel : -1;
}
}  // namespace

void MIDINoteOn(MidiOut& out, int channel, int note, int velocity) {
  MIDISend(out, channelStatus(0x90, channel), note, velocity);
}

void MIDINoteOff(MidiOut& out, int channel, int note) {
  MIDISend(out, channelStatus(0x90, channel), note, 0);
}

void MIDIController(MidiOut& out, int channel, int controller, int value) {
  MIDISend(out, channelStatus(0xB0, channel), controller, value);
}

void MIDIProgramChange(MidiOut& out, int channel, int bank, int program) {
  MIDIController(out, channel, 0, bank);
  MIDISend(out, channelStatus(0xC0, channel), program, 0);
}

void MIDIPitchBend(MidiOut& out, int channel, int lsb, int msb) {
  MIDISend(out, channelStatus(0xE0, channel), lsb, msb);
}

void MIDIChannelNotesOff(MidiOut& out, int channel) {
  MIDIController(out, channel, 120, 0);
  MIDIController(out, channel, 123, 0);
}

void MIDIAllNotesOff(MidiOut& out) {
  for (int ch = 0; ch < 16; ++ch) MIDIChannelNotesOff(out, ch);
}

bool MIDIOpen(MidiOut& out, int deviceNumber) {
  MIDIClose(out);
  int result = out.openDevice(deviceNumber);
  if (result != kMidiOk) MIDIReportError(out, result);
  return out.isOpen();
}

void MIDIClose(MidiOut& out) {
  if (out.isOpen()) out.closeDevice();
}

std::vector<MidiDeviceInfo> MIDIListDevices(MidiOut& out) { return out.devices(); }

void MIDIReportError(MidiOut& out, int code) {
  if (code != kMidiOk) out.noteError(out.errorText(code));
}

const std::array<const char*, 128> kInstrumentNames = {
    "Piano (Warm)", "Piano (Mid)", "Piano (Treble)", "Piano (HT)",
    "E. Piano (Soft)", "E. Piano (Mid)", "Harpsichord", "Clavinet",
    "Celesta", "Glockenspiel", "Music Box", "Vibraphone",
    "Marimba", "Xylophone", "Tubular bell", "Dulcimer",
    "Organ (Soft)", "Organ (Wooden)", "Organ (Mid)", "Church Organ",
    "Reed Organ", "Accordion", "Harmonica", "Tango Accordion",
    "A. Guitar (Nylon)", "A. Guitar (Steel)", "E. Guitar (Jazz)", "E. Guitar (Clean)",
    "E. Guitar (Muted)", "E. Guitar (OD)", "E. Guitar (Dist.)", "Guitar Harmonics",
    "Acoustic Bass", "Fingered Bass", "Picked Bass", "Fretless Bass",
    "Slap Bass 1", "Slap Bass 2", "Synth Bass 1", "Synth Bass 2",
    "Violin", "Viola", "Cello", "Contrabass",
    "Tremolo Strings", "Pizzicato", "Harp", "Timpani",
    "Strings", "Slow Strings", "Syn Strings 1", "Syn Strings 2",
    "Choir Aahs", "Voice Oohs", "SynVox", "Orchestra Hit",
    "Trumpet", "Trombone", "Tuba", "Muted Trumpet",
    "French Horn", "Brass 1", "Synth Brass 1", "Synth Brass 2",
    "Soprano Sax", "Alto Sax", "Tenor Sax", "Baritone Sax",
    "Oboe", "English Horn", "Basson", "Clarinet",
    "Piccolo", "Flute", "Recorder", "Pan Flute",
    "Bottle Blow", "Shakuhachi", "Whistle", "Ocarina",
    "Square Wave", "Saw Wave", "Syn. Calliope", "Chiffer Lead",
    "Charang", "Solo Vox", "5th Saw Wave", "Bass&Lead",
    "Fantasia", "Warm Pad", "PolySynth", "Space Voice",
    "Bowed Glass", "Metal Pad", "Halo Pad", "Sweep Pad",
    "Ice Rain", "Sound Track", "Crystal", "Atmosphere",
    "Brightness", "Goblin", "Echo Drops", "Star Theme",
    "Sitar", "Banjo", "Shamisen", "Koto",
    "Kalimba", "Bag Pipe", "Fiddle", "Shanai",
    "Tinkle Bell", "Agogo", "Steel Drums", "Woodblock",
    "Taiko", "Melo Tom 1", "Synth Drum", "Reverse Cymbal",
    "Guitar FretNoise", "Breath Noise", "Seashore", "Bird",
    "Telephone 1", "Helicopter", "Applause", "Gun Shot!",
};

namespace {

struct DrumSound {
  const char* name;
  int key;  // General MIDI percussion key of the sound of that name
};

// The list's own order. It has no low agogo and holds the crash 2 and the splash at each
// other's places, so the keys follow the names, not the positions.
constexpr std::array<DrumSound, 47> kDrums = {{
    {"-", 0},
    {"Acoustic Bass Drum", 35}, {"Bass Drum 1", 36}, {"Side Stick", 37},
    {"Acoustic Snare", 38}, {"Hand Clap", 39}, {"Electric Snare", 40},
    {"Low Floor Tom", 41}, {"Closed High-Hat", 42}, {"High Floor Tom", 43},
    {"Pedal High-Hat", 44}, {"Low Tom", 45}, {"Open High-Hat", 46},
    {"Low-Mid Tom", 47}, {"High-Mid Tom", 48}, {"Crash Cymbal 1", 49},
    {"High Tom", 50}, {"Ride Cymbal 1", 51}, {"Chinese Cymbal", 52},
    {"Ride Bell", 53}, {"Tambourine", 54}, {"Crash Cymbal 2", 57},
    {"Cowbell", 56}, {"Splash Cymbal", 55}, {"Vibraslap", 58},
    {"Ride Cymbal 2", 59}, {"High Bongo", 60}, {"Low Bongo", 61},
    {"Mute High Conga", 62}, {"Open High Conga", 63}, {"Low Conga", 64},
    {"High Timbale", 65}, {"Low Timbale", 66}, {"High Agogo", 67},
    {"Cabasa", 69}, {"Maracas", 70}, {"Short Whistle", 71},
    {"Long Whistle", 72}, {"Short Guiro", 73}, {"Long Guiro", 74},
    {"Claves", 75}, {"High Wood Block", 76}, {"Low Wood Block", 77},
    {"Mute Cuica", 78}, {"Open Cuica", 79}, {"Mute Triangle", 80},
    {"Open Triangle", 81},
}};

}  // namespace

std::string GetDrumString(int n) {
  if (n < 0 || n >= static_cast<int>(kDrums.size())) return {};
  return kDrums[static_cast<size_t>(n)].name;
}

int GetDrumNote(int n) {
  if (n < 1 || n >= static_cast<int>(kDrums.size())) return 0;
  return kDrums[static_cast<size_t>(n)].key;
}

}  // namespace plectaro
