#include "reference/ui/library_view.h"

#include <algorithm>

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include "rendering/qt/qt_surface.h"

namespace plectaro {

LibraryView::LibraryView(DrawCell draw, QWidget* parent)
    : QWidget(parent), draw_(std::move(draw)), scroller_(new QScrollBar(Qt::Vertical, this)) {
  setObjectName("picView");
  scroller_->setObjectName("VScroller");
  setMinimumSize(120, 140);
  setAttribute(Qt::WA_OpaquePaintEvent);
  connect(scroller_, &QScrollBar::valueChanged, this, [this] { update(); });
}

QRect LibraryView::viewRect() const { return QRect(0, 0, width() - scroller_->sizeHint().width(), height()); }

int LibraryView::scroll() const { return scroller_->value(); }

void LibraryView::setCells(const CellGeometry& cell, int count) {
  cell_ = cell;
  count_ = count;
  if (selected_ >= count_) selected_ = -1;
  relayout();
  update();
}

void LibraryView::setSelected(int index) {
  selected_ = index;
  update();
}

void LibraryView::relayout() {
  const QRect r = viewRect();
  grid_ = LayoutGrid(r.width(), r.height(), cell_, static_cast<size_t>(count_));
  scroller_->setGeometry(r.right() + 1, 0, scroller_->sizeHint().width(), height());
  scroller_->setRange(0, grid_.scrollMax);
  scroller_->setPageStep(std::max(1, grid_.rows - 1));
  scroller_->setEnabled(grid_.scrollMax > 0);
}

void LibraryView::resizeEvent(QResizeEvent*) { relayout(); }

void LibraryView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(rect(), QColor(255, 255, 255));
  if (cell_.cellWidth <= 0) return;
  QtSurface surface(painter);
  const int first = scroll() * grid_.columns;
  // Rows are drawn while any part of them shows; the list's end stops the walk.
  const int rowsShown = static_cast<int>(viewRect().height() / cell_.cellHeight) + 1;
  for (int row = 0; row < rowsShown; ++row) {
    for (int col = 0; col < grid_.columns; ++col) {
      const int index = first + row * grid_.columns + col;
      if (index >= count_) return;
      const Point origin{col * cell_.cellWidth, row * cell_.cellHeight};
      draw_(surface, origin, index);
      if (index == selected_) {
        // shpHighLight: a coloured frame round the picked cell.
        surface.drawRect({origin.x + 2, origin.y + 2, cell_.cellWidth - 4, cell_.cellHeight - 4},
                         Color{30, 90, 220, 255}, 2.5);
      }
    }
  }
}

void LibraryView::mousePressEvent(QMouseEvent* e) {
  const int index = CellAt(e->position().x(), e->position().y(), grid_, cell_, scroll(), static_cast<size_t>(count_));
  if (index < 0) return;
  setSelected(index);
  emit cellClicked(index, e->button() == Qt::RightButton, e->globalPosition().toPoint());
}

void LibraryView::wheelEvent(QWheelEvent* e) {
  scroller_->setValue(scroller_->value() - e->angleDelta().y() / 120);
}

}  // namespace plectaro
