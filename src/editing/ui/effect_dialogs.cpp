#include "editing/ui/effect_dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QRadioButton>
#include <QRandomGenerator>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "editing/cursor_access.h"

namespace plectaro {

namespace {

// The stored NoteVolume numbers in the order of the volume menu, loudest first.
constexpr int32_t kDynamics[8] = {3, 2, 1, 0, 4, 5, 6, 7};
const char* const kDynamicNames[8] = {"FFF", "FF", "F", "MF", "MP", "P", "PP", "PPP"};

QPushButton* addButton(QDialogButtonBox* box, const char* name, const QString& text,
                       QDialogButtonBox::ButtonRole role) {
  auto* b = box->addButton(text, role);
  b->setObjectName(name);
  return b;
}

// OK and Cancel, and Clear (which closes with kEffectClear) and Play when asked for.
QDialogButtonBox* buttons(QDialog* d, bool clear, const std::function<void()>& play) {
  auto* box = new QDialogButtonBox(d);
  if (play) QObject::connect(addButton(box, "cmdPlay", "Play", QDialogButtonBox::ActionRole), &QPushButton::clicked, d, play);
  if (clear)
    QObject::connect(addButton(box, "cmdClear", "Clear", QDialogButtonBox::ActionRole), &QPushButton::clicked, d,
                     [d] { d->done(kEffectClear); });
  auto* ok = addButton(box, "cmdOK", "OK", QDialogButtonBox::AcceptRole);
  ok->setDefault(true);
  addButton(box, "cmdCancel", "Cancel", QDialogButtonBox::RejectRole);
  QObject::connect(box, &QDialogButtonBox::accepted, d, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, d, &QDialog::reject);
  return box;
}

QButtonGroup* radios(QWidget* parent, QLayout* into, const QString& title, const char* name,
                     const std::vector<const char*>& texts, int checked) {
  auto* box = new QGroupBox(title, parent);
  auto* l = new QVBoxLayout(box);
  auto* group = new QButtonGroup(box);
  for (size_t i = 0; i < texts.size(); ++i) {
    auto* r = new QRadioButton(texts[i], box);
    r->setObjectName(QString("%1%2").arg(name).arg(i));
    group->addButton(r, static_cast<int>(i));
    l->addWidget(r);
  }
  if (QAbstractButton* b = group->button(std::clamp<int>(checked, 0, static_cast<int>(texts.size()) - 1)))
    b->setChecked(true);
  into->addWidget(box);
  return group;
}

QLabel* prompt(QDialog* d, QLayout* l, const char* text) {
  auto* label = new QLabel(text, d);
  label->setObjectName("Label1");
  label->setWordWrap(true);
  l->addWidget(label);
  return label;
}

QListWidget* presetList(QWidget* parent, const std::vector<std::string>& names, int current) {
  auto* list = new QListWidget(parent);
  list->setObjectName("List2");
  for (const std::string& n : names) list->addItem(QString::fromStdString(n));
  list->setCurrentRow(std::clamp<int>(current, 0, static_cast<int>(names.size()) - 1));
  list->setMaximumWidth(170);
  return list;
}

int fretOf(const Document& doc) {
  int fret = 0;
  FretNumber(CursorSlot(doc).Fret, fret);
  return fret;
}

// The curve dialogs share their shape: the picture beside the preset list, and the buttons
// Random, Reset (the chosen preset again), Clear, Play, OK, Cancel under them.
template <typename Curve>
void buildCurveDialog(QDialog* d, const char* text, CurveEditor*& pic, QListWidget*& list,
                      const std::vector<std::string>& names, int preset, const Curve& start,
                      Curve (*presetCurve)(int), Curve (*randomCurve)(uint32_t),
                      const std::function<void()>& play) {
  auto* l = new QVBoxLayout(d);
  prompt(d, l, text);
  auto* row = new QHBoxLayout;
  row->addWidget(pic, 1);
  list = presetList(d, names, preset);
  row->addWidget(list);
  l->addLayout(row, 1);
  pic->setPoints({start.begin(), start.end()});
  auto* box = buttons(d, true, play);
  auto* random = addButton(box, "cmdRandom", "Random", QDialogButtonBox::ActionRole);
  auto* reset = addButton(box, "cmdReset", "Reset", QDialogButtonBox::ActionRole);
  auto toPic = [pic](const Curve& c) { pic->setPoints({c.begin(), c.end()}); };
  QObject::connect(list, &QListWidget::currentRowChanged, d, [=](int row) { toPic(presetCurve(row)); });
  QObject::connect(reset, &QPushButton::clicked, d, [=] { toPic(presetCurve(list->currentRow())); });
  QObject::connect(random, &QPushButton::clicked, d,
                   [=] { toPic(randomCurve(QRandomGenerator::global()->generate())); });
  l->addWidget(box);
  d->resize(560, 320);
}

template <typename Curve>
Curve curveOf(const CurveEditor* pic) {
  Curve c{};
  const auto& p = pic->points();
  std::copy_n(p.begin(), std::min(p.size(), c.size()), c.begin());
  return c;
}

PlayEdited playHook(EditContext& ctx) {
  if (!ctx.hooks.playScoreBeat) return {};
  return [&ctx](const Score& s) {
    ctx.hooks.playScoreBeat(s, ctx.doc.CursorTrack, ctx.doc.CursorBar, ctx.doc.CursorBeat);
  };
}

}  // namespace

// ---- CurveEditor ----

CurveEditor::CurveEditor(double lo, double hi, Setter setter, QWidget* parent)
    : QWidget(parent), lo_(lo), hi_(hi), setter_(std::move(setter)) {
  setObjectName("picBend");
  setMinimumSize(320, 200);
  setCursor(Qt::CrossCursor);
}

void CurveEditor::setPoints(std::vector<double> points) {
  points_ = std::move(points);
  update();
  if (changed) changed();
}

QRectF CurveEditor::plotArea() const {
  // Room on the left for the height figures.
  return QRectF(34, 8, std::max(10, width() - 44), std::max(10, height() - 16));
}

void CurveEditor::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  p.fillRect(rect(), Qt::white);
  const QRectF a = plotArea();
  auto yOf = [&](double v) { return a.bottom() - (v - lo_) / (hi_ - lo_) * a.height(); };
  // A faint line per quarter tone, a firm one per whole tone with its figure.
  QFont f = font();
  f.setPointSize(7);
  p.setFont(f);
  for (int q = static_cast<int>(lo_); q <= static_cast<int>(hi_); ++q) {
    const bool tone = q % 4 == 0;
    p.setPen(QPen(tone ? QColor(150, 150, 150) : QColor(225, 225, 225), q == 0 ? 1.5 : 1));
    p.drawLine(QPointF(a.left(), yOf(q)), QPointF(a.right(), yOf(q)));
    if (tone) {
      p.setPen(Qt::darkGray);
      p.drawText(QRectF(0, yOf(q) - 7, a.left() - 4, 14), Qt::AlignRight | Qt::AlignVCenter,
                 QString::number(q / 4));
    }
  }
  const size_t n = points_.size();
  if (n < 2) return;
  p.setPen(QPen(QColor(230, 230, 230), 1));
  for (size_t i = 0; i < n; ++i) {
    const double x = a.left() + a.width() * static_cast<double>(i) / static_cast<double>(n - 1);
    p.drawLine(QPointF(x, a.top()), QPointF(x, a.bottom()));
  }
  QPainterPath path;
  for (size_t i = 0; i < n; ++i) {
    const double v = std::isfinite(points_[i]) ? std::clamp(points_[i], lo_, hi_) : 0;
    const QPointF pt(a.left() + a.width() * static_cast<double>(i) / static_cast<double>(n - 1), yOf(v));
    if (i == 0) path.moveTo(pt);
    else path.lineTo(pt);
  }
  p.setPen(QPen(QColor(20, 60, 160), 2));
  p.drawPath(path);
  p.setBrush(QColor(20, 60, 160));
  for (int i = 0; i < path.elementCount(); ++i) p.drawEllipse(QPointF(path.elementAt(i).x, path.elementAt(i).y), 2.5, 2.5);
}

void CurveEditor::setAt(QPointF pos) {
  const QRectF a = plotArea();
  setter_(points_, pos.x() - a.left(), pos.y() - a.top(), a.width(), a.height());
  update();
  if (changed) changed();
}

void CurveEditor::mousePressEvent(QMouseEvent* e) {
  if (e->button() == Qt::LeftButton) setAt(e->position());
}

void CurveEditor::mouseMoveEvent(QMouseEvent* e) {
  if (e->buttons() & Qt::LeftButton) setAt(e->position());
}

// ---- bend ----

BendDialog::BendDialog(const Document& doc, PlayEdited play, QWidget* parent) : QDialog(parent), doc_(doc) {
  setObjectName("ntne_frmBend");
  setWindowTitle("Bend");
  const NoteSlot& slot = CursorSlot(doc);
  const int preset = slot.HasBend ? slot.Bend->PresetIndex : 0;
  const BendCurve start = slot.HasBend ? slot.Bend->Points : BendPreset(preset);
  picBend = new CurveEditor(0, kMaxBendHeight, [](std::vector<double>& pts, double x, double y, double w, double h) {
    BendCurve c{};
    std::copy_n(pts.begin(), std::min(pts.size(), c.size()), c.begin());
    SetBendPointAt(c, x, y, w, h);
    pts.assign(c.begin(), c.end());
  }, this);
  std::function<void()> sound;
  if (play) sound = [this, play] { play(WithBend(doc_, bend())); };
  buildCurveDialog<BendCurve>(this, "Please set up the desired bend effect, then press OK.", picBend, List2,
                              BendPresetNames(), preset, start, &BendPreset, &RandomBendCurve, sound);
}

BendInfo BendDialog::bend() const {
  BendInfo b;
  if (CursorSlot(doc_).HasBend) b = *CursorSlot(doc_).Bend;
  b.Points = curveOf<BendCurve>(picBend);
  b.PresetIndex = std::max(0, List2->currentRow());
  return b;
}

// ---- tremolo bar ----

TremoloDialog::TremoloDialog(const Document& doc, PlayEdited play, QWidget* parent) : QDialog(parent), doc_(doc) {
  setObjectName("ntne_frmTremolo");
  setWindowTitle("Tremolo Bar");
  const Beat& beat = CursorBeat(doc);
  const int preset = beat.HasTremoloBar ? beat.TremoloBar->Kind : 0;
  const TremoloCurve start = beat.HasTremoloBar ? beat.TremoloBar->Points : TremoloPreset(preset);
  picBend = new CurveEditor(-kMaxTremoloDepth, kMaxTremoloDepth,
                            [](std::vector<double>& pts, double x, double y, double w, double h) {
                              TremoloCurve c{};
                              std::copy_n(pts.begin(), std::min(pts.size(), c.size()), c.begin());
                              SetTremoloPointAt(c, x, y, w, h);
                              pts.assign(c.begin(), c.end());
                            }, this);
  std::function<void()> sound;
  if (play) sound = [this, play] { play(WithTremoloBar(doc_, tremoloBar())); };
  buildCurveDialog<TremoloCurve>(this, "Please set up the desired tremolo bar effect, then press OK.", picBend,
                                 List2, TremoloPresetNames(), preset, start, &TremoloPreset, &RandomTremoloCurve,
                                 sound);
}

TremoloBarInfo TremoloDialog::tremoloBar() const {
  TremoloBarInfo t;
  t.Points = curveOf<TremoloCurve>(picBend);
  t.Kind = std::clamp(List2->currentRow(), 0, 5);
  t.Label = TremoloLabel(t.Points);
  return t;
}

// ---- trill ----

TrillDialog::TrillDialog(const Document& doc, PlayEdited play, QWidget* parent) : QDialog(parent) {
  setObjectName("ntne_frmTrill");
  setWindowTitle("Trill");
  const NoteSlot& slot = CursorSlot(doc);
  auto* l = new QVBoxLayout(this);
  prompt(this, l, "Please set up the desired trill effect, then press OK.");
  auto* form = new QFormLayout;
  valBox1 = new QSpinBox(this);
  valBox1->setObjectName("valBox1");
  valBox1->setRange(0, 30);
  // A trill goes most often to the note a whole tone up.
  valBox1->setValue(slot.HasTrill ? slot.Trill.TrillFret : std::min(fretOf(doc) + 2, 30));
  form->addRow("Trill Fret:", valBox1);
  l->addLayout(form);
  optTrillPeriod = radios(this, l, "Period:", "optTrillPeriod", {"Thirty-Second Note", "Sixteenth Note", "Eighth Note"},
                          slot.HasTrill ? slot.Trill.Period : 1);
  std::function<void()> sound;
  if (play) sound = [this, play, &doc] { play(WithTrill(doc, trill())); };
  l->addWidget(buttons(this, true, sound));
}

TrillInfo TrillDialog::trill() const {
  return {static_cast<int16_t>(valBox1->value()), std::max(0, optTrillPeriod->checkedId())};
}

// ---- grace note ----

GraceNoteDialog::GraceNoteDialog(const Document& doc, PlayEdited play, QWidget* parent) : QDialog(parent) {
  setObjectName("ntne_frmGraceNote");
  setWindowTitle("Grace Note");
  const NoteSlot& slot = CursorSlot(doc);
  const GraceInfo g = slot.HasGrace ? *slot.Grace : GraceInfo{std::to_string(std::max(0, fretOf(doc) - 2)), 1, 0, kGraceHammer};
  auto* l = new QVBoxLayout(this);
  prompt(this, l, "Please set up the desired grace note, then press OK.");
  auto* top = new QHBoxLayout;
  auto* form = new QFormLayout;
  valBox1 = new QSpinBox(this);
  valBox1->setObjectName("valBox1");
  valBox1->setRange(0, 30);
  int fret = 0;
  valBox1->setValue(FretNumber(g.Fret, fret) ? fret : 0);
  form->addRow("Fret:", valBox1);
  top->addLayout(form);
  chkDeadNote = new QCheckBox("Dead Note", this);
  chkDeadNote->setObjectName("chkDeadNote");
  chkDeadNote->setChecked(g.Fret == "x");
  connect(chkDeadNote, &QCheckBox::toggled, valBox1, &QWidget::setDisabled);
  valBox1->setDisabled(chkDeadNote->isChecked());
  top->addWidget(chkDeadNote);
  top->addStretch();
  l->addLayout(top);
  auto* groups = new QHBoxLayout;
  optDuration = radios(this, groups, "Length", "optDuration",
                       {"Sixteenth Note", "Thirty-Second Note", "Sixty-Fourth Note"}, g.Length);
  optTransition = radios(this, groups, "Transition", "optTransition", {"None", "Slide", "Bend", "Hammer on / Pull off"},
                         g.Transition);
  int dynamic = 3;
  for (int i = 0; i < 8; ++i)
    if (kDynamics[i] == g.Volume) dynamic = i;
  optDynamic = radios(this, groups, "Dynamic", "optDynamic", {std::begin(kDynamicNames), std::end(kDynamicNames)}, dynamic);
  l->addLayout(groups);
  std::function<void()> sound;
  if (play) sound = [this, play, &doc] { play(WithGrace(doc, grace())); };
  l->addWidget(buttons(this, true, sound));
}

GraceInfo GraceNoteDialog::grace() const {
  GraceInfo g;
  g.Fret = chkDeadNote->isChecked() ? "x" : std::to_string(valBox1->value());
  g.Length = std::max(0, optDuration->checkedId());
  g.Volume = kDynamics[std::clamp(optDynamic->checkedId(), 0, 7)];
  g.Transition = std::max(0, optTransition->checkedId());
  return g;
}

// ---- text ----

TextDialog::TextDialog(const Document& doc, QWidget* parent) : QDialog(parent) {
  setObjectName("ntne_frmText");
  setWindowTitle("Text");
  auto* l = new QVBoxLayout(this);
  prompt(this, l, "Please enter the text you want to add");
  Text1 = new QLineEdit(QString::fromStdString(CursorBeat(doc).Text), this);
  Text1->setObjectName("Text1");
  Text1->setMinimumWidth(300);
  l->addWidget(Text1);
  l->addWidget(buttons(this, false, {}));
}

std::string TextDialog::text() const { return Text1->text().toStdString(); }

// ---- the commands behind the menu items ----

namespace {

bool fretUnderCursor(const EditContext& ctx) {
  try {
    return CursorSlot(ctx.doc).hasNote() && CursorSlot(ctx.doc).Fret != "x";
  } catch (const ScoreError&) {
    return false;
  }
}

}  // namespace

void mnuNoteEffectsBend_Click(QWidget* parent, EditContext& ctx) {
  if (!fretUnderCursor(ctx)) return;
  BendDialog d(ctx.doc, playHook(ctx), parent);
  const int r = d.exec();
  if (r == kEffectApply) ApplyBend(ctx, d.bend());
  if (r == kEffectClear) ClearBend(ctx);
}

void mnuChordTechniqueTremBar_Click(QWidget* parent, EditContext& ctx) {
  try {
    if (CursorBeat(ctx.doc).isRest()) return;
  } catch (const ScoreError&) {
    return;
  }
  TremoloDialog d(ctx.doc, playHook(ctx), parent);
  const int r = d.exec();
  if (r == kEffectApply) ApplyTremoloBar(ctx, d.tremoloBar());
  if (r == kEffectClear) ClearTremoloBar(ctx);
}

void mnuNoteEffectsTrill_Click(QWidget* parent, EditContext& ctx) {
  if (!fretUnderCursor(ctx)) return;
  TrillDialog d(ctx.doc, playHook(ctx), parent);
  const int r = d.exec();
  if (r == kEffectApply) ApplyTrill(ctx, d.trill());
  if (r == kEffectClear) ClearTrill(ctx);
}

void mnuNoteEffectsGrace_Click(QWidget* parent, EditContext& ctx) {
  if (!fretUnderCursor(ctx)) return;
  GraceNoteDialog d(ctx.doc, playHook(ctx), parent);
  const int r = d.exec();
  if (r == kEffectApply) ApplyGrace(ctx, d.grace());
  if (r == kEffectClear) ClearGrace(ctx);
}

void mnuChordText_Click(QWidget* parent, EditContext& ctx) {
  try {
    CursorBeat(ctx.doc);
  } catch (const ScoreError&) {
    return;
  }
  TextDialog d(ctx.doc, parent);
  if (d.exec() == kEffectApply) ApplyText(ctx, d.text());
}

}  // namespace plectaro
