#include "editing/ui/editor_input.h"

#include <QAbstractScrollArea>
#include <QDynamicPropertyChangeEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>
#include <cmath>

#include "editing/hit_test.h"
#include "editing/key_map.h"
#include "editing/selection.h"

namespace plectaro {

namespace {

// Shift+digit arrives as the shifted symbol. The X keyboard's key codes of the digit row tell
// the digit on any layout; the US symbols are the fallback (offscreen and other platforms).
std::optional<int> digitOfShiftedKey(const QKeyEvent& e) {
  const quint32 code = e.nativeScanCode();
  if (code >= 10 && code <= 19) return code == 19 ? 0 : static_cast<int>(code) - 9;
  switch (e.key()) {
    case Qt::Key_Exclam: return 1;
    case Qt::Key_At: return 2;
    case Qt::Key_NumberSign: return 3;
    case Qt::Key_Dollar: return 4;
    case Qt::Key_Percent: return 5;
    case Qt::Key_AsciiCircum: return 6;
    case Qt::Key_Ampersand: return 7;
    case Qt::Key_Asterisk: return 8;
    case Qt::Key_ParenLeft: return 9;
    case Qt::Key_ParenRight: return 0;
    default: return std::nullopt;
  }
}

// The translucent band over the marked beats and bars. It lies on top of the page, takes no
// mouse events, and is repainted after every draw of the page.
// The view's zoom (its "zoom" property; 1 when it has none): pixels per page unit.
double zoomOf(const QObject* view) {
  const QVariant z = view ? view->property("zoom") : QVariant();
  const double v = z.isValid() ? z.toDouble() : 1.0;
  return v > 0 ? v : 1.0;
}

class BandOverlay : public QWidget {
 public:
  BandOverlay(QWidget* viewport, const EditContext& ctx) : QWidget(viewport), ctx_(ctx) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(viewport->rect());
    show();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    const auto rects = SelectionBand(ctx_);
    if (rects.empty()) return;
    QPainter p(this);
    const double z = zoomOf(parentWidget() ? parentWidget()->parentWidget() : nullptr);
    p.scale(z, z);
    QColor fill = palette().color(QPalette::Highlight);
    fill.setAlpha(60);
    QColor edge = fill;
    edge.setAlpha(160);
    p.setPen(edge);
    p.setBrush(fill);
    for (const BandRect& r : rects) p.drawRect(QRectF(r.x, r.y, r.w, r.h));
  }

 private:
  const EditContext& ctx_;
};

}  // namespace

std::optional<KeyPress> KeyPressFromQt(const QKeyEvent& e) {
  KeyPress k;
  const Qt::KeyboardModifiers m = e.modifiers();
  if (m & Qt::ShiftModifier) k.mods |= kShift;
  if (m & Qt::ControlModifier) k.mods |= kCtrl;
  if (m & Qt::AltModifier) k.mods |= kAlt;
  const bool keypad = (m & Qt::KeypadModifier) != 0;
  const int key = e.key();
  if (key >= Qt::Key_0 && key <= Qt::Key_9) {
    k.key = keypad ? static_cast<Key>(static_cast<int>(Key::Numpad0) + key - Qt::Key_0)
                   : DigitKey(key - Qt::Key_0);
    return k;
  }
  if (key >= Qt::Key_A && key <= Qt::Key_Z) {
    k.key = static_cast<Key>(static_cast<int>(Key::A) + key - Qt::Key_A);
    return k;
  }
  switch (key) {
    case Qt::Key_Left: k.key = Key::Left; return k;
    case Qt::Key_Right: k.key = Key::Right; return k;
    case Qt::Key_Up: k.key = Key::Up; return k;
    case Qt::Key_Down: k.key = Key::Down; return k;
    case Qt::Key_Return: case Qt::Key_Enter: k.key = Key::Enter; return k;
    case Qt::Key_Space: k.key = Key::Space; return k;
    case Qt::Key_Delete: k.key = Key::Delete; return k;
    case Qt::Key_Insert: k.key = Key::Insert; return k;
    case Qt::Key_Escape: k.key = Key::Escape; return k;
    case Qt::Key_Backspace: k.key = Key::Backspace; return k;
    case Qt::Key_Home: k.key = Key::Home; return k;
    case Qt::Key_End: k.key = Key::End; return k;
    case Qt::Key_PageUp: k.key = Key::PageUp; return k;
    case Qt::Key_PageDown: k.key = Key::PageDown; return k;
    case Qt::Key_Period: if (keypad) return std::nullopt; k.key = Key::Period; return k;
    case Qt::Key_Plus:
      k.key = Key::NumpadPlus;
      if (!keypad) k.mods |= kShift;  // main-row "+" is Shift+"=": the semitone step
      return k;
    case Qt::Key_Minus:
      k.key = Key::NumpadMinus;
      return k;
    case Qt::Key_Equal:
      k.key = Key::NumpadPlus;
      k.mods &= ~static_cast<unsigned>(kShift);
      return k;
    case Qt::Key_Underscore:
      k.key = Key::NumpadMinus;
      k.mods |= kShift;
      return k;
    default: break;
  }
  if (k.mods & kShift) {
    if (auto d = digitOfShiftedKey(e)) {
      k.key = DigitKey(*d);
      return k;
    }
  }
  return std::nullopt;
}

EditorInput::EditorInput(QAbstractScrollArea* view, EditContext& ctx)
    : QObject(view), view_(view), viewport_(view->viewport()), ctx_(ctx) {
  view->installEventFilter(this);
  viewport_->installEventFilter(this);
  band_ = new BandOverlay(viewport_, ctx);
}

bool EditorInput::eventFilter(QObject* watched, QEvent* event) {
  // A new zoom moves every bar on screen: the next draw brings the cursor back into view.
  if (watched == view_ && event->type() == QEvent::DynamicPropertyChange &&
      static_cast<QDynamicPropertyChangeEvent*>(event)->propertyName() == "zoom")
    follow_ = true;
  if (watched == view_ && event->type() == QEvent::KeyPress) {
    auto* ke = static_cast<QKeyEvent*>(event);
    const auto k = KeyPressFromQt(*ke);
    if (!k) return false;
    follow_ = true;
    return picDocument_KeyDown(ctx_, k->key, k->mods);
  }
  // Compared by pointer only: while the view is being destroyed its viewport still sends
  // events, and the view must not be asked for anything then.
  if (watched == viewport_ && event->type() == QEvent::Wheel) {
    // Ctrl with the wheel is the view's zoom.
    if (static_cast<QWheelEvent*>(event)->modifiers() & Qt::ControlModifier) return false;
    wheel(*static_cast<QWheelEvent*>(event));
    return true;
  }
  if (watched == viewport_ && event->type() == QEvent::MouseMove) {
    auto* me = static_cast<QMouseEvent*>(event);
    if (!(me->buttons() & Qt::LeftButton)) return false;
    Modifiers mods = 0;
    if (me->modifiers() & Qt::ControlModifier) mods |= kCtrl;
    const double z = zoomOf(view_);
    picDocument_MouseDrag(ctx_, mods, me->position().x() / z, me->position().y() / z);
    return true;
  }
  if (watched == viewport_ && event->type() == QEvent::MouseButtonPress) {
    auto* me = static_cast<QMouseEvent*>(event);
    const MouseButton b = me->button() == Qt::RightButton ? MouseButton::Right
                          : me->button() == Qt::MiddleButton ? MouseButton::Middle
                                                             : MouseButton::Left;
    Modifiers mods = 0;
    if (me->modifiers() & Qt::ShiftModifier) mods |= kShift;
    if (me->modifiers() & Qt::ControlModifier) mods |= kCtrl;
    view_->setFocus(Qt::MouseFocusReason);
    const double z = zoomOf(view_);
    picDocument_MouseDown(ctx_, b, mods, me->position().x() / z, me->position().y() / z);
    return true;
  }
  return false;
}

// One notch of the wheel moves about three lines of text (8 scroll steps of 8 picture units);
// with Shift it turns pages. Touchpads send fractions of a notch, which add up.
void EditorInput::wheel(const QWheelEvent& e) {
  const QPoint a = e.angleDelta();
  // Some desktops turn a Shift+wheel into a sideways wheel.
  const int delta = a.y() != 0 ? a.y() : a.x();
  wheelRest_ += delta / 120.0;
  const double whole = std::trunc(wheelRest_);
  if (whole == 0) return;
  wheelRest_ -= whole;
  QScrollBar* v = view_->verticalScrollBar();
  const bool pages = (e.modifiers() & Qt::ShiftModifier) != 0;
  const int step = pages ? v->pageStep() : 8;
  v->setValue(v->value() - static_cast<int>(whole) * step);
}

void EditorInput::afterDraw() {
  band_->setGeometry(viewport_->rect());
  band_->raise();
  band_->update();
  // The view follows the cursor after anything that moved it: keys, clicks, menu commands,
  // pasting, undo, the end of playback.
  const std::array<int, 3> at = {ctx_.doc.CursorTrack, ctx_.doc.CursorBar, ctx_.doc.CursorBeat};
  if (at != lastCursor_) follow_ = true;
  lastCursor_ = at;
  if (!follow_) return;
  follow_ = false;
  QScrollBar* v = view_->verticalScrollBar();
  const int want = ScrollToShowCursor(ctx_.doc, v->value(), viewport_->height() / zoomOf(view_));
  if (want == v->value()) return;
  // The draw that called us is still painting, and a scroll made now would not repaint: move
  // the bar once it has finished. The bar positions of the old scroll value go with it, so the
  // next draw lays out afresh and the next click sees where the bars now stand.
  QTimer::singleShot(0, this, [this, want] {
    ctx_.doc.FullRelayout = true;
    view_->verticalScrollBar()->setValue(want);
  });
}

}  // namespace plectaro
