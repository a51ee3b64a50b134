// The Bar menu dialogs: what OK carries into the document, and that Cancel changes nothing.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTableWidget>
#include <QComboBox>
#include <QDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <random>

#include <QDockWidget>
#include <QMainWindow>
#include <QMouseEvent>

#include "editing/ui/bar_dialogs.h"
#include "editing/ui/find_dialog.h"
#include "editing/ui/practice_panels.h"
#include "editing/ui/track_dialogs.h"
#include "editing/ui/track_menus.h"
#include "reference/tunings.h"
#include "score/prompter.h"

namespace plectaro {
namespace {

int argc = 1;
char arg0[] = "editing_ui_tests";
char* argv[] = {arg0, nullptr};
// Never destroyed: the pointing device a synthetic click brings up must not outlive it at exit.
QApplication& app() {
  static QApplication* a = new QApplication(argc, argv);
  return *a;
}

// Answers the next modal dialog: `fill` sets its controls, then it is accepted or rejected.
void answerNextDialog(std::function<void(QDialog*)> fill, bool accept) {
  QTimer::singleShot(0, [fill, accept] {
    auto* d = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(d, nullptr);
    fill(d);
    if (accept) d->accept();
    else d->reject();
  });
}

struct Fixture {
  Document doc;
  ScriptedPrompter prompter;
  EditContext ctx{doc, prompter};
  Fixture() {
    app();
    doc.score.SetBarCount(3);
    doc.CursorBar = 1;
  }
};

TEST(Dialogs, TimeSignatureFromThisBarOn) {
  Fixture f;
  answerNextDialog([](QDialog* d) {
    EXPECT_EQ(d->objectName(), "ntne_frmBarTimeSig");
    d->findChild<QComboBox*>("Combo1")->setCurrentText("6");
    d->findChild<QComboBox*>("Combo2")->setCurrentText("8");
    d->findChild<QRadioButton*>("optApply1")->setChecked(true);
  }, true);
  mnuBarTimeSignature_Click(nullptr, f.ctx);
  const int want[4][2] = {{4, 4}, {6, 8}, {6, 8}, {6, 8}};
  for (int b = 0; b < 4; ++b) {
    EXPECT_EQ(f.doc.score.BarInfos[static_cast<size_t>(b)].TimeSigNumerator, want[b][0]);
    EXPECT_EQ(f.doc.score.BarInfos[static_cast<size_t>(b)].TimeSigDenominator, want[b][1]);
  }
}

TEST(Dialogs, KeySignatureMinorAndCancel) {
  Fixture f;
  answerNextDialog([](QDialog* d) {
    d->findChild<QRadioButton*>("optMinor")->setChecked(true);
    d->findChild<QComboBox*>("cmbMinor")->setCurrentText("Bm (##)");
  }, true);
  mnuBarKeySignature_Click(nullptr, f.ctx);
  EXPECT_EQ(f.doc.score.bar(0, 1).KeySignature, 2);
  EXPECT_TRUE(f.doc.score.bar(0, 1).KeyMinor);
  EXPECT_EQ(f.doc.score.bar(0, 2).KeySignature, 0);

  const Score before = f.doc.score;
  answerNextDialog([](QDialog* d) {
    d->findChild<QComboBox*>("cmbMinor")->setCurrentIndex(0);
    d->findChild<QRadioButton*>("optApply2")->setChecked(true);
  }, false);
  mnuBarKeySignature_Click(nullptr, f.ctx);
  EXPECT_TRUE(f.doc.score == before);
}

TEST(Dialogs, RepeatCountAsked) {
  Fixture f;
  f.ctx.hooks.askRepeatCount = [] { return AskRepeatCount(nullptr); };
  answerNextDialog([](QDialog* d) { d->findChild<QSpinBox*>("valBox1")->setValue(4); }, true);
  mnuBarRepeatClose_Click(f.ctx);
  EXPECT_EQ(f.doc.score.BarInfos[1].RepeatClose, 4);
}

TEST(Dialogs, CodaWizardWalksFourSteps) {
  Fixture f;
  answerNextDialog([](QDialog* d) {
    auto* bar = d->findChild<QComboBox*>("cmbBar");
    auto* next = d->findChild<QPushButton*>("cmdNext");
    for (int b : {1, 3, 2, 3}) {
      bar->setCurrentIndex(bar->findData(b));
      next->click();
    }
  }, true);  // Finish has accepted it already
  mnuBarCoda_Click(nullptr, f.ctx);
  const auto& bi = f.doc.score.BarInfos;
  EXPECT_TRUE(bi[1].Sign);
  EXPECT_TRUE(bi[3].DSAlCoda);
  EXPECT_TRUE(bi[2].ToCoda);
  EXPECT_TRUE(bi[3].Coda);
}

// A data folder of its own for the tunings library.
struct DataFolder {
  std::filesystem::path path = std::filesystem::temp_directory_path() /
                               ("plectaro-dialogs-" + std::to_string(std::random_device()()));
  ~DataFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

TEST(TrackDialogs, PropertiesTuneDropDWithACapoAndCancelKeepsAll) {
  Fixture f;
  DataFolder data;
  answerNextDialog([](QDialog* d) {
    auto* presets = d->findChild<QComboBox*>("cmbPresets");
    const int dropD = presets->findText("Dropped D");
    ASSERT_GT(dropD, 0);
    presets->setCurrentIndex(dropD);
    emit presets->activated(dropD);  // as a click on the entry does
    d->findChild<QSpinBox*>("txtCapo")->setValue(2);
    d->findChild<QListWidget*>("lstInstrument")->setCurrentRow(29);
  }, true);
  mnuTrackProperties_Click(nullptr, f.ctx, data.path);
  const Track& t = f.doc.score.Tracks[0];
  EXPECT_EQ(GetStringPitch(5) + t.Tuning.Offset[5], 38);
  EXPECT_EQ(t.Capo, 2);
  EXPECT_EQ(t.Instrument, 29);
  EXPECT_EQ(t.InstrumentName, "E. Guitar (OD)");

  const Score before = f.doc.score;
  answerNextDialog([](QDialog* d) { d->findChild<QLineEdit*>("txtName")->setText("Changed"); }, false);
  mnuTrackProperties_Click(nullptr, f.ctx, data.path);
  EXPECT_EQ(f.doc.score, before);
}

// A bass sits more than an octave under the guitar's strings, beyond the 25 names of the tuning
// boxes: Track Properties must keep its tuning when only the volume is changed, and Add a Track
// must propose a bass's tuning and staff when a bass is picked.
TEST(TrackDialogs, BassTuningSurvivesPropertiesAndIsProposedOnAdd) {
  Fixture f;
  DataFolder data;
  f.doc.score.Tracks[0].Tuning = BassTuning(4);
  answerNextDialog([](QDialog* d) { d->findChild<QSpinBox*>("txtVolume")->setValue(70); }, true);
  mnuTrackProperties_Click(nullptr, f.ctx, data.path);
  EXPECT_EQ(f.doc.score.Tracks[0].Tuning, BassTuning(4));
  EXPECT_EQ(f.doc.score.Tracks[0].Volume, 70);

  answerNextDialog([](QDialog* d) {
    d->findChild<QComboBox*>("cmbInstrument")->setCurrentIndex(33);
    d->findChild<QSpinBox*>("txtStrings")->setValue(5);
    EXPECT_EQ(d->findChild<QComboBox*>("cmbTuning4")->currentText(), "B0");
  }, true);
  mnuTrackAdd_Click(nullptr, f.ctx, data.path);
  ASSERT_EQ(f.doc.score.Tracks.size(), 2u);
  const Track& bass = f.doc.score.Tracks[1];
  EXPECT_EQ(bass.Tuning, BassTuning(5));
  EXPECT_TRUE(bass.BassStaff);
  EXPECT_FALSE(bass.TrebleStaff);
}

TEST(TrackDialogs, AddADrumTrackThenMuteAndSoloInTheMixTable) {
  Fixture f;
  DataFolder data;
  answerNextDialog([](QDialog* d) {
    d->findChild<QLineEdit*>("txtName")->setText("Drums");
    d->findChild<QCheckBox*>("chkDrum")->setChecked(true);
  }, true);
  mnuTrackAdd_Click(nullptr, f.ctx, data.path);
  ASSERT_EQ(f.doc.score.Tracks.size(), 2u);
  EXPECT_EQ(f.doc.score.Tracks[1].Channel, 9);
  EXPECT_EQ(f.doc.score.Tracks[1].Bars.size(), f.doc.score.BarInfos.size());
  EXPECT_EQ(f.doc.CursorTrack, 1);

  MixTable mix(f.ctx, nullptr);
  std::vector<bool> heard;
  mix.onMixChanged = [&](const std::vector<bool>& s) { heard = s; };
  mix.refresh();
  ASSERT_EQ(mix.grdMix->rowCount(), 2);
  static_cast<QSpinBox*>(mix.grdMix->cellWidget(0, MixTable::kVolume))->setValue(80);
  EXPECT_EQ(f.doc.score.Tracks[0].Volume, 80);
  mix.findChild<QCheckBox*>("chkSolo1")->setChecked(true);
  EXPECT_EQ(heard, (std::vector<bool>{true, false}));
  mix.findChild<QCheckBox*>("chkMute1")->setChecked(true);
  EXPECT_EQ(heard, (std::vector<bool>{true, true}));
  mix.findChild<QCheckBox*>("chkSolo1")->setChecked(false);
  EXPECT_EQ(heard, (std::vector<bool>{false, true}));
}

// A left click at a point of a widget, as the mouse gives it.
void press(QWidget* w, QPointF at) {
  QMouseEvent e(QEvent::MouseButtonPress, at, w->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(w, &e);
}

TEST(PracticePanels, ClicksOnTheFretboardAndPianoWriteAtTheCursor) {
  app();
  Document doc;
  ScriptedPrompter prompter;
  EditContext ctx(doc, prompter);
  MemorySettingsStore settings;
  QMainWindow window;
  PracticePanels panels(window, ctx, settings);
  window.resize(1000, 600);
  window.show();
  panels.fretboardDock()->show();
  panels.pianoDock()->show();
  QApplication::processEvents();
  for (const bool lefty : {false, true}) {
    panels.fretboard()->setLeftHanded(lefty);
    doc.score.noteMut(0, 0, 0, 4).Fret.clear();
    const FretboardGeometry g = panels.fretboard()->geometry();
    // Fret 3 of string 5.
    press(panels.fretboard(), QPointF(g.shown(g.fretCentreX(3)), g.stringY(4)));
    EXPECT_EQ(doc.score.note(0, 0, 0, 4).Fret, "3") << "left-handed " << lefty;
  }
  // Middle C on the piano goes to the B string, fret 1.
  const PianoGeometry p = panels.piano()->geometry();
  const PianoGeometry::Box c4 = p.keyBox(60);
  press(panels.piano(), QPointF(c4.x + c4.w / 2, p.height - 4));
  EXPECT_EQ(doc.score.note(0, 0, 0, 1).Fret, "1");
  // The View menu's left-handed switch is kept.
  QAction lefty;
  lefty.setObjectName("mnuViewLefty");
  panels.connectMenus([&](const QString& n) { return n == "mnuViewLefty" ? &lefty : nullptr; });
  lefty.setChecked(true);
  EXPECT_EQ(settings.GetSetting("VirtualInstruments", "LeftHanded"), "1");
}

TEST(FindReplaceWindow, ReplaceAllFromTheWindow) {
  app();
  Document doc;
  doc.score.beatMut(0, 0, 0).Text = "intro riff";
  ScriptedPrompter prompter;
  EditContext ctx(doc, prompter);
  FindReplaceDialog d(ctx);
  d.txtFind->setText("riff");
  d.txtReplace->setText("lick");
  d.findChild<QPushButton*>("cmdReplaceAll")->click();
  EXPECT_EQ(doc.score.beat(0, 0, 0).Text, "intro lick");
  ASSERT_EQ(prompter.asked().size(), 1u);
  EXPECT_EQ(prompter.asked()[0].text, "1 terms were replaced.");
}

}  // namespace
}  // namespace plectaro
