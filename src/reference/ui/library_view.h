// picView of the Chord Manager and the Scale Manager: a scrolling grid of library cells with
// the highlight round the picked cell. The window says how many cells there are and draws
// each one; the view lays them out, scrolls by rows and reports clicks.
#pragma once

#include <QWidget>
#include <functional>

#include "reference/library_filter.h"
#include "rendering/surface.h"

class QScrollBar;

namespace plectaro {

class LibraryView : public QWidget {
  Q_OBJECT
 public:
  using DrawCell = std::function<void(Surface& s, Point origin, int index)>;
  LibraryView(DrawCell draw, QWidget* parent = nullptr);

  // New cell geometry or a new list: the scroll range is computed again (RefreshView).
  void setCells(const CellGeometry& cell, int count);
  int selected() const { return selected_; }
  void setSelected(int index);
  const GridLayout& grid() const { return grid_; }
  int scroll() const;
  QScrollBar* scroller() const { return scroller_; }

 signals:
  void cellClicked(int index, bool rightButton, QPoint globalPos);

 protected:
  void paintEvent(QPaintEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void wheelEvent(QWheelEvent* e) override;

 private:
  QRect viewRect() const;
  void relayout();

  DrawCell draw_;
  CellGeometry cell_;
  GridLayout grid_;
  int count_ = 0;
  int selected_ = -1;
  QScrollBar* scroller_;
};

}  // namespace plectaro
