#include "editing/ui/practice_panels.h"

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "editing/cursor_access.h"
#include "rendering/notation.h"

namespace plectaro {

namespace {

const QColor kCursorColour(30, 100, 230);
const QColor kSoundingColour(225, 50, 40);

// The note names of the sharps, for the dots and the piano's C keys.
QString noteName(int pitch) {
  static const char* names[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
  return QString::fromLatin1(names[((pitch % 12) + 12) % 12]);
}

bool holdsPitch(const std::vector<HandNote>& notes, int pitch) {
  return std::any_of(notes.begin(), notes.end(), [&](const HandNote& n) { return n.pitch == pitch; });
}

const char* kLeftyKey = "LeftHanded";
const char* kSection = "VirtualInstruments";

}  // namespace

// ---- fretboard ----

FretboardWidget::FretboardWidget(QWidget* parent) : QWidget(parent) {
  setObjectName("picFretboard");
  setMinimumSize(420, 110);
  setMouseTracking(false);
}

void FretboardWidget::setNotes(const PanelNotes& notes) {
  notes_ = notes;
  update();
}

void FretboardWidget::setLeftHanded(bool on) {
  leftHanded_ = on;
  update();
}

FretboardGeometry FretboardWidget::geometry() const {
  FretboardGeometry g;
  g.width = width();
  g.height = height();
  g.strings = std::clamp(notes_.strings, 1, kMaxStrings);
  g.leftHanded = leftHanded_;
  return g;
}

void FretboardWidget::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing, true);
  const FretboardGeometry g = geometry();
  p.fillRect(rect(), QColor(250, 248, 242));
  const double top = g.stringY(0) - g.margin() / 2, bottom = g.stringY(g.strings - 1) + g.margin() / 2;
  const auto sx = [&](double x) { return g.shown(x); };
  // The neck's wood, from the nut to the last fret.
  const double x0 = sx(g.wireX(0)), x1 = sx(g.wireX(kFretboardFrets));
  p.fillRect(QRectF(std::min(x0, x1), top, std::abs(x1 - x0), bottom - top), QColor(120, 78, 44));
  // Position marks.
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(235, 225, 205));
  const double mid = (top + bottom) / 2, r = std::min(6.0, (bottom - top) / 14);
  for (int f : {3, 5, 7, 9, 15, 17, 19, 21}) p.drawEllipse(QPointF(sx(g.fretCentreX(f)), mid), r, r);
  for (int f : {12, 24}) {
    p.drawEllipse(QPointF(sx(g.fretCentreX(f)), top + (bottom - top) * 0.3), r, r);
    p.drawEllipse(QPointF(sx(g.fretCentreX(f)), top + (bottom - top) * 0.7), r, r);
  }
  // Frets, the nut thicker, and their numbers under the neck.
  QFont small = font();
  small.setPointSizeF(7);
  p.setFont(small);
  for (int f = 0; f <= kFretboardFrets; ++f) {
    p.setPen(QPen(f == 0 ? QColor(240, 235, 220) : QColor(190, 190, 195), f == 0 ? 5 : 2));
    p.drawLine(QPointF(sx(g.wireX(f)), top), QPointF(sx(g.wireX(f)), bottom));
    if (f > 0 && (f % 2 == 1 || f == 12)) {
      p.setPen(QColor(90, 90, 90));
      p.drawText(QRectF(sx(g.fretCentreX(f)) - 12, bottom + 1, 24, 12), Qt::AlignCenter, QString::number(f));
    }
  }
  // A capo: a dark bar across the strings just behind its fret.
  if (notes_.capo > 0 && notes_.capo <= kFretboardFrets) {
    const double cx = sx(g.wireX(notes_.capo) - (g.wireX(notes_.capo) - g.wireX(notes_.capo - 1)) * 0.25);
    p.setPen(QPen(QColor(40, 40, 40), 7, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(cx, top + 2), QPointF(cx, bottom - 2));
  }
  // Strings, thicker toward the low ones, with the open note's name beside the nut.
  for (int s = 0; s < g.strings; ++s) {
    const double y = g.stringY(s);
    p.setPen(QPen(QColor(215, 215, 220), 1 + s * 0.35));
    p.drawLine(QPointF(sx(g.wireX(0)), y), QPointF(sx(g.wireX(kFretboardFrets)), y));
    p.setPen(QColor(60, 60, 60));
    p.drawText(QRectF(sx(g.fretCentreX(0)) - 12, y - 7, 24, 14), Qt::AlignCenter,
               noteName(notes_.openPitch[static_cast<size_t>(s)] + notes_.capo));
  }
  // The notes: the beat that sounds in red over the cursor's beat in blue.
  QFont bold = font();
  bold.setPointSizeF(7.5);
  bold.setBold(true);
  p.setFont(bold);
  const double dot = std::clamp((g.stringY(1) - g.stringY(0)) * 0.42, 6.0, 10.0);
  const auto drawNotes = [&](const std::vector<HandNote>& notes, const QColor& colour) {
    for (const HandNote& n : notes) {
      if (n.fret > kFretboardFrets) continue;
      const QPointF c(sx(g.fretCentreX(n.fret)), g.stringY(n.string));
      p.setPen(QPen(Qt::white, 1.5));
      p.setBrush(colour);
      p.drawEllipse(c, dot, dot);
      p.setPen(Qt::white);
      p.drawText(QRectF(c.x() - dot, c.y() - dot, 2 * dot, 2 * dot), Qt::AlignCenter, noteName(n.pitch));
    }
  };
  drawNotes(notes_.cursor, kCursorColour);
  drawNotes(notes_.sounding, kSoundingColour);
}

void FretboardWidget::mousePressEvent(QMouseEvent* e) {
  if (e->button() != Qt::LeftButton) return;
  if (const auto h = geometry().hit(e->position().x(), e->position().y())) emit clicked(h->string, h->fret);
}

// ---- piano ----

PianoWidget::PianoWidget(QWidget* parent) : QWidget(parent) {
  setObjectName("picPiano");
  setMinimumSize(420, 70);
}

void PianoWidget::setNotes(const PanelNotes& notes) {
  notes_ = notes;
  update();
}

PianoGeometry PianoWidget::geometry() const {
  PianoGeometry g;
  g.width = width();
  g.height = height();
  return g;
}

void PianoWidget::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing, true);
  const PianoGeometry g = geometry();
  p.fillRect(rect(), QColor(60, 60, 60));
  const auto colourOf = [&](int key, const QColor& plain) {
    if (holdsPitch(notes_.sounding, key)) return kSoundingColour;
    if (holdsPitch(notes_.cursor, key)) return kCursorColour;
    return plain;
  };
  QFont small = font();
  small.setPointSizeF(7);
  p.setFont(small);
  for (int k = g.lowKey; k <= g.highKey; ++k) {
    if (IsBlackKey(k)) continue;
    const PianoGeometry::Box b = g.keyBox(k);
    const QRectF r(b.x, b.y, b.w, b.h);
    p.setPen(QPen(QColor(90, 90, 90), 1));
    p.setBrush(colourOf(k, Qt::white));
    p.drawRect(r.adjusted(0.5, 0.5, -0.5, -0.5));
    if (k % 12 == 0) {
      p.setPen(colourOf(k, Qt::white) == Qt::white ? QColor(110, 110, 110) : Qt::white);
      p.drawText(r.adjusted(0, 0, 0, -3), Qt::AlignHCenter | Qt::AlignBottom, QString("C%1").arg(k / 12 - 1));
    }
  }
  for (int k = g.lowKey; k <= g.highKey; ++k) {
    if (!IsBlackKey(k)) continue;
    const PianoGeometry::Box b = g.keyBox(k);
    p.setPen(QPen(QColor(20, 20, 20), 1));
    p.setBrush(colourOf(k, QColor(25, 25, 25)));
    p.drawRoundedRect(QRectF(b.x, b.y, b.w, b.h), 1.5, 1.5);
  }
}

void PianoWidget::mousePressEvent(QMouseEvent* e) {
  if (e->button() != Qt::LeftButton) return;
  if (const auto k = geometry().hit(e->position().x(), e->position().y())) emit clicked(*k);
}

// ---- the panels in the window ----

PracticePanels::PracticePanels(QMainWindow& window, EditContext& ctx, SettingsStore& settings)
    : QObject(&window), window_(window), ctx_(ctx), settings_(settings) {
  fretboard_ = new FretboardWidget;
  piano_ = new PianoWidget;
  const auto dock = [&](QWidget* w, const char* name, const QString& title) {
    auto* d = new QDockWidget(title, &window);
    d->setObjectName(name);
    d->setWidget(w);
    d->setAllowedAreas(Qt::AllDockWidgetAreas);
    window.addDockWidget(Qt::BottomDockWidgetArea, d);
    d->hide();
    return d;
  };
  fretDock_ = dock(fretboard_, "dockFretboard", "Virtual Fretboard");
  pianoDock_ = dock(piano_, "dockPiano", "Virtual Piano");
  fretboard_->setLeftHanded(settings_.GetSetting(kSection, kLeftyKey, "0") == "1");

  connect(fretboard_, &FretboardWidget::clicked, this, [this](int string, int fret) {
    WriteFretboardNote(ctx_, string, fret);
  });
  connect(piano_, &PianoWidget::clicked, this, [this](int key) { WritePianoNote(ctx_, key); });
  // Showing a panel fills it at once.
  connect(fretDock_, &QDockWidget::visibilityChanged, this, [this](bool on) { if (on) push(); });
  connect(pianoDock_, &QDockWidget::visibilityChanged, this, [this](bool on) { if (on) push(); });
}

void PracticePanels::connectMenus(const std::function<QAction*(const QString&)>& find) {
  const auto toggle = [&](const char* name, QDockWidget* d) {
    QAction* a = find(name);
    if (!a) return;
    a->setEnabled(true);
    a->setCheckable(true);
    a->setChecked(d->isVisible());
    connect(a, &QAction::toggled, d, &QDockWidget::setVisible);
    connect(d, &QDockWidget::visibilityChanged, a, [a, d](bool) { a->setChecked(!d->isHidden()); });
  };
  toggle("mnuViewFretboard", fretDock_);
  toggle("mnuViewPiano", pianoDock_);
  if (QAction* a = find("mnuViewLefty")) {
    a->setEnabled(true);
    a->setCheckable(true);
    a->setChecked(settings_.GetSetting(kSection, kLeftyKey, "0") == "1");
    connect(a, &QAction::toggled, this, [this](bool on) {
      fretboard_->setLeftHanded(on);
      settings_.SaveSetting(kSection, kLeftyKey, on ? "1" : "0");
    });
  }
}

void PracticePanels::refresh() {
  if (fretDock_->isHidden() && pianoDock_->isHidden()) return;
  push();
}

void PracticePanels::showSounding(const Score& score, int track, int bar, int beat) {
  sounding_.clear();
  if (track >= 0 && track <= score.LastTrack() && bar >= 0 && bar <= score.GetLastBar(track) && beat >= 0 &&
      beat <= score.GetLastBeat(track, bar))
    sounding_ = HandNotesOf(score.Tracks[static_cast<size_t>(track)], score.beat(track, bar, beat));
  refresh();
}

void PracticePanels::stopSounding() {
  sounding_.clear();
  refresh();
}

void PracticePanels::push() {
  const Document& d = ctx_.doc;
  PanelNotes n;
  n.sounding = sounding_;
  try {
    const Track& tr = d.score.track(d.CursorTrack);
    n.strings = std::clamp<int>(tr.Tuning.NumStrings, 1, kMaxStrings);
    n.capo = tr.Capo > 0 && tr.Capo < 40 ? tr.Capo : 0;
    for (int s = 0; s < n.strings; ++s)
      n.openPitch[static_cast<size_t>(s)] = OpenStringPitch(tr, s) - n.capo;
    n.cursor = HandNotesOf(tr, CursorBeat(d));
  } catch (const ScoreError&) {
    // A cursor outside the score (a moment during a file change) shows an empty neck.
  }
  if (!fretDock_->isHidden()) fretboard_->setNotes(n);
  if (!pianoDock_->isHidden()) piano_->setNotes(n);
}

}  // namespace plectaro
