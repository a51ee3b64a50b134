// The Sound menu of the main window playing into a recorder on a clock moved by hand: the
// marker moves, the cursor follows the music, and Stop leaves no note sounding.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QWidget>
#include <map>
#include <memory>

#include "../shell/test_folder.h"
#include "playback/qt/player.h"
#include "playback/recording_out.h"
#include "playback/virtual_clock.h"
#include "playback_wiring.h"
#include "shell/session.h"
#include "shell/ui/document_view.h"
#include "shell/ui/main_window.h"

extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

namespace plectaro {
namespace {

class PlaybackWiringTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "gui_playback_tests";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) new QApplication(argc, argv);
  }

  void SetUp() override {
    session = std::make_unique<Session>(ResolveAppFolder(home.path().string()), prompter);
    CommandLine cmd;
    cmd.file = (testing::SourceData() / "examples" / "riff.plm").string();
    session->start(cmd, {testing::SourceData()});
    window = std::make_unique<MainWindow>(*session);
    window->resize(1000, 800);
    window->show();
    window->DrawDocument();
    player = std::make_unique<Player>(out, clock);
    new PlaybackWiring(*window, *session, *player, nullptr);
    QCoreApplication::processEvents();
  }
  void TearDown() override {
    player.reset();
    window.reset();
  }

  void run(double ms) {
    for (double t = 0; t < ms; t += 50) {
      clock.advanceBy(50);
      QCoreApplication::processEvents();
    }
  }
  // Notes still sounding: note-ons without a later note-off (or note-on at velocity 0).
  int sounding() const {
    std::map<std::pair<int, int>, int> open;
    for (const MidiMessage& m : out.messages) {
      const int kind = m.Status & 0xF0, ch = m.Status & 0x0F;
      if (kind == 0x90 && m.Data2 > 0) open[{ch, m.Data1}] = 1;
      if (kind == 0x80 || (kind == 0x90 && m.Data2 == 0)) open[{ch, m.Data1}] = 0;
      if (kind == 0xB0 && (m.Data1 == 123 || m.Data1 == 120)) {
        for (auto& [key, on] : open)
          if (key.first == ch) on = 0;
      }
    }
    int n = 0;
    for (const auto& [key, on] : open) n += on;
    return n;
  }

  testing::TempFolder home;
  ScriptedPrompter prompter;
  VirtualClock clock;
  RecordingMidiOut out{[this] { return clock.nowMs(); }};
  std::unique_ptr<Session> session;
  std::unique_ptr<MainWindow> window;
  std::unique_ptr<Player> player;
};

TEST_F(PlaybackWiringTest, PlayFollowsAndStopSilences) {
  QAction* play = window->action("mnuSoundPlayFromStart");
  QAction* stop = window->action("mnuSoundStop");
  ASSERT_NE(play, nullptr);
  ASSERT_TRUE(play->isEnabled());
  play->trigger();
  run(6000);  // count-in and almost two bars at tempo 112

  auto* marker = window->view()->viewport()->findChild<QWidget*>("picPlayMarker");
  ASSERT_NE(marker, nullptr);
  EXPECT_TRUE(marker->isVisible());
  EXPECT_GT(marker->height(), 0);
  EXPECT_GE(session->doc().CursorBar, 1);  // the cursor walks with the music
  EXPECT_TRUE(stop->isEnabled());
  int noteOns = 0;
  for (const MidiMessage& m : out.messages) noteOns += (m.Status & 0xF0) == 0x90 && m.Data2 > 0;
  EXPECT_GT(noteOns, 20);

  stop->trigger();
  QCoreApplication::processEvents();
  EXPECT_FALSE(marker->isVisible());
  EXPECT_FALSE(player->isPlaying());
  EXPECT_EQ(sounding(), 0);
}

}  // namespace
}  // namespace plectaro
