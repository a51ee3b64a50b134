#include <gtest/gtest.h>

#include "playback/midi_out.h"
#include "playback/recording_out.h"

namespace plectaro {
namespace {

using Msgs = std::vector<MidiMessage>;

MidiMessage M(int status, int d1, int d2) {
  return {0, static_cast<uint8_t>(status), static_cast<uint8_t>(d1), static_cast<uint8_t>(d2)};
}

TEST(MidiOut, RoutinesSendExactlyTheirMessages) {
  struct Case {
    const char* name;
    void (*send)(MidiOut&);
    Msgs expected;
  };
  const Case cases[] = {
      {"note on", [](MidiOut& o) { MIDINoteOn(o, 3, 64, 100); }, {M(0x93, 64, 100)}},
      {"note off is a note-on of velocity 0", [](MidiOut& o) { MIDINoteOff(o, 2, 60); }, {M(0x92, 60, 0)}},
      {"program change carries the bank first",
       [](MidiOut& o) { MIDIProgramChange(o, 1, 5, 24); }, {M(0xB1, 0, 5), M(0xC1, 24, 0)}},
      {"pitch bend", [](MidiOut& o) { MIDIPitchBend(o, 4, 0, 70); }, {M(0xE4, 0, 70)}},
      {"channel notes off", [](MidiOut& o) { MIDIChannelNotesOff(o, 9); }, {M(0xB9, 120, 0), M(0xB9, 123, 0)}},
      {"a note beyond 127 is dropped, not wrapped", [](MidiOut& o) { MIDINoteOn(o, 0, 140, 100); }, {}},
      {"a channel beyond 15 is dropped", [](MidiOut& o) { MIDINoteOn(o, 16, 60, 100); }, {}},
      {"a negative velocity is dropped", [](MidiOut& o) { MIDINoteOn(o, 0, 60, -1); }, {}},
  };
  for (const Case& c : cases) {
    RecordingMidiOut out;
    c.send(out);
    EXPECT_EQ(out.messages, c.expected) << c.name;
    EXPECT_EQ(out.takeNotice(), "") << c.name;  // a dropped message is no reason for silence
  }
}

TEST(MidiOut, AllNotesOffCoversEveryChannelInOrder) {
  RecordingMidiOut out;
  MIDIAllNotesOff(out);
  ASSERT_EQ(out.messages.size(), 32u);
  for (int ch = 0; ch < 16; ++ch) {
    EXPECT_EQ(out.messages[static_cast<size_t>(2 * ch)], M(0xB0 + ch, 120, 0));
    EXPECT_EQ(out.messages[static_cast<size_t>(2 * ch + 1)], M(0xB0 + ch, 123, 0));
  }
}

TEST(MidiOut, OpenClosesTheOldDeviceEvenWhenTheNewOneFails) {
  RecordingMidiOut out;
  ASSERT_TRUE(out.isOpen());
  EXPECT_FALSE(MIDIOpen(out, 7));
  EXPECT_FALSE(out.isOpen());
  MIDINoteOn(out, 0, 60, 100);  // goes nowhere, silently
  EXPECT_TRUE(out.messages.empty());
  EXPECT_TRUE(MIDIOpen(out, 0));
  MIDIClose(out);
  MIDIClose(out);  // closing twice is harmless
  EXPECT_FALSE(out.isOpen());
}

TEST(MidiOut, TheReasonForSilenceIsToldOnce) {
  RecordingMidiOut out({}, false);
  MIDINoteOn(out, 0, 60, 100);
  MIDINoteOn(out, 0, 62, 100);
  const std::string first = out.takeNotice();
  EXPECT_FALSE(first.empty());
  EXPECT_EQ(out.takeNotice(), "");
}

// The drum list has its own order; each name must sound the General MIDI key of that name.
TEST(MidiOut, DrumNamesAndKeys) {
  struct Drum {
    int n;
    const char* name;
    int key;
  };
  const Drum drums[] = {
      {0, "-", 0},
      {1, "Acoustic Bass Drum", 35},
      {4, "Acoustic Snare", 38},
      {8, "Closed High-Hat", 42},
      {21, "Crash Cymbal 2", 57},  // the list swaps crash 2 and splash; the key follows the name
      {23, "Splash Cymbal", 55},
      {33, "High Agogo", 67},
      {34, "Cabasa", 69},          // there is no low agogo: keys skip 68 from here on
      {46, "Open Triangle", 81},
      {47, "", 0},
      {-1, "", 0},
  };
  for (const Drum& d : drums) {
    EXPECT_EQ(GetDrumString(d.n), d.name) << d.n;
    EXPECT_EQ(GetDrumNote(d.n), d.key) << d.n;
  }
}

}  // namespace
}  // namespace plectaro
