#include "editing/ui/track_menus.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QMenu>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

#include "editing/operations.h"
#include "editing/track_commands.h"
#include "editing/ui/menu_commands.h"
#include "editing/ui/track_dialogs.h"
#include "playback/midi_out.h"

namespace plectaro {

// ---- mix table ----

MixTable::MixTable(EditContext& ctx, QWidget* parent) : QDialog(parent), ctx_(ctx) {
  setObjectName("frmMixTable");
  setWindowTitle("Mix Table");
  setModal(false);
  grdMix = new QTableWidget(this);
  grdMix->setObjectName("grdMix");
  grdMix->setColumnCount(kColumns);
  grdMix->setHorizontalHeaderLabels({"Track", "Instrument", "Volume", "Channel", "Mute", "Solo"});
  grdMix->verticalHeader()->setVisible(false);
  grdMix->horizontalHeader()->setSectionResizeMode(kInstrument, QHeaderView::Stretch);
  auto* l = new QVBoxLayout(this);
  l->addWidget(grdMix);
  resize(640, 240);
}

std::vector<bool> MixTable::silenced() const {
  const size_t n = ctx_.doc.score.Tracks.size();
  const bool anySolo = std::find(soloed_.begin(), soloed_.end(), true) != soloed_.end();
  std::vector<bool> out(n, false);
  for (size_t t = 0; t < n; ++t) {
    const bool muted = t < muted_.size() && muted_[t];
    const bool solo = t < soloed_.size() && soloed_[t];
    out[t] = muted || (anySolo && !solo);
  }
  return out;
}

void MixTable::changed() {
  if (onMixChanged) onMixChanged(silenced());
}

void MixTable::rebuild() {
  const Score& s = ctx_.doc.score;
  const int n = static_cast<int>(s.Tracks.size());
  muted_.resize(static_cast<size_t>(n), false);
  soloed_.resize(static_cast<size_t>(n), false);
  grdMix->setRowCount(n);
  for (int t = 0; t < n; ++t) {
    auto* name = new QTableWidgetItem;
    name->setFlags(Qt::ItemIsEnabled);
    grdMix->setItem(t, kName, name);

    auto* instrument = new QComboBox(grdMix);
    for (size_t i = 0; i < kInstrumentNames.size(); ++i) instrument->addItem(kInstrumentNames[i]);
    connect(instrument, &QComboBox::currentIndexChanged, this, [this, t](int k) {
      if (filling_ || k < 0) return;
      SetTrackInstrument(ctx_, t, k, kInstrumentNames[static_cast<size_t>(k)]);
      changed();
    });
    grdMix->setCellWidget(t, kInstrument, instrument);

    auto* volume = new QSpinBox(grdMix);
    volume->setRange(0, 100);
    connect(volume, &QSpinBox::valueChanged, this, [this, t](int v) {
      if (filling_) return;
      SetTrackVolume(ctx_, t, v);
      changed();
    });
    grdMix->setCellWidget(t, kVolume, volume);

    // Shown 1 to 16, as in the track's properties.
    auto* channel = new QSpinBox(grdMix);
    channel->setRange(1, 16);
    connect(channel, &QSpinBox::valueChanged, this, [this, t](int c) {
      if (filling_) return;
      SetTrackChannel(ctx_, t, c - 1);
      changed();
    });
    grdMix->setCellWidget(t, kChannel, channel);

    for (int col : {kMute, kSolo}) {
      auto* box = new QCheckBox(grdMix);
      box->setObjectName(QString(col == kMute ? "chkMute%1" : "chkSolo%1").arg(t));
      connect(box, &QCheckBox::toggled, this, [this, t, col](bool on) {
        if (filling_) return;
        (col == kMute ? muted_ : soloed_)[static_cast<size_t>(t)] = on;
        changed();
      });
      grdMix->setCellWidget(t, col, box);
    }
  }
}

void MixTable::refresh() {
  const Score& s = ctx_.doc.score;
  if (grdMix->rowCount() != static_cast<int>(s.Tracks.size())) rebuild();
  filling_ = true;
  for (int t = 0; t < grdMix->rowCount(); ++t) {
    const Track& tr = s.Tracks[static_cast<size_t>(t)];
    grdMix->item(t, kName)->setText(QString::fromStdString(tr.Name));
    auto* instrument = static_cast<QComboBox*>(grdMix->cellWidget(t, kInstrument));
    // A drum track plays the drum kit whatever its program says, so it names no instrument.
    instrument->setPlaceholderText("Drums");
    instrument->setCurrentIndex(tr.DrumTrack ? -1 : std::clamp<int>(tr.Instrument, 0, 127));
    instrument->setEnabled(!tr.DrumTrack);
    static_cast<QSpinBox*>(grdMix->cellWidget(t, kVolume))->setValue(tr.Volume);
    auto* channel = static_cast<QSpinBox*>(grdMix->cellWidget(t, kChannel));
    channel->setValue(tr.Channel + 1);
    channel->setEnabled(!tr.DrumTrack);
    static_cast<QCheckBox*>(grdMix->cellWidget(t, kMute))->setChecked(muted_[static_cast<size_t>(t)]);
    static_cast<QCheckBox*>(grdMix->cellWidget(t, kSolo))->setChecked(soloed_[static_cast<size_t>(t)]);
  }
  filling_ = false;
}

// ---- menus ----

TrackMenus::TrackMenus(QWidget* window, EditContext& ctx, std::filesystem::path dataFolder)
    : QObject(window), window_(window), ctx_(ctx), dataFolder_(std::move(dataFolder)) {
  mix_ = new MixTable(ctx, window);
  mix_->onMixChanged = [this](const std::vector<bool>& silenced) {
    if (onMixChanged) onMixChanged(silenced);
  };
}

void TrackMenus::refresh() {
  fillGoTos();
  if (mix_->isVisible()) mix_->refresh();
}

void TrackMenus::fillGoTos() {
  auto* menu = window_->findChild<QMenu*>("mnuGoGoTos");
  if (!menu) return;
  const std::vector<GotoPoint> points = GotoPoints(ctx_.doc.score);
  std::vector<std::string> names;
  for (const GotoPoint& p : points) names.push_back(p.name);
  if (pointsShown_ && names == shownPoints_) return;
  pointsShown_ = true;
  shownPoints_ = names;
  menu->clear();
  if (names.empty()) {
    QAction* none = menu->addAction(QString::fromStdString(ctx_.text("str_NoPoints")));
    none->setObjectName("mnuGoGoTos0");
    none->setEnabled(false);
    return;
  }
  for (size_t i = 0; i < names.size(); ++i) {
    QAction* a = menu->addAction(QString::fromStdString(names[i]));
    a->setObjectName(QString("mnuGoGoTos%1").arg(i));
    const std::string name = names[i];
    connect(a, &QAction::triggered, this, [this, name] { GoToPoint(ctx_, name); });
  }
}

TrackMenus* ConnectTrackMenus(const std::function<QAction*(const QString& name)>& find, QWidget* window,
                              EditContext& ctx, const std::filesystem::path& dataFolder) {
  auto* menus = new TrackMenus(window, ctx, dataFolder);
  EditContext* c = &ctx;
  MixTable* mix = menus->mixTable();
  ConnectMenuCommands(find, {
      {"mnuTrackAdd", [window, c, dataFolder] { mnuTrackAdd_Click(window, *c, dataFolder); }},
      {"mnuTrackDelete", [c] { DeleteTrack(*c); }},
      {"mnuTrackProperties", [window, c, dataFolder] { mnuTrackProperties_Click(window, *c, dataFolder); }},
      {"mnuOperationsCheckBar", [c] { mnuOperationsCheckBar_Click(*c); }},
      {"mnuFixThisBar", [c] { mnuFixThisBar_Click(*c); }},
      {"mnuFixAllBars", [c] { mnuFixAllBars_Click(*c); }},
      {"mnuOperationsRemoveRests", [c] { mnuOperationsRemoveRests_Click(*c); }},
      {"mnuOperationsTranspose", [window, c] { mnuOperationsTranspose_Click(window, *c); }},
      {"mnuOperationsEditLines", [window, c] { mnuOperationsEditLines_Click(window, *c); }},
      {"mnuGoAddGotoPoint", [window, c] { mnuGoAddGotoPoint_Click(window, *c); }},
      {"mnuGoShowPoints", [window, c] { mnuGoShowPoints_Click(window, *c); }},
      {"mnuViewMixTable", [mix] {
         mix->refresh();
         mix->show();
         mix->raise();
       }},
  });
  menus->refresh();
  return menus;
}

}  // namespace plectaro
