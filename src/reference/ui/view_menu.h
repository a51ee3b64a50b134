// What the two managers share besides the grid: the View menu (seven view types and the
// left-handed view, kept in the window's settings section), the status line that also names
// files it could not read, and the small picture of a chart the editors show.
#pragma once

#include <QObject>
#include <QWidget>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "reference/library_filter.h"
#include "reference/ui/reference_env.h"
#include "rendering/surface.h"

class QAction;
class QLabel;
class QMenuBar;

namespace plectaro {

class ViewMenu : public QObject {
  Q_OBJECT
 public:
  // `section` is the settings section ("Chords", "Scales"); `names` the menu texts.
  ViewMenu(QMenuBar* bar, const ReferenceEnv& env, const char* section,
           const std::array<const char*, kViewTypes>& names);
  int viewType() const { return viewType_; }
  bool leftHanded() const { return lefty_; }
  void setViewType(int viewType);
  void setLeftHanded(bool on);

 signals:
  void changed();

 private:
  const ReferenceEnv& env_;
  std::string section_;
  std::array<QAction*, kViewTypes> items_{};
  QAction* lefty_item_ = nullptr;
  int viewType_ = 6;
  bool lefty_ = false;
};

QLabel* MakeStatusLine(QWidget* parent);
// The status text: the count or the notice of an empty result, then the unreadable files.
QString StatusText(const std::string& summary, const std::vector<std::string>& broken);

// A fixed-size white picture drawn by a callback through a Surface.
class SurfacePicture : public QWidget {
 public:
  SurfacePicture(const char* name, QSize size, std::function<void(Surface&)> draw, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  std::function<void(Surface&)> draw_;
};

}  // namespace plectaro
