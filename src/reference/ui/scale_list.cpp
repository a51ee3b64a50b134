#include "reference/ui/scale_list.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include "reference/note_names.h"
#include "score/value_text.h"

namespace plectaro {

namespace {

constexpr int kFretWidth = 34;
constexpr int kStringGap = 16;
constexpr int kNeckLeft = 36;  // room for the string names
constexpr int kNeckTop = 14;

// The neck: strings across (string 1 at the top, as tab shows them), frets down the length,
// the usual inlays, and a dot on every place of the scale; the key's own note filled dark.
class NeckPicture : public QWidget {
 public:
  NeckPicture(const std::vector<int>& strings, const std::vector<NeckDot>& dots, QWidget* parent)
      : QWidget(parent), strings_(strings), dots_(dots) {
    setObjectName("picNeck");
    setMinimumSize(sizeHint());
  }
  QSize sizeHint() const override {
    return {kNeckLeft + (ScaleListPanel::kNeckFrets + 1) * kFretWidth + 8, kNeckTop + 6 * kStringGap + 24};
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter p(this);
    p.fillRect(rect(), Qt::white);
    p.setRenderHint(QPainter::Antialiasing);
    const int n = static_cast<int>(strings_.size());
    if (n == 0) return;
    const int bottom = kNeckTop + (n - 1) * kStringGap;
    const int right = kNeckLeft + (ScaleListPanel::kNeckFrets + 1) * kFretWidth;
    // Fret 0 is the open string, left of the nut; fret f sits between fret wires f-1 and f.
    auto fretX = [](int f) { return kNeckLeft + f * kFretWidth + kFretWidth / 2; };
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(225, 225, 225));
    for (int f : {3, 5, 7, 9, 15, 17, 19, 21}) p.drawEllipse(QPoint(fretX(f), (kNeckTop + bottom) / 2), 4, 4);
    for (int f : {12, 24}) {
      p.drawEllipse(QPoint(fretX(f), kNeckTop + (bottom - kNeckTop) / 4), 4, 4);
      p.drawEllipse(QPoint(fretX(f), bottom - (bottom - kNeckTop) / 4), 4, 4);
    }
    for (int f = 1; f <= ScaleListPanel::kNeckFrets + 1; ++f) {
      const int x = kNeckLeft + f * kFretWidth;
      p.setPen(QPen(Qt::darkGray, f == 1 ? 4 : 1));
      p.drawLine(x, kNeckTop, x, bottom);
    }
    p.setPen(Qt::black);
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    p.setFont(small);
    for (int s = 0; s < n; ++s) {
      const int y = kNeckTop + s * kStringGap;
      p.setPen(QPen(Qt::black, 1));
      p.drawLine(kNeckLeft + kFretWidth, y, right, y);
      const std::string name = PitchToNoteName(s + 1, strings_[static_cast<size_t>(s)]);
      p.drawText(QRect(0, y - 8, kNeckLeft - 4, 16), Qt::AlignRight | Qt::AlignVCenter, QString::fromStdString(name));
    }
    for (int f : {3, 5, 7, 9, 12, 15, 17, 19, 21, 24})
      p.drawText(QRect(fretX(f) - 12, bottom + 6, 24, 14), Qt::AlignCenter, QString::number(f));
    for (const NeckDot& d : dots_) {
      const QPoint at(fretX(d.fret), kNeckTop + d.string * kStringGap);
      p.setPen(QPen(Qt::black, 1));
      p.setBrush(d.root ? QColor(40, 40, 40) : QColor(255, 255, 255));
      p.drawEllipse(at, 6, 6);
    }
  }

 private:
  const std::vector<int>& strings_;
  const std::vector<NeckDot>& dots_;
};

}  // namespace

ScaleListPanel::ScaleListPanel(ReferenceEnv& env, std::function<std::vector<int>()> openPitches, QWidget* parent)
    : QWidget(parent), env_(env), openPitches_(std::move(openPitches)) {
  setObjectName("picScaleList");
  setWindowTitle("Scale List");
  cmbScaleList_ = new QComboBox(this);
  cmbScaleList_->setObjectName("cmbScaleList");
  cmbScaleList_->setMinimumContentsLength(18);
  cmbKey_ = new QComboBox(this);
  cmbKey_->setObjectName("cmbKey");
  for (const char* k : kScaleKeys) cmbKey_->addItem(k);
  lblStatus_ = new QLabel(this);
  lblStatus_->setObjectName("lblStatus");
  picNeck_ = new NeckPicture(strings_, dots_, this);
  auto* row = new QHBoxLayout;
  row->addWidget(new QLabel(env_.caption("lblScale", "Scale:"), this));
  row->addWidget(cmbScaleList_);
  row->addWidget(new QLabel(env_.caption("lblKey", "Key:"), this));
  row->addWidget(cmbKey_);
  row->addWidget(lblStatus_, 1);
  auto* box = new QVBoxLayout(this);
  box->addLayout(row);
  box->addWidget(picNeck_);
  box->addStretch();

  // The last choice comes back at the next start.
  const int keyItem = env_.settings ? ParseI16(env_.settings->GetSetting("Scales", "ListKey", "7")) : 7;
  cmbKey_->setCurrentIndex(std::clamp(keyItem, 0, 11));
  if (env_.settings) cmbScaleList_->addItem(QString::fromStdString(env_.settings->GetSetting("Scales", "ListScale", "")));
  PopulateScaleList();
  connect(cmbScaleList_, &QComboBox::currentIndexChanged, this, [this] { loadChosen(); });
  connect(cmbKey_, &QComboBox::currentIndexChanged, this, [this](int item) {
    if (env_.settings) env_.settings->SaveSetting("Scales", "ListKey", std::to_string(item));
    refresh();
  });
}

void ScaleListPanel::PopulateScaleList() {
  const QString chosen = cmbScaleList_->currentText();
  CreateAllScales(env_.data);
  const QSignalBlocker quiet(cmbScaleList_);
  cmbScaleList_->clear();
  for (const std::string& n : ListScaleNames(env_.data)) cmbScaleList_->addItem(QString::fromStdString(n));
  const int at = cmbScaleList_->findText(chosen);
  cmbScaleList_->setCurrentIndex(at >= 0 ? at : 0);
  loadChosen();
}

QStringList ScaleListPanel::scales() const {
  QStringList names;
  for (int i = 0; i < cmbScaleList_->count(); ++i) names << cmbScaleList_->itemText(i);
  return names;
}

void ScaleListPanel::choose(const QString& name, int keyItem) {
  cmbKey_->setCurrentIndex(std::clamp(keyItem, 0, 11));
  cmbScaleList_->setCurrentIndex(cmbScaleList_->findText(name));
}

void ScaleListPanel::loadChosen() {
  const std::string name = cmbScaleList_->currentText().toStdString();
  loaded_ = false;
  lblStatus_->clear();
  if (!name.empty()) {
    try {
      scale_ = LoadScaleFile(env_.data, name);
      loaded_ = true;
      if (env_.settings) env_.settings->SaveSetting("Scales", "ListScale", name);
    } catch (const LibraryError& e) {
      // A damaged file is named, never fatal; the neck shows nothing for it.
      lblStatus_->setText(QString::fromStdString(e.what()));
    }
  }
  refresh();
}

void ScaleListPanel::refresh() {
  strings_ = openPitches_ ? openPitches_() : std::vector<int>(kLibraryTuning.begin(), kLibraryTuning.begin() + 6);
  dots_ = loaded_ ? ScaleOnNeck(scale_, ScaleKeyOffset(cmbKey_->currentIndex()), strings_, kNeckFrets)
                  : std::vector<NeckDot>{};
  picNeck_->update();
}

}  // namespace plectaro
