// Feeds arbitrary bytes to the MIDI file reader, then writes what it read and reads that
// again: the reader must never crash or read past its input, and whatever it accepts must
// survive its own writer unchanged.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "exchange/midi_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace plectaro;
  MidiFileData file;
  try {
    file = ParseMidiFile(std::string_view(reinterpret_cast<const char*>(data), size));
  } catch (const MidiFileError&) {
    return 0;
  }
  if (ParseMidiFile(SerializeMidiFile(file)) != file) __builtin_trap();
  return 0;
}
