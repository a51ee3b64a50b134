#include "exchange/midi_file.h"

#include <gtest/gtest.h>

#include <string>

namespace plectaro {
namespace {

std::string bytes(std::initializer_list<int> list) {
  std::string s;
  for (int b : list) s += static_cast<char>(b);
  return s;
}

std::string be32(uint32_t v) { return bytes({int(v >> 24), int((v >> 16) & 255), int((v >> 8) & 255), int(v & 255)}); }

std::string header(int format, int tracks, int division) {
  return "MThd" + be32(6) + bytes({0, format, 0, tracks, division >> 8, division & 255});
}

std::string chunk(const std::string& tag, const std::string& body) { return tag + be32(uint32_t(body.size())) + body; }

TEST(MidiFileReader, ReadsEventsOfEveryKind) {
  // Running status after the first note-on, a two-byte delta, a program change (one data
  // byte), a sysex that is skipped, a track name, and an unknown chunk between the tracks.
  const std::string track1 = bytes({0x00, 0xFF, 0x03, 0x04}) + "Lead" +
                             bytes({0x00, 0x90, 60, 100,  // note on
                                    0x81, 0x00, 60, 0,    // running status, delta 128, velocity 0
                                    0x00, 0xF0, 0x02, 0x7E, 0xF7,
                                    0x10, 0xC1, 25,       // program change on channel 1
                                    0x00, 0xE1, 0x00, 0x50,
                                    0x00, 0xFF, 0x2F, 0x00});
  const std::string track2 = bytes({0x00, 0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20, 0x00, 0xFF, 0x2F, 0x00});
  const std::string file = header(1, 2, 96) + chunk("MTrk", track1) + chunk("XYZW", "junk") + chunk("MTrk", track2);

  MidiFileData f = ParseMidiFile(file);
  EXPECT_EQ(f.Format, 1);
  EXPECT_EQ(f.Division, 96);
  ASSERT_EQ(f.Tracks.size(), 2u);
  EXPECT_EQ(f.Tracks[0].name(), "Lead");
  const auto& ev = f.Tracks[0].Events;
  ASSERT_EQ(ev.size(), 5u);
  EXPECT_TRUE(ev[1].isNoteOn());
  EXPECT_EQ(ev[2].Tick, 128u);
  EXPECT_TRUE(ev[2].isNoteOff());
  EXPECT_EQ(ev[2].Data1, 60);
  EXPECT_EQ(ev[3].Tick, 144u);
  EXPECT_EQ(ev[3].Status, 0xC1);
  EXPECT_EQ(ev[3].Data1, 25);
  EXPECT_EQ(ev[4].Data2, 0x50);
  EXPECT_EQ(TempoOf(f.Tracks[1].Events[0]), 500000u);
  EXPECT_EQ(f.Tracks[1].name(), "");
}

TEST(MidiFileReader, RefusesDamagedFilesWithOneLineReason) {
  const std::string goodTrack = bytes({0x00, 0x90, 60, 100, 0x10, 0x80, 60, 0, 0x00, 0xFF, 0x2F, 0x00});
  const std::string good = header(0, 1, 480) + chunk("MTrk", goodTrack);
  ASSERT_NO_THROW(ParseMidiFile(good));
  struct Case {
    const char* name;
    std::string bytes;
    const char* reason;
  };
  const Case cases[] = {
      {"empty", "", "MThd"},
      {"not midi", "RIFF0000WAVEfmt ", "MThd"},
      {"truncated in a track", good.substr(0, good.size() - 5), "claims 12 bytes but only 7 remain"},
      {"chunk longer than the file", header(0, 1, 480) + "MTrk" + be32(1000) + goodTrack, "claims 1000 bytes"},
      {"header longer than the file", "MThd" + be32(100) + bytes({0, 0, 0, 1, 1, 0}), "header chunk claims 100"},
      {"event cut in the middle", header(0, 1, 480) + chunk("MTrk", bytes({0x00, 0x90, 60})), "ends in the middle"},
      {"meta longer than its track", header(0, 1, 480) + chunk("MTrk", bytes({0x00, 0xFF, 0x03, 0x20, 'a'})),
       "meta event claims 32"},
      {"data byte with no status", header(0, 1, 480) + chunk("MTrk", bytes({0x00, 0x40, 0x40})), "status byte"},
      {"endless number", header(0, 1, 480) + chunk("MTrk", bytes({0xFF, 0xFF, 0xFF, 0xFF, 0x7F})), "four bytes"},
      {"SMPTE time", header(0, 1, 0xE728) + chunk("MTrk", goodTrack), "SMPTE"},
      {"format 3", header(3, 1, 480) + chunk("MTrk", goodTrack), "format 3"},
      {"no track", header(0, 0, 480), "no track"},
  };
  for (const Case& c : cases) {
    try {
      ParseMidiFile(c.bytes);
      ADD_FAILURE() << c.name << ": accepted";
    } catch (const MidiFileError& e) {
      const std::string what = e.what();
      EXPECT_NE(what.find(c.reason), std::string::npos) << c.name << ": " << what;
      EXPECT_EQ(what.find('\n'), std::string::npos) << c.name;
    }
  }
}

TEST(MidiFileWriter, WritesRunningStatusAndReadsBackTheSame) {
  MidiFileData f;
  f.Format = 1;
  f.Division = 960;
  MidiTrackChunk t;
  t.Events.push_back(MakeMetaEvent(0, kMetaTrackName, "Rhythm"));
  t.Events.push_back(MakeTempoEvent(0, 1000000));
  t.Events.push_back(MakeTimeSignatureEvent(0, 6, 8));
  t.Events.push_back({0, 0x90, 64, 90, ""});
  t.Events.push_back({0, 0x90, 67, 90, ""});
  t.Events.push_back({200000, 0x80, 64, 0, ""});  // a delta of three bytes
  f.Tracks = {t, MidiTrackChunk{}};

  const std::string out = SerializeMidiFile(f);
  // The second note-on leaves out its status byte.
  EXPECT_NE(out.find(bytes({0x00, 0x90, 64, 90, 0x00, 67, 90})), std::string::npos);
  EXPECT_NE(out.find(bytes({0x8C, 0x9A, 0x40, 0x80, 64, 0})), std::string::npos);
  EXPECT_EQ(ParseMidiFile(out), f);
  int n = 0, d = 0;
  ASSERT_TRUE(TimeSignatureOf(f.Tracks[0].Events[2], n, d));
  EXPECT_EQ(n, 6);
  EXPECT_EQ(d, 8);
}

}  // namespace
}  // namespace plectaro
