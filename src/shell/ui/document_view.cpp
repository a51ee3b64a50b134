#include "shell/ui/document_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <cmath>

#include "score/bar_timing.h"

#ifdef PLECTARO_HAVE_RENDERING
#include "rendering/draw_document.h"
#include "rendering/qt/qt_surface.h"
#endif

namespace plectaro {

namespace {

#ifdef PLECTARO_HAVE_RENDERING
LayoutSettings layoutSettings(const IniSettings& ini) {
  LayoutSettings s;
  s.MinTabX = static_cast<int16_t>(std::clamp(ini.MinTabX, 1, 1000));
  s.MaxTabX = static_cast<int16_t>(std::clamp(ini.MaxTabX, 1, 1000));
  s.AutoPageStretch = ini.AutoPageStretch;
  return s;
}
#endif

}  // namespace

DocumentView::DocumentView(Document& doc, const IniSettings& ini, QWidget* parent)
    : QAbstractScrollArea(parent), doc_(doc), ini_(ini) {
  setObjectName("picDocument");
  setFocusPolicy(Qt::StrongFocus);
  viewport()->setAutoFillBackground(false);
  setFrameShape(QFrame::NoFrame);
  setProperty("zoom", zoom_);
}

void DocumentView::setZoom(double zoom) {
  zoom = std::clamp(zoom, kMinZoom, kMaxZoom);
  // Steps of a few percent, so that zooming in and out again comes back exactly.
  zoom = std::round(zoom * 100) / 100;
  if (zoom == zoom_) return;
  zoom_ = zoom;
  setProperty("zoom", zoom_);
  doc_.FullRelayout = true;
  viewport()->update();
  emit zoomChanged(zoom_);
}

// Ctrl with the wheel zooms, a notch a tenth at a time; without Ctrl the wheel scrolls.
void DocumentView::wheelEvent(QWheelEvent* e) {
  if (!(e->modifiers() & Qt::ControlModifier)) {
    QAbstractScrollArea::wheelEvent(e);
    return;
  }
  wheelZoomRest_ += e->angleDelta().y() / 120.0;
  const double whole = std::trunc(wheelZoomRest_);
  wheelZoomRest_ -= whole;
  if (whole != 0) setZoom(zoom_ + 0.1 * whole);
  e->accept();
}

void DocumentView::drawDocument() {
  viewport()->update();
}

void DocumentView::resetScroll() {
  verticalScrollBar()->setValue(0);
  horizontalScrollBar()->setValue(0);
  doc_.FullRelayout = true;
  viewport()->update();
}

void DocumentView::resizeEvent(QResizeEvent* e) {
  QAbstractScrollArea::resizeEvent(e);
  // A new picture size may change the rows (auto stretch) and the page offset.
  doc_.FullRelayout = true;
}

void DocumentView::scrollContentsBy(int, int) {
  // The stored row positions belong to the old scroll place, so the rows are placed again.
  doc_.FullRelayout = true;
  if (!inPaint_) viewport()->update();
}

void DocumentView::keyPressEvent(QKeyEvent* e) {
  if (onKey && onKey(e)) return;
  QAbstractScrollArea::keyPressEvent(e);
}

void DocumentView::mousePressEvent(QMouseEvent* e) {
  setFocus(Qt::MouseFocusReason);
  if (onMousePress) onMousePress(e);
  QAbstractScrollArea::mousePressEvent(e);
}

void DocumentView::applyScroll(int vMax, int vPage, int vStep, int hMax, bool hEnabled) {
  QScrollBar* v = verticalScrollBar();
  QScrollBar* h = horizontalScrollBar();
  v->setRange(0, std::max(0, vMax));
  v->setPageStep(std::max(1, vPage));
  v->setSingleStep(std::max(1, vStep));
  h->setRange(0, hEnabled ? std::max(0, hMax) : 0);
  h->setPageStep(10);
  h->setSingleStep(1);
}

void DocumentView::paintEvent(QPaintEvent*) {
  inPaint_ = true;
  const int vBefore = verticalScrollBar()->value();
  const int hBefore = horizontalScrollBar()->value();
  QPainter painter(viewport());
  painter.setRenderHint(QPainter::Antialiasing, true);
  painter.setRenderHint(QPainter::TextAntialiasing, true);
  const QSize size = viewport()->size();
  ViewStatus status;
#ifdef PLECTARO_HAVE_RENDERING
  {
    const QColor bg = palette().color(QPalette::Dark);
    painter.fillRect(viewport()->rect(), bg);
    // The page is drawn in page units; the surface's scale makes them pixels at the zoom.
    QtSurface surface(painter, zoom_);
    ViewState view;
    view.PictureWidth = size.width() / zoom_;
    view.PictureHeight = size.height() / zoom_;
    view.VScroll = verticalScrollBar()->value();
    view.HScroll = horizontalScrollBar()->value();
    view.NotationLine = notationLine ? notationLine() : -1;
    view.Background = Color{static_cast<uint8_t>(bg.red()), static_cast<uint8_t>(bg.green()),
                            static_cast<uint8_t>(bg.blue()), 255};
    const DrawTexts texts = str_ ? DrawTextsFrom(str_) : DrawTexts{};
    LayoutSettings settings = layoutSettings(ini_);
    settings.PaperSizeIndex = paperSizeIndex_;
    settings.Landscape = landscape_;
    ApplyPaperSize(settings);
    DrawResult r = DrawDocument(doc_, settings, view, texts, surface);
    applyScroll(r.Scroll.VMax, r.Scroll.VLargeChange, r.Scroll.VSmallChange, r.Scroll.HMax,
                r.Scroll.HEnabled);
    status.BeatCount = r.Status.BeatCount;
    status.Fill = r.Status.Fill;
    status.FillState = r.Status.FillState;
    status.Pages = r.Status.Pages;
    status.Error = r.Error;
  }
#else
  // Until the page drawing is in, show the sheet the document will stand on.
  painter.fillRect(viewport()->rect(), palette().color(QPalette::Dark));
  const int pageW = 795, pageH = 1124;
  const int vMax = std::max(0, (pageH + 70 - size.height()) / 8);
  applyScroll(vMax, std::max(1, size.height() / 8), 3, std::max(0, (pageW + 80 - size.width()) / 10),
              size.width() < pageW + 80);
  const int x = size.width() > pageW + 80 ? (size.width() - pageW) / 2
                                          : 40 - 10 * horizontalScrollBar()->value();
  const int y = 35 - 8 * verticalScrollBar()->value();
  painter.fillRect(x + 5, y + 5, pageW, pageH, QColor(60, 60, 60));
  painter.fillRect(x, y, pageW, pageH, Qt::white);
  painter.setPen(Qt::black);
  QFont f("Times New Roman", 22);
  painter.setFont(f);
  painter.drawText(QRect(x, y + 40, pageW, 50), Qt::AlignHCenter,
                   QString::fromStdString(doc_.score.Title));
  try {
    const int t = doc_.CursorTrack, b = doc_.CursorBar;
    status.BeatCount = " " + Format64ths(GetBeatsLength(doc_.score, t, b)) + " 64ths -- " +
                       Format64ths(GetBarLength(doc_.score, t, b)) + " 64ths";
    status.FillState = CheckBar(doc_.score, t, b);
  } catch (const ScoreError& e) {
    status.Error = e.what();
  }
  doc_.FullRelayout = false;
#endif
  inPaint_ = false;
  // New ranges may have moved a scroll bar (a shorter document, a wider window): this picture
  // was drawn at the old place, so draw again at the new one.
  if (verticalScrollBar()->value() != vBefore || horizontalScrollBar()->value() != hBefore)
    QMetaObject::invokeMethod(viewport(), qOverload<>(&QWidget::update), Qt::QueuedConnection);
  last_ = status;
  emit drawn(status);
  if (!painted_) {
    painted_ = true;
    emit firstPainted();
  }
}

}  // namespace plectaro
