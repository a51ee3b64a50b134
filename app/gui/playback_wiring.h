// Playback in the main window: the Sound menu items, the moving play marker, following the
// song while it plays, the once-only "no sound" notice, and notes sounded as they are typed.
#pragma once

#include <QObject>

namespace plectaro {

class MainWindow;
class Player;
class Session;
struct EditContext;

class PlaybackWiring : public QObject {
  Q_OBJECT
 public:
  // `edit` may be null when the editor is not part of the build.
  PlaybackWiring(MainWindow& window, Session& session, Player& player, EditContext* edit);

  // Opens the output device chosen in the settings. The built-in synthesizer's SoundFont then
  // loads in the background (Player::soundReady tells when); this runs once the window is up.
  void loadDevice();

 private:
  void applyOptions();
  void followBar(int bar);

  MainWindow& window_;
  Session& session_;
  Player& player_;
  QWidget* marker_;
};

}  // namespace plectaro
