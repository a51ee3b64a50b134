// The Sound menu of the main window playing into a recorder on a clock moved by hand: the
// marker moves, the cursor follows the music, and Stop leaves no note sounding.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QStatusBar>
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

// A recorder that can play a device whose sounds are still loading.
class LoadingRecorder : public RecordingMidiOut {
 public:
  using RecordingMidiOut::RecordingMidiOut;
  bool loading() const override { return loading_; }
  void setOnLoaded(std::function<void()> fn) override { onLoaded_ = std::move(fn); }
  void startLoading() { loading_ = true; }
  void finishLoading() {
    loading_ = false;
    if (onLoaded_) onLoaded_();
  }

 private:
  bool loading_ = false;
  std::function<void()> onLoaded_;
};

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
  int noteOns() const {
    int n = 0;
    for (const MidiMessage& m : out.messages) n += (m.Status & 0xF0) == 0x90 && m.Data2 > 0;
    return n;
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
  LoadingRecorder out{[this] { return clock.nowMs(); }};
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
  EXPECT_GT(noteOns(), 20);

  stop->trigger();
  QCoreApplication::processEvents();
  EXPECT_FALSE(marker->isVisible());
  EXPECT_FALSE(player->isPlaying());
  EXPECT_EQ(sounding(), 0);
}

TEST_F(PlaybackWiringTest, PlayWaitsForTheSoundsAndStartsFromItsCount) {
  QAction* play = window->action("mnuSoundPlayFromStart");
  QAction* stop = window->action("mnuSoundStop");
  const QString loadingText = QString::fromStdString(session->messages().str("txt_SoundsLoading"));
  // The notes of three seconds of playing, timed from `start`.
  auto notesFrom = [this](double start) {
    std::vector<MidiMessage> notes;
    for (MidiMessage m : out.messages) {
      if ((m.Status & 0xF0) != 0x90) continue;
      m.TimeMs -= start;
      notes.push_back(m);
    }
    return notes;
  };
  const double directStart = clock.nowMs();
  play->trigger();
  run(3000);
  stop->trigger();
  const std::vector<MidiMessage> direct = notesFrom(directStart);
  ASSERT_GT(direct.size(), 4u);

  for (const bool stopWhileWaiting : {false, true}) {
    SCOPED_TRACE(stopWhileWaiting ? "stopped while waiting" : "waited");
    out.messages.clear();
    out.startLoading();
    play->trigger();
    run(1000);
    EXPECT_EQ(noteOns(), 0);  // nothing plays, and the music does not run on unheard
    EXPECT_TRUE(player->isPlaying());
    EXPECT_TRUE(stop->isEnabled());
    EXPECT_EQ(window->statusBar()->currentMessage(), loadingText);
    if (stopWhileWaiting) stop->trigger();

    const double readyAt = clock.nowMs();
    out.finishLoading();
    QCoreApplication::processEvents();
    EXPECT_NE(window->statusBar()->currentMessage(), loadingText);
    run(3000);
    if (stopWhileWaiting) {
      EXPECT_EQ(noteOns(), 0);
      EXPECT_FALSE(player->isPlaying());
      EXPECT_FALSE(stop->isEnabled());
      continue;
    }
    // Once the sounds are in, the song plays exactly as if Play had been pressed then: the
    // count-in first, nothing of the first bar skipped.
    stop->trigger();
    EXPECT_EQ(notesFrom(readyAt), direct);
    EXPECT_EQ(sounding(), 0);
  }
}

}  // namespace
}  // namespace plectaro
