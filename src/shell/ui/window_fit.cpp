#include "shell/ui/window_fit.h"

#include <QEvent>
#include <QMainWindow>
#include <QTimer>
#include <QToolBar>
#include <algorithm>
#include <tuple>

namespace plectaro {

QRect FirstWindowPlace(const QRect& available) {
  const int w = std::min(1400, available.width() * 9 / 10);
  const int h = std::min(1000, available.height() * 9 / 10);
  return {available.x() + (available.width() - w) / 2, available.y() + (available.height() - h) / 2, w, h};
}

std::vector<int> RowBreaks(const std::vector<int>& widths, int rowWidth) {
  std::vector<int> breaks;
  int x = 0;
  for (size_t i = 0; i < widths.size(); ++i) {
    if (x > 0 && x + widths[i] > rowWidth) {
      breaks.push_back(static_cast<int>(i));
      x = 0;
    }
    x += widths[i];
  }
  return breaks;
}

ToolbarWrapper::ToolbarWrapper(QMainWindow* window, std::vector<QToolBar*> bars)
    : QObject(window), window_(window), bars_(std::move(bars)) {
  window_->installEventFilter(this);
  for (QToolBar* tb : bars_) tb->installEventFilter(this);
}

bool ToolbarWrapper::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type t = event->type();
  if ((watched == window_ && t == QEvent::Resize) ||
      (watched != window_ && (t == QEvent::Show || t == QEvent::Hide || t == QEvent::ParentChange)))
    later();
  return false;
}

void ToolbarWrapper::later() {
  if (pending_) return;
  pending_ = true;
  QTimer::singleShot(0, this, [this] {
    pending_ = false;
    wrap();
  });
}

void ToolbarWrapper::wrap() {
  for (Qt::ToolBarArea area : {Qt::TopToolBarArea, Qt::BottomToolBarArea}) {
    std::vector<std::tuple<int, int, int>> order;  // row, x, index: the order the area shows them
    for (size_t i = 0; i < bars_.size(); ++i) {
      QToolBar* tb = bars_[i];
      if (window_->toolBarArea(tb) != area || tb->isFloating()) continue;
      window_->removeToolBarBreak(tb);
      if (tb->isVisibleTo(window_)) order.emplace_back(tb->y(), tb->x(), static_cast<int>(i));
    }
    std::sort(order.begin(), order.end());
    std::vector<int> widths;
    for (const auto& [y, x, i] : order) {
      // The handle and the spacing of the dock area come on top of the bar's own width.
      widths.push_back(bars_[static_cast<size_t>(i)]->sizeHint().width() + 6);
    }
    for (int b : RowBreaks(widths, window_->width() - 4))
      window_->insertToolBarBreak(bars_[static_cast<size_t>(std::get<2>(order[static_cast<size_t>(b)]))]);
  }
}

}  // namespace plectaro
