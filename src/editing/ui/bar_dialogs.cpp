#include "editing/ui/bar_dialogs.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <optional>

#include "editing/ui/dialog_parts.h"
#include "rendering/notation.h"

namespace plectaro {

namespace {

QStringList barNames(const Score& s) {
  QStringList names;
  for (size_t b = 0; b < s.BarInfos.size(); ++b) names << QString("Bar %1").arg(b + 1);
  return names;
}

// Shows the sharps or flats of a key on a small treble staff, at the places the page uses.
class KeyPreview : public QWidget {
 public:
  explicit KeyPreview(QWidget* parent) : QWidget(parent) {
    setObjectName("Picture1");
    setMinimumSize(180, 90);
  }
  void setKey(int32_t key) {
    key_ = key;
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter p(this);
    p.fillRect(rect(), Qt::white);
    p.setPen(Qt::black);
    const int top = 20;
    const int gap = 10;  // between two staff lines
    for (int i = 0; i < 5; ++i) p.drawLine(8, top + i * gap, width() - 8, top + i * gap);
    const int count = std::abs(KeyAccidentalCount(key_));
    const bool flats = KeyUsesFlats(key_);
    // Steps down from the top line (half a line gap each) of F C G D A E B and B E A D G C F.
    static const int sharpSteps[7] = {0, 3, -1, 2, 5, 1, 4};
    static const int flatSteps[7] = {4, 1, 5, 2, 6, 3, 7};
    QFont f = p.font();
    f.setPointSize(16);
    p.setFont(f);
    for (int i = 0; i < count && i < 7; ++i) {
      const int y = top + (flats ? flatSteps[i] : sharpSteps[i]) * gap / 2;
      p.drawText(QRect(20 + i * 15, y - 12, 15, 24), Qt::AlignCenter,
                 flats ? QString::fromUtf8("\u266D") : QString::fromUtf8("\u266F"));
    }
  }

 private:
  int32_t key_ = 0;
};

}  // namespace

class RangeOptions : public QGroupBox {
 public:
  RangeOptions(QWidget* parent, const std::optional<SelectedRange>& selection) : QGroupBox(parent) {
    auto* l = new QVBoxLayout(this);
    const char* texts[3] = {"Apply to this bar only", "Apply to all bars from this one", "Apply to all bars"};
    for (int i = 0; i < 3; ++i) {
      auto* r = new QRadioButton(texts[i], this);
      r->setObjectName(QString("optApply%1").arg(i));
      group.addButton(r, i);
      l->addWidget(r);
    }
    group.button(0)->setChecked(true);
    if (selection) {
      const SelectedRange whole{selection->firstBar, selection->lastBar, 0, 0, true, {}};
      auto* r = new QRadioButton("Apply to the selection (" + selectionText(whole) + ")", this);
      r->setObjectName("optApplySelection");
      group.addButton(r, static_cast<int>(ApplyRange::Selection));
      l->addWidget(r);
      r->setChecked(true);
    }
  }
  ApplyRange range() const { return static_cast<ApplyRange>(std::max(group.checkedId(), 0)); }
  QButtonGroup group;
};

// ---- time signature ----

BarTimeSigDialog::BarTimeSigDialog(const Document& doc, QWidget* parent, const std::optional<SelectedRange>& selection)
    : QDialog(parent) {
  setObjectName("ntne_frmBarTimeSig");
  setWindowTitle("Time Signature");
  auto* l = new QVBoxLayout(this);
  l->addWidget(new QLabel("Please specify the desired time signature.", this));
  auto* row = new QHBoxLayout;
  Combo1 = new QComboBox(this);
  Combo1->setObjectName("Combo1");
  for (int n = 1; n <= 32; ++n) Combo1->addItem(QString::number(n), n);
  Combo2 = new QComboBox(this);
  Combo2->setObjectName("Combo2");
  for (int d : {1, 2, 4, 8, 16, 32}) Combo2->addItem(QString::number(d), d);
  row->addWidget(Combo1);
  row->addWidget(new QLabel("/", this));
  row->addWidget(Combo2);
  row->addStretch();
  l->addLayout(row);
  const BarInfo& bi = doc.score.barInfo(doc.CursorBar);
  const int ni = Combo1->findData(bi.TimeSigNumerator);
  const int di = Combo2->findData(bi.TimeSigDenominator);
  Combo1->setCurrentIndex(ni < 0 ? 3 : ni);
  Combo2->setCurrentIndex(di < 0 ? 2 : di);
  range_ = new RangeOptions(this, selection);
  l->addWidget(range_);
  l->addWidget(okCancel(this));
}

int BarTimeSigDialog::numerator() const { return Combo1->currentData().toInt(); }
int BarTimeSigDialog::denominator() const { return Combo2->currentData().toInt(); }
ApplyRange BarTimeSigDialog::range() const { return range_->range(); }

// ---- key signature ----

BarKeySigDialog::BarKeySigDialog(const Document& doc, QWidget* parent, const std::optional<SelectedRange>& selection)
    : QDialog(parent) {
  setObjectName("ntne_frmBarKeySig");
  setWindowTitle("Key Signature");
  auto* l = new QVBoxLayout(this);
  auto* grid = new QHBoxLayout;
  auto* left = new QVBoxLayout;
  optMajor = new QRadioButton("Major", this);
  optMajor->setObjectName("optMajor");
  optMinor = new QRadioButton("Minor", this);
  optMinor->setObjectName("optMinor");
  cmbMajor = new QComboBox(this);
  cmbMajor->setObjectName("cmbMajor");
  cmbMinor = new QComboBox(this);
  cmbMinor->setObjectName("cmbMinor");
  for (int i = 0; i < 15; ++i) {
    cmbMajor->addItem(kMajorKeyNames[i]);
    cmbMinor->addItem(kMinorKeyNames[i]);
  }
  left->addWidget(optMajor);
  left->addWidget(cmbMajor);
  left->addWidget(optMinor);
  left->addWidget(cmbMinor);
  grid->addLayout(left);
  auto* preview = new KeyPreview(this);
  Picture1 = preview;
  grid->addWidget(preview, 1);
  l->addLayout(grid);
  range_ = new RangeOptions(this, selection);
  l->addWidget(range_);
  l->addWidget(okCancel(this));

  const TrackBar& tb = doc.score.bar(doc.CursorTrack, doc.CursorBar);
  const int index = KeyListIndexOfCode(tb.KeySignature);
  cmbMajor->setCurrentIndex(index);
  cmbMinor->setCurrentIndex(index);
  (tb.KeyMinor ? optMinor : optMajor)->setChecked(true);
  auto refresh = [this, preview] {
    cmbMajor->setEnabled(optMajor->isChecked());
    cmbMinor->setEnabled(optMinor->isChecked());
    preview->setKey(key());
  };
  connect(optMajor, &QRadioButton::toggled, this, refresh);
  connect(cmbMajor, &QComboBox::currentIndexChanged, this, refresh);
  connect(cmbMinor, &QComboBox::currentIndexChanged, this, refresh);
  refresh();
}

int32_t BarKeySigDialog::key() const {
  return KeyCodeOfListIndex((minor() ? cmbMinor : cmbMajor)->currentIndex());
}
bool BarKeySigDialog::minor() const { return optMinor->isChecked(); }
ApplyRange BarKeySigDialog::range() const { return range_->range(); }

// ---- lists ----

CheckList::CheckList(const QStringList& items, QWidget* parent) : QWidget(parent) {
  auto* l = new QVBoxLayout(this);
  l->setContentsMargins(0, 0, 0, 0);
  list = new QListWidget(this);
  for (const QString& s : items) {
    auto* it = new QListWidgetItem(s, list);
    it->setFlags(it->flags() | Qt::ItemIsUserCheckable);
    it->setCheckState(Qt::Unchecked);
  }
  auto* all = new QPushButton("Select All", this);
  all->setObjectName("cmdSelectAll");
  connect(all, &QPushButton::clicked, this, [this] {
    for (int i = 0; i < list->count(); ++i) list->item(i)->setCheckState(Qt::Checked);
  });
  l->addWidget(list);
  l->addWidget(all);
}

std::vector<int> CheckList::checked() const {
  std::vector<int> rows;
  for (int i = 0; i < list->count(); ++i)
    if (list->item(i)->checkState() == Qt::Checked) rows.push_back(i);
  return rows;
}

void CheckList::check(int row, bool on) {
  if (row >= 0 && row < list->count()) list->item(row)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
}

namespace {

// The tracks a list offers checked: the selection's, or the cursor's.
void checkSelectedTracks(CheckList* list, const EditContext& ctx) {
  if (auto sel = SelectionOf(ctx))
    for (int t : sel->tracks) list->check(t, true);
  else
    list->check(ctx.doc.CursorTrack, true);
}

// ntne_frmInsertBar and ntne_frmRemoveBar: which tracks. The cursor's track comes checked.
std::optional<std::vector<int>> askTracks(QWidget* parent, const EditContext& ctx, const char* name,
                                          const char* title, const QString& question) {
  const Document& doc = ctx.doc;
  QDialog d(parent);
  d.setObjectName(name);
  d.setWindowTitle(title);
  auto* l = new QVBoxLayout(&d);
  l->addWidget(new QLabel(question, &d));
  auto* tracks = new CheckList(trackNames(doc.score), &d);
  tracks->list->setObjectName("lstTracks");
  tracks->findChild<QPushButton*>("cmdSelectAll")->setText("All");
  checkSelectedTracks(tracks, ctx);
  l->addWidget(tracks);
  l->addWidget(okCancel(&d));
  if (d.exec() != QDialog::Accepted) return std::nullopt;
  return tracks->checked();
}

enum class ClipMode { Cut, Copy, Paste };

// ntne_frmCutCopyPaste: one form, three pages.
class CutCopyPasteDialog : public QDialog {
 public:
  CutCopyPasteDialog(const EditContext& ctx, ClipMode mode, QWidget* parent) : QDialog(parent) {
    const Document& doc = ctx.doc;
    // Whole bars selected come checked; otherwise the cursor's bar.
    const auto sel = SelectionOf(ctx);
    auto checkBars = [&](CheckList* list) {
      if (sel && sel->wholeBars)
        for (int b : sel->bars()) list->check(b, true);
      else
        list->check(doc.CursorBar, true);
    };
    setObjectName("ntne_frmCutCopyPaste");
    setWindowTitle("Cut, Copy and Paste");
    auto* l = new QVBoxLayout(this);
    auto* pages = new QStackedWidget(this);
    const QStringList tracks = trackNames(doc.score);
    const QStringList bars = barNames(doc.score);

    auto* picCut = new QWidget(pages);
    picCut->setObjectName("picCut");
    auto* cl = new QHBoxLayout(picCut);
    auto* cutTracksBox = new QVBoxLayout;
    cutTracksBox->addWidget(new QLabel("From Tracks:", picCut));
    cutTracks = new CheckList(tracks, picCut);
    checkSelectedTracks(cutTracks, ctx);
    cutTracksBox->addWidget(cutTracks);
    auto* cutBarsBox = new QVBoxLayout;
    cutBarsBox->addWidget(new QLabel("Cut Bars:", picCut));
    cutBars = new CheckList(bars, picCut);
    checkBars(cutBars);
    cutBarsBox->addWidget(cutBars);
    cl->addLayout(cutTracksBox);
    cl->addLayout(cutBarsBox);

    auto* picCopy = new QWidget(pages);
    picCopy->setObjectName("picCopy");
    auto* col = new QVBoxLayout(picCopy);
    col->addWidget(new QLabel("Which bars would you like to copy?", picCopy));
    copyBars = new CheckList(bars, picCopy);
    checkBars(copyBars);
    col->addWidget(copyBars);

    auto* picPaste = new QWidget(pages);
    picPaste->setObjectName("picPaste");
    auto* pl = new QVBoxLayout(picPaste);
    pl->addWidget(new QLabel("Which tracks would you like to paste on?", picPaste));
    pasteTracks = new CheckList(tracks, picPaste);
    checkSelectedTracks(pasteTracks, ctx);
    pl->addWidget(pasteTracks);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel("Pastings:", picPaste));
    txtNum = new QSpinBox(picPaste);
    txtNum->setObjectName("txtNum");
    txtNum->setRange(1, 999);
    row->addWidget(txtNum);
    row->addStretch();
    pl->addLayout(row);
    optAfter = new QRadioButton("Paste after the current bar", picPaste);
    optAfter->setObjectName("optAfter");
    optAfter->setChecked(true);
    auto* before = new QRadioButton("Paste before the current bar", picPaste);
    before->setObjectName("optBefore");
    pl->addWidget(optAfter);
    pl->addWidget(before);

    pages->addWidget(picCut);
    pages->addWidget(picCopy);
    pages->addWidget(picPaste);
    pages->setCurrentIndex(static_cast<int>(mode));
    // The form is as large as the page it shows, not as the largest of the three.
    for (int i = 0; i < pages->count(); ++i)
      if (i != pages->currentIndex()) pages->widget(i)->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    l->addWidget(pages);
    l->addWidget(okCancel(this));
  }
  CheckList* cutTracks = nullptr;
  CheckList* cutBars = nullptr;
  CheckList* copyBars = nullptr;
  CheckList* pasteTracks = nullptr;
  QSpinBox* txtNum = nullptr;
  QRadioButton* optAfter = nullptr;
};

// ntne_frmCoda: four steps, one bar each; "(none)" leaves a mark out.
class CodaDialog : public QDialog {
 public:
  CodaDialog(const Document& doc, QWidget* parent) : QDialog(parent) {
    setObjectName("ntne_frmCoda");
    setWindowTitle("Coda");
    auto* l = new QVBoxLayout(this);
    step = new QLabel(this);
    question = new QLabel(this);
    question->setWordWrap(true);
    cmbBar = new QComboBox(this);
    cmbBar->setObjectName("cmbBar");
    cmbBar->addItem("(none)", -1);
    for (size_t b = 0; b < doc.score.BarInfos.size(); ++b)
      cmbBar->addItem(QString("Bar %1").arg(b + 1), static_cast<int>(b));
    auto* explain = new QLabel(
        "When the DS Al Coda message is reached, the playback returns to the Sign.\n"
        "When the To Coda message is reached, the playback jumps to the Coda.", this);
    l->addWidget(step);
    l->addWidget(question);
    l->addWidget(cmbBar);
    l->addWidget(explain);
    auto* buttons = new QHBoxLayout;
    cmdPrev = new QPushButton("< Back", this);
    cmdPrev->setObjectName("cmdPrev");
    cmdNext = new QPushButton("Next >", this);
    cmdNext->setObjectName("cmdNext");
    auto* cancel = new QPushButton("Cancel", this);
    cancel->setObjectName("cmdCancel");
    buttons->addStretch();
    buttons->addWidget(cmdPrev);
    buttons->addWidget(cmdNext);
    buttons->addWidget(cancel);
    l->addLayout(buttons);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(cmdPrev, &QPushButton::clicked, this, [this] { go(-1); });
    connect(cmdNext, &QPushButton::clicked, this, [this] { go(+1); });
    answers.fill(-1);
    answers[0] = 0;
    answers[1] = answers[2] = answers[3] = static_cast<int>(doc.score.BarInfos.size()) - 1;
    show(0);
  }
  std::array<int, 4> answers{};

 private:
  void show(int i) {
    current = i;
    static const char* const questions[4] = {
        "On which bar would you like to place the sign? The sign will be placed at the start of the bar.",
        "On which bar would you like to place the DS Al Coda Message? This will be placed at the end of the bar.",
        "On which bar would you like to place the To Coda Message? This will be placed at the end of the bar.",
        "On which bar would you like to place the Coda? This will be placed at the start of the bar."};
    step->setText(QString("Step %1 of 4").arg(i + 1));
    question->setText(questions[i]);
    cmbBar->setCurrentIndex(std::max(cmbBar->findData(answers[static_cast<size_t>(i)]), 0));
    cmdPrev->setEnabled(i > 0);
    cmdNext->setText(i == 3 ? "Finish" : "Next >");
  }
  void go(int delta) {
    answers[static_cast<size_t>(current)] = cmbBar->currentData().toInt();
    if (current == 3 && delta > 0) {
      accept();
      return;
    }
    show(std::clamp(current + delta, 0, 3));
  }
  int current = 0;
  QLabel* step = nullptr;
  QLabel* question = nullptr;
  QComboBox* cmbBar = nullptr;
  QPushButton* cmdPrev = nullptr;
  QPushButton* cmdNext = nullptr;
};

}  // namespace

std::optional<int> AskRepeatCount(QWidget* parent) {
  QDialog d(parent);
  d.setObjectName("ntne_frmEndRepeat");
  d.setWindowTitle("Repeat Close");
  auto* l = new QVBoxLayout(&d);
  l->addWidget(new QLabel("How many times would you like the section to be repeated?", &d));
  auto* valBox1 = new QSpinBox(&d);
  valBox1->setObjectName("valBox1");
  valBox1->setRange(1, 99);
  valBox1->setValue(2);
  l->addWidget(valBox1);
  l->addWidget(okCancel(&d));
  if (d.exec() != QDialog::Accepted) return std::nullopt;
  return valBox1->value();
}

void mnuBarTimeSignature_Click(QWidget* parent, EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  BarTimeSigDialog d(ctx.doc, parent, SelectionOf(ctx));
  if (d.exec() == QDialog::Accepted) ApplyTimeSignature(ctx, d.numerator(), d.denominator(), d.range());
}

void mnuBarKeySignature_Click(QWidget* parent, EditContext& ctx) {
  if (ctx.doc.score.track(ctx.doc.CursorTrack).DrumTrack) {
    ctx.message("str_NoPercussionKeySigs");
    return;
  }
  if (!PasswordCorrect(ctx)) return;
  BarKeySigDialog d(ctx.doc, parent, SelectionOf(ctx));
  if (d.exec() == QDialog::Accepted) ApplyKeySignature(ctx, d.key(), d.minor(), d.range());
}

void mnuBarInsert_Click(QWidget* parent, EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  auto tracks = askTracks(parent, ctx, "ntne_frmInsertBar", "Insert a Bar",
                          "Which tracks would you like to insert a bar on?");
  if (tracks) InsertBar(ctx, *tracks);
}

void mnuRemoveBar_Click(QWidget* parent, EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  const auto sel = SelectionOf(ctx);
  const QString question = sel && sel->wholeBars
                               ? "Which tracks would you like to remove " + selectionText(*sel) + " from?"
                               : QString("Which tracks would you like to remove the bar from?");
  auto tracks = askTracks(parent, ctx, "ntne_frmRemoveBar", "Remove a Bar", question);
  if (tracks) RemoveBar(ctx, *tracks);
}

void mnuBarCut_Click(QWidget* parent, EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  CutCopyPasteDialog d(ctx, ClipMode::Cut, parent);
  if (d.exec() == QDialog::Accepted) CutBars(ctx, d.cutTracks->checked(), d.cutBars->checked());
}

void mnuBarCopy_Click(QWidget* parent, EditContext& ctx) {
  CutCopyPasteDialog d(ctx, ClipMode::Copy, parent);
  if (d.exec() == QDialog::Accepted) CopyBars(ctx, d.copyBars->checked());
}

void mnuBarPaste_Click(QWidget* parent, EditContext& ctx) {
  if (ctx.clipboard.empty()) {
    ctx.message("str_CopySomethingFirst", MessageIcon::Warning);
    return;
  }
  if (!PasswordCorrect(ctx)) return;
  CutCopyPasteDialog d(ctx, ClipMode::Paste, parent);
  if (d.exec() == QDialog::Accepted)
    PasteBars(ctx, d.pasteTracks->checked(), d.txtNum->value(), d.optAfter->isChecked());
}

void mnuBarCoda_Click(QWidget* parent, EditContext& ctx) {
  if (!PasswordCorrect(ctx)) return;
  CodaDialog d(ctx.doc, parent);
  if (d.exec() == QDialog::Accepted)
    SetCoda(ctx, d.answers[0], d.answers[1], d.answers[2], d.answers[3]);
}

}  // namespace plectaro
