// ntne_frmMIDIImport: the tracks of a MIDI file to choose from, and how to import them.
#pragma once

#include <QDialog>

#include "exchange/midi_import.h"

class QCheckBox;
class QLabel;
class QListWidget;

namespace plectaro {

class MidiImportDialog : public QDialog {
  Q_OBJECT
 public:
  MidiImportDialog(const MidiImportSource& source, const QString& caption, QWidget* parent = nullptr);

  // The tracks ticked in the list and the three boxes; the progress goes to lblProgress.
  MidiImportOptions options();
  QListWidget* TrackList() const { return trackList_; }
  QCheckBox* Check1() const { return ties_; }
  QCheckBox* Check2() const { return reverb_; }
  QCheckBox* Check3() const { return quantize_; }
  QLabel* lblProgress() const { return progress_; }

 private:
  QListWidget* trackList_;
  QCheckBox* ties_;
  QCheckBox* reverb_;
  QCheckBox* quantize_;
  QLabel* progress_;
};

}  // namespace plectaro
