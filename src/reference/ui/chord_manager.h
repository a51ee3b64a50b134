// frmChordManager: the chord library as a scrolling grid of cells, searched by name, by
// tablature, by string count or by the chords of the open score. A click plays the chord and
// hands it to the Chord Editor; the right-click menu puts it into the score.
#pragma once

#include <QWidget>
#include <array>
#include <map>

#include "editing/edit_context.h"
#include "reference/library_filter.h"
#include "reference/ui/reference_env.h"

class QAction;
class QLabel;
class QLineEdit;
class QMenuBar;
class QRadioButton;

namespace plectaro {

class ChordEditor;
class LibraryView;
class ViewMenu;

class ChordManager : public QWidget {
  Q_OBJECT
 public:
  // `edit` may be null: the chords then cannot be added to a score.
  ChordManager(ReferenceEnv& env, EditContext* edit, QWidget* parent = nullptr);

  void RefreshFilter();
  void RefreshView();
  void setViewType(int viewType);
  int viewType() const;
  void setSearch(ChordSearch mode);
  void setLeftHanded(bool on);
  // The items of the right-click menu: 0 play, 1 add as diagram, 2 add as notes.
  void runMenuItem(int item);
  void selectChord(int index);
  // Restore Chords: asks, then puts the built-in library back.
  void restoreChords();

  const std::vector<std::string>& chords() const { return lstChords_; }
  const std::string& currentChord() const { return current_; }
  QString status() const;
  ChordEditor* editor() const { return editor_; }
  LibraryView* view() const { return view_; }
  QMenuBar* menuBar() const { return menuBar_; }
  QLineEdit* searchBox() const { return txtSearch_; }
  QLineEdit* tabBox(int string) const { return txtTabSearch_[static_cast<size_t>(string - 1)]; }

 signals:
  // After a chord went into the score: the window may hide and the score take the focus.
  void chordAdded();
  // The Dock menu: 0 undock, 1 above, 2 below, 3 left, 4 right.
  void dockRequested(int side);

 private:
  ChordData load(const std::string& name);
  void buildMenus();
  void reportEmpty(const FilterResult& r);

  ReferenceEnv& env_;
  EditContext* edit_;
  ChordEditor* editor_;
  LibraryView* view_;
  QMenuBar* menuBar_;
  QLabel* status_;
  QWidget* picSearchName_;
  QWidget* picSearchTab_;
  QWidget* picSearchStrings_;
  QLineEdit* txtSearch_;
  std::array<QLineEdit*, kChordStrings> txtTabSearch_{};  // index 0 = string 1
  std::array<QRadioButton*, 4> optString_{};              // 4 to 7 strings
  std::map<ChordSearch, QAction*> mnuSearch_;
  ViewMenu* viewMenu_ = nullptr;

  std::vector<std::string> lstRealChords_;
  std::vector<std::string> lstChords_;
  std::vector<std::string> broken_;
  std::map<std::string, ChordData> cache_;
  ChordFilter filter_;
  std::string current_;
  bool quiet_ = true;  // no notices while the window is built
};

}  // namespace plectaro
