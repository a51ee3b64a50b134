// The Track, Operations and Go menus and the mix table, wired into the main window.
//
// In the window's start-up:
//   auto* tracks = ConnectTrackMenus(find, &window, edit, dataFolder);
//   connect(view, &DocumentView::drawn, tracks, &TrackMenus::refresh);   // Go To list, mix table
//   tracks->onMixChanged = [&](const std::vector<bool>& silenced) { player.setMix(doc.score, silenced); };
#pragma once

#include <QDialog>
#include <QObject>
#include <filesystem>
#include <functional>
#include <vector>

#include "editing/edit_context.h"

class QAction;
class QMenu;
class QTableWidget;

namespace plectaro {

// View > Mix Table: one row per track with its name, instrument, volume, channel, mute and
// solo. Edits go through the track commands at once, so they sound while the song plays.
// Mute and solo belong to this sitting and are not saved with the song.
class MixTable : public QDialog {
  Q_OBJECT
 public:
  MixTable(EditContext& ctx, QWidget* parent);
  // Shows the document as it stands; rows are rebuilt only when the track count changed.
  void refresh();
  // Per track, whether playback leaves it silent: muted, or another track is soloed.
  std::vector<bool> silenced() const;
  // A mix value or mute/solo changed: the player takes the new mix.
  std::function<void(const std::vector<bool>& silenced)> onMixChanged;
  QTableWidget* grdMix = nullptr;

  enum Column { kName, kInstrument, kVolume, kChannel, kMute, kSolo, kColumns };

 private:
  void rebuild();
  void changed();
  EditContext& ctx_;
  std::vector<bool> muted_, soloed_;
  bool filling_ = false;
};

class TrackMenus : public QObject {
  Q_OBJECT
 public:
  TrackMenus(QWidget* window, EditContext& ctx, std::filesystem::path dataFolder);
  // Refills the Go To list and the mix table from the document; call after every draw.
  void refresh();
  MixTable* mixTable() const { return mix_; }
  std::function<void(const std::vector<bool>& silenced)> onMixChanged;

 private:
  void fillGoTos();
  QWidget* window_;
  EditContext& ctx_;
  std::filesystem::path dataFolder_;
  MixTable* mix_ = nullptr;
  std::vector<std::string> shownPoints_;
  bool pointsShown_ = false;
};

// Connects and enables every item of the Track, Operations and Go menus and View > Mix
// Table. The returned object is owned by `window`.
TrackMenus* ConnectTrackMenus(const std::function<QAction*(const QString& name)>& find, QWidget* window,
                              EditContext& ctx, const std::filesystem::path& dataFolder);

}  // namespace plectaro
