#include "playback_wiring.h"

#include <QAction>
#include <QScrollBar>
#include <QStatusBar>
#include <QWidget>
#include <cmath>
#include <cstdio>

#include "playback/qt/player.h"
#include "rendering/page_layout.h"
#include "shell/session.h"
#include "shell/ui/document_view.h"
#include "shell/ui/main_window.h"

#ifdef PLECTARO_HAVE_EDITING
#include "editing/edit_context.h"
#include "editing/hit_test.h"
#endif

namespace plectaro {

PlaybackWiring::PlaybackWiring(MainWindow& window, Session& session, Player& player, EditContext* edit)
    : QObject(&window), window_(window), session_(session), player_(player) {
  // The marker: a thin red line over the tab row of the beat that sounds.
  marker_ = new QWidget(window.view()->viewport());
  marker_->setObjectName("picPlayMarker");
  marker_->setAttribute(Qt::WA_TransparentForMouseEvents);
  marker_->setStyleSheet("background: rgba(220, 30, 30, 170);");
  marker_->hide();

  auto connectItem = [&](const char* name, auto fn) {
    if (QAction* a = window.action(name)) {
      a->setEnabled(true);
      connect(a, &QAction::triggered, this, fn);
    }
  };
  connectItem("mnuSoundPlayFromStart", [this] {
    applyOptions();
    player_.playFromStart(session_.doc());
  });
  connectItem("mnuSoundPlayFromHere", [this] {
    applyOptions();
    player_.playFromHere(session_.doc());
  });
  connectItem("mnuSoundPlayBar", [this] {
    applyOptions();
    player_.playBar(session_.doc());
  });
  connectItem("mnuSoundStop", [this] { player_.stop(); });

  connect(&player_, &Player::playMarkerMoved, this, [this](int left, int top, bool visible) {
    const Document& doc = session_.doc();
    if (!visible || doc.CursorTrack < 0 || doc.CursorTrack > doc.score.LastTrack()) {
      marker_->hide();
      return;
    }
    const int height = std::max<int>(RowHeight(doc.score.track(doc.CursorTrack)), 20);
    const double z = window_.view()->zoom();
    marker_->setGeometry(static_cast<int>(std::lround((left - 1) * z)), static_cast<int>(std::lround(top * z)), 3,
                         static_cast<int>(std::lround(height * z)));
    marker_->show();
    marker_->raise();
  });
  connect(&player_, &Player::followBar, this, &PlaybackWiring::followBar);
  connect(&player_, &Player::playingChanged, this, [this](bool playing) {
    if (!playing) marker_->hide();
    if (QAction* stop = window_.action("mnuSoundStop")) stop->setEnabled(playing);
  });
  // One plain sentence for the user; the device's own reason goes to the terminal.
  connect(&player_, &Player::noSound, this, [this](const QString& why) {
    std::fprintf(stderr, "plectaro: %s\n", qPrintable(why));
    window_.statusBar()->showMessage(QString::fromStdString(session_.messages().str("txt_NoSoundOutput")), 15000);
  });

  // Play pressed while the sounds still load waits for them; the status bar says why nothing
  // happens yet, and the line goes when the music starts.
  connect(&player_, &Player::waitingForSound, this, [this] {
    window_.statusBar()->showMessage(QString::fromStdString(session_.messages().str("txt_SoundsLoading")));
  });
  connect(&player_, &Player::soundReady, this, [this] {
    if (window_.statusBar()->currentMessage() == QString::fromStdString(session_.messages().str("txt_SoundsLoading")))
      window_.statusBar()->clearMessage();
  });

#ifdef PLECTARO_HAVE_EDITING
  if (edit) {
    edit->hooks.playChord = [this](int t, int b, int k) { player_.soundBeat(session_.doc().score, t, b, k); };
    edit->hooks.playScoreBeat = [this](const Score& s, int t, int b, int k) { player_.soundBeat(s, t, b, k); };
    edit->hooks.playPercussion = [this](int sound) { player_.soundDrum(sound); };
    edit->hooks.isPlaying = [this] { return player_.isPlaying(); };
    edit->hooks.stopPlayback = [this] { player_.stop(); };
    edit->hooks.playFromStart = [this] {
      applyOptions();
      player_.playFromStart(session_.doc());
    };
    edit->hooks.playFromHere = [this] {
      applyOptions();
      player_.playFromHere(session_.doc());
    };
  }
#else
  (void)edit;
#endif
}

void PlaybackWiring::loadDevice() {
  applyOptions();
  player_.LoadMIDI(session_.ini().OutputDeviceID, player_.options().OutputBank);
  player_.selectInstruments(session_.doc().score);
}

void PlaybackWiring::applyOptions() {
  PlaybackOptions& o = player_.options();
  const IniSettings& ini = session_.ini();
  o.CountIn = ini.CountIn;
  o.Metronome = ini.Metronome;
  o.FollowPlayback = ini.AutoScroll;
  o.Effects = {ini.BendCoefficient, ini.VibratoBend, ini.WideVibratoBend, ini.VibratoCount};
  o.CurrentTrack = session_.doc().CursorTrack;
}

// While a song plays, the cursor walks with it bar by bar and the page scrolls to keep it in
// sight, so that Stop leaves the cursor where the music stopped.
void PlaybackWiring::followBar(int bar) {
  Document& doc = session_.doc();
  if (!session_.ini().AutoScroll || bar < 0 || bar > doc.score.GetLastBar(doc.CursorTrack)) return;
  doc.CursorBar = static_cast<int16_t>(bar);
  doc.CursorBeat = 0;
#ifdef PLECTARO_HAVE_EDITING
  QScrollBar* v = window_.view()->verticalScrollBar();
  const int want = ScrollToShowCursor(doc, v->value(), window_.view()->viewport()->height() / window_.view()->zoom());
  if (want != v->value()) {
    doc.FullRelayout = true;
    v->setValue(want);
  }
#endif
  window_.DrawDocument();
}

}  // namespace plectaro
