#include "playback/channel_memory.h"

#include <gtest/gtest.h>

#include "playback/midi_out.h"

namespace plectaro {
namespace {

using Words = std::vector<uint32_t>;

uint32_t W(int status, int d1, int d2 = 0) { return MIDIPack(status, d1, d2); }

TEST(ChannelMemory, KeepsTheLatestSettingOfEachChannelAndDropsNotes) {
  struct Case {
    const char* name;
    Words told;
    Words replay;
  };
  const Case cases[] = {
      {"nothing told", {}, {}},
      {"notes are not kept", {W(0x90, 60, 100), W(0x90, 60, 0), W(0x80, 62, 0), W(0xD0, 40)}, {}},
      {"channel mode messages are not kept", {W(0xB3, 120), W(0xB3, 123), W(0xB3, 121)}, {}},
      {"a program change keeps its bank in front",
       {W(0xC1, 24), W(0xB1, 0, 5)},
       {W(0xB1, 0, 5), W(0xC1, 24)}},
      {"the latest program wins", {W(0xB0, 0, 0), W(0xC0, 24), W(0xB0, 0, 0), W(0xC0, 30)}, {W(0xB0, 0, 0), W(0xC0, 30)}},
      {"a parameter number goes before its data entry",
       {W(0xB2, 6, 12), W(0xB2, 101, 0), W(0xB2, 100, 0), W(0xB2, 7, 90)},
       {W(0xB2, 101, 0), W(0xB2, 100, 0), W(0xB2, 6, 12), W(0xB2, 7, 90)}},
      {"the pitch wheel comes last", {W(0xE4, 0, 70), W(0xC4, 33)}, {W(0xC4, 33), W(0xE4, 0, 70)}},
      {"channels in order, each whole",
       {W(0xC9, 0), W(0xC0, 24), W(0xB9, 0, 0), W(0xE0, 0, 64)},
       {W(0xC0, 24), W(0xE0, 0, 64), W(0xB9, 0, 0), W(0xC9, 0)}},
  };
  for (const Case& c : cases) {
    ChannelMemory m;
    for (uint32_t w : c.told) m.remember(w);
    EXPECT_EQ(m.replay(), c.replay) << c.name;
  }
}

TEST(ChannelMemory, ChangesSinceSendOnlyWhatIsNew) {
  ChannelMemory sent;
  for (uint32_t w : {W(0xB0, 0, 0), W(0xC0, 24), W(0xC1, 33), W(0xB1, 7, 100)}) sent.remember(w);
  struct Case {
    const char* name;
    Words more;
    Words changes;
  };
  const Case cases[] = {
      {"the same values again", {W(0xC0, 24), W(0xB1, 7, 100)}, {}},
      {"a new instrument", {W(0xC1, 34)}, {W(0xC1, 34)}},
      {"a new bank brings the program again", {W(0xB0, 0, 8)}, {W(0xB0, 0, 8), W(0xC0, 24)}},
      {"a new channel", {W(0xC5, 40), W(0x95, 60, 100)}, {W(0xC5, 40)}},
  };
  for (const Case& c : cases) {
    ChannelMemory now = sent;
    for (uint32_t w : c.more) now.remember(w);
    EXPECT_EQ(now.changesSince(sent), c.changes) << c.name;
  }
}

}  // namespace
}  // namespace plectaro
