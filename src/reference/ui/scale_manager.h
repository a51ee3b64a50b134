// frmScaleManager: the scale library as a scrolling grid of cells, each scale drawn as
// notation, fretboard chart or tab in the chosen key. A click hands the scale to the Scale
// Editor, which plays it; "Add to Music File" writes it into the score at the cursor.
#pragma once

#include <QWidget>
#include <array>
#include <map>

#include "editing/edit_context.h"
#include "reference/cell_drawing.h"
#include "reference/ui/reference_env.h"

class QAction;
class QLabel;
class QLineEdit;
class QMenuBar;
class QSpinBox;

namespace plectaro {

class LibraryView;
class ViewMenu;
class ScaleEditor;

class ScaleManager : public QWidget {
  Q_OBJECT
 public:
  ScaleManager(ReferenceEnv& env, EditContext* edit, QWidget* parent = nullptr);

  void RefreshFilter();
  void RefreshView();
  void setViewType(int viewType);
  int viewType() const;
  void setSearch(ScaleSearch mode);
  // mnuKey(item): A, A#, ... G#; the patterns are stored in E.
  void setKey(int item);
  void setHigh(bool high);
  void setAscending(bool ascending);
  void setLeftHanded(bool on);
  const ScaleView& scaleView() const { return key_; }
  void selectScale(int index);
  bool addToMusicFile();
  void restoreScales();

  const std::vector<std::string>& scales() const { return lstScales_; }
  QString status() const;
  ScaleEditor* editor() const { return editor_; }
  LibraryView* view() const { return view_; }
  QMenuBar* menuBar() const { return menuBar_; }
  QLineEdit* searchBox() const { return txtSearch_; }

 private:
  ScaleData load(const std::string& name);
  void buildMenus();
  std::string title(const std::string& name) const;

  ReferenceEnv& env_;
  EditContext* edit_;
  ScaleEditor* editor_;
  LibraryView* view_;
  QMenuBar* menuBar_;
  QLabel* status_;
  QWidget* picSearch_;
  QLineEdit* txtSearch_;
  QSpinBox* txtStrings_;
  std::array<QAction*, 12> mnuKey_{};
  std::map<ScaleSearch, QAction*> mnuSearch_;
  QAction* mnuHigh_ = nullptr;
  QAction* mnuLow_ = nullptr;
  QAction* mnuAscend_ = nullptr;
  QAction* mnuDescending_ = nullptr;
  ViewMenu* viewMenu_ = nullptr;
  QAction* mnuAdd_ = nullptr;

  std::vector<std::string> lstRealScales_;
  std::vector<std::string> lstScales_;
  std::map<std::string, ScaleData> cache_;
  ScaleFilter filter_;
  ScaleView key_;  // key, octave and direction the cells are drawn in
  std::string current_;
};

}  // namespace plectaro
