// Standard MIDI Files as plain data: the bytes of a .mid file to and from a list of timed
// events per track.
//
// The reader takes formats 0, 1 and 2, running status, meta events and variable-length numbers;
// it skips system-exclusive messages and chunks it does not know. It never reads past the end
// of what it is given: a file that lies about a length is refused with a one-line reason.
// The writer produces format 1 (format 0 for a single track) with running status.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "score/file_io.h"

namespace plectaro {

// A MIDI file that cannot be read; the message says why in one line.
class MidiFileError : public FileError {
 public:
  using FileError::FileError;
};

// Meta event types that the program reads or writes.
enum MidiMeta : uint8_t {
  kMetaText = 0x01,
  kMetaTrackName = 0x03,
  kMetaInstrumentName = 0x04,
  kMetaEndOfTrack = 0x2F,
  kMetaTempo = 0x51,
  kMetaTimeSignature = 0x58,
};

struct MidiEvent {
  uint32_t Tick = 0;    // absolute time in ticks from the start of the track
  uint8_t Status = 0;   // 0x80..0xEF a channel message, 0xFF a meta event
  uint8_t Data1 = 0;    // note, controller or program; the meta type for a meta event
  uint8_t Data2 = 0;    // velocity or value; pitch wheel: the upper 7 bits
  std::string Meta;     // the bytes of a meta event
  bool operator==(const MidiEvent&) const = default;

  bool isMeta() const { return Status == 0xFF; }
  int channel() const { return Status & 0x0F; }
  int kind() const { return Status & 0xF0; }
  // A note-on with velocity 0 ends a note like a note-off does.
  bool isNoteOn() const { return kind() == 0x90 && Data2 > 0; }
  bool isNoteOff() const { return kind() == 0x80 || (kind() == 0x90 && Data2 == 0); }
};

struct MidiTrackChunk {
  std::vector<MidiEvent> Events;  // in time order
  bool operator==(const MidiTrackChunk&) const = default;
  // The text of the first track name meta event; "" when there is none.
  std::string name() const;
};

struct MidiFileData {
  uint16_t Format = 1;
  uint16_t Division = 480;  // ticks per quarter note
  std::vector<MidiTrackChunk> Tracks;
  bool operator==(const MidiFileData&) const = default;
};

// Parses the bytes of a Standard MIDI File; throws MidiFileError with the reason.
MidiFileData ParseMidiFile(std::string_view bytes);
// Reads the file from disk; FileError if it cannot be read, MidiFileError if it is not a
// MIDI file that the program understands.
MidiFileData ReadMidiFile(const std::string& path);

// The bytes of a Standard MIDI File. Events of each track must be in time order; an end of
// track is added where it is missing.
std::string SerializeMidiFile(const MidiFileData& file);

// Meta event helpers.
MidiEvent MakeMetaEvent(uint32_t tick, uint8_t type, std::string data);
MidiEvent MakeTempoEvent(uint32_t tick, uint32_t microsPerQuarter);
MidiEvent MakeTimeSignatureEvent(uint32_t tick, int numerator, int denominator);
// Microseconds per quarter of a tempo event; 0 if the data is short.
uint32_t TempoOf(const MidiEvent& e);
// Numerator and denominator of a time signature event; false if the data is short or the
// denominator's power is out of range.
bool TimeSignatureOf(const MidiEvent& e, int& numerator, int& denominator);

}  // namespace plectaro
