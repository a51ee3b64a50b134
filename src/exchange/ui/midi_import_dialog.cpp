#include "exchange/ui/midi_import_dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace plectaro {

MidiImportDialog::MidiImportDialog(const MidiImportSource& source, const QString& caption, QWidget* parent)
    : QDialog(parent) {
  setObjectName("ntne_frmMIDIImport");
  setWindowTitle(caption);
  auto* layout = new QVBoxLayout(this);
  auto* frame = new QGroupBox("Tracks to Import", this);
  auto* frameLayout = new QVBoxLayout(frame);
  trackList_ = new QListWidget(frame);
  trackList_->setObjectName("TrackList");
  for (size_t i = 0; i < source.TrackList.size(); ++i) {
    const int notes = i < source.NotesPerTrack.size() ? source.NotesPerTrack[i] : 0;
    auto* item = new QListWidgetItem(QString::fromStdString(source.TrackList[i]) +
                                     QString("  \u2014 %1 notes").arg(notes), trackList_);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    // Tracks without notes (tempo maps, lyrics) are offered but not ticked.
    item->setCheckState(notes > 0 ? Qt::Checked : Qt::Unchecked);
  }
  frameLayout->addWidget(trackList_);
  layout->addWidget(frame);
  ties_ = new QCheckBox("Add ties", this);
  ties_->setObjectName("Check1");
  ties_->setChecked(true);
  reverb_ = new QCheckBox("Reverb", this);
  reverb_->setObjectName("Check2");
  quantize_ = new QCheckBox("Quantize", this);
  quantize_->setObjectName("Check3");
  for (QCheckBox* box : {ties_, reverb_, quantize_}) layout->addWidget(box);
  progress_ = new QLabel(this);
  progress_->setObjectName("lblProgress");
  layout->addWidget(progress_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName("Command2");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  resize(420, 360);
}

MidiImportOptions MidiImportDialog::options() {
  MidiImportOptions o;
  for (int i = 0; i < trackList_->count(); ++i)
    if (trackList_->item(i)->checkState() == Qt::Checked) o.Tracks.push_back(i);
  o.AddTies = ties_->isChecked();
  o.Reverb = reverb_->isChecked();
  o.Quantize = quantize_->isChecked();
  QLabel* label = progress_;
  o.progress = [label](int percent) {
    label->setText(QString("%1%").arg(percent));
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  };
  return o;
}

}  // namespace plectaro
