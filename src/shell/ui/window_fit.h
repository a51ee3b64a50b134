// The main window's fit to the screen: its first size and place, and toolbars that wrap onto
// new rows instead of widening the window.
#pragma once

#include <QObject>
#include <QRect>
#include <QSize>
#include <vector>

class QMainWindow;
class QToolBar;

namespace plectaro {

// Where the window opens the first time: centred in the available part of the screen, as large
// as a page wants (up to 1400 x 1000) but never over 90% of the screen either way.
QRect FirstWindowPlace(const QRect& available);

// Splits widths into rows no wider than `rowWidth`: the result holds the indexes that start a
// new row (never the first; an item wider than a row stands alone on its row).
std::vector<int> RowBreaks(const std::vector<int>& widths, int rowWidth);

// Keeps the window's top and bottom toolbars wrapped to its width: after a resize, and when a
// toolbar is shown, hidden or moved, the breaks between them are set again.
class ToolbarWrapper : public QObject {
  Q_OBJECT
 public:
  ToolbarWrapper(QMainWindow* window, std::vector<QToolBar*> bars);
  // Sets the breaks now.
  void wrap();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QMainWindow* window_;
  std::vector<QToolBar*> bars_;
  bool pending_ = false;
  void later();
};

}  // namespace plectaro
