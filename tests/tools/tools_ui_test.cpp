// The tool windows as a user works them: clicks in the drum grid, the generator's questions,
// the metronome's set list, a trainer round reaching the settings, the tuning library.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QListWidget>
#include <QMenuBar>
#include <QTest>
#include <filesystem>
#include <gtest/gtest.h>

#include "playback/recording_out.h"
#include "editing/edit_context.h"
#include "score/document.h"
#include "score/settings_store.h"
#include "shell/language.h"
#include "score/prompter.h"
#include "tools/ui/beat_generator_dialog.h"
#include "tools/ui/drum_machine_window.h"
#include "tools/ui/metronome_window.h"
#include "tools/ui/trainer_window.h"
#include "tools/ui/tuner_window.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

class ToolWindowsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "tools_ui_tests";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) new QApplication(argc, argv);
  }
  ToolWindowsTest() {
    std::string t = (fs::temp_directory_path() / "plectaro-toolsui-XXXXXX").string();
    dir_ = ::mkdtemp(t.data());
  }
  ~ToolWindowsTest() override { fs::remove_all(dir_); }

  fs::path dir_;
  RecordingMidiOut midi;
  MemorySettingsStore settings;
  Messages messages;
  ScriptedPrompter prompter;
  ToolEnv env{midi, settings, messages, prompter, dir_, dir_ / "CurrentLanguage.txt", 0, {}};
};

QPoint Cell(int step, int row) {
  return {kDrumNameWidth + step * kDrumStepWidth + kDrumStepWidth / 2, kDrumHeaderHeight + row * kDrumRowHeight + kDrumRowHeight / 2};
}

TEST_F(ToolWindowsTest, DrumGridClicksDragsAndRangeEdits) {
  DrumMachineWindow w(env);
  w.show();
  auto* grid = w.findChild<DrumGrid*>("picDocument");
  ASSERT_TRUE(grid);
  QTest::mouseClick(grid, Qt::LeftButton, {}, Cell(2, 15));
  EXPECT_TRUE(w.machine().pattern.cell(2, 15));
  ASSERT_FALSE(midi.messages.empty());
  EXPECT_EQ(midi.messages.back(), (MidiMessage{0, 0x99, 35, 127}));  // the bass drum sounds
  // A drag paints the value of the first cell along the row.
  QTest::mousePress(grid, Qt::LeftButton, {}, Cell(4, 11));
  for (int s = 5; s <= 7; ++s) QTest::mouseMove(grid, Cell(s, 11));
  QTest::mouseRelease(grid, Qt::LeftButton, {}, Cell(7, 11));
  for (int s = 4; s <= 7; ++s) EXPECT_TRUE(w.machine().pattern.cell(s, 11)) << s;
  // Header: click, shift-click marks steps 4..7; cut takes them out.
  QTest::mouseClick(grid, Qt::LeftButton, {}, QPoint(Cell(4, 0).x(), 5));
  QTest::mouseClick(grid, Qt::LeftButton, Qt::ShiftModifier, QPoint(Cell(7, 0).x(), 5));
  ASSERT_EQ(w.machine().selection(), (std::pair<int, int>{4, 7}));
  w.findChild<QAction*>("mnuCut")->trigger();
  EXPECT_EQ(w.machine().pattern.steps(), 28);
  EXPECT_FALSE(w.machine().pattern.cell(4, 11));
  // Removing instruments stops at the last one, with the message.
  for (int i = 0; i < 16; ++i) w.findChild<QAction*>("mnuRemoveInstrument")->trigger();
  EXPECT_EQ(w.machine().pattern.instruments(), 1);
  ASSERT_FALSE(prompter.asked().empty());
  EXPECT_EQ(prompter.asked().back().text, messages.str("str_GottaHaveOneTrack"));
  EXPECT_TRUE(w.windowTitle().endsWith("[Untitled] *"));
  prompter.push(Answer::No);  // closing asks about the unsaved beat
  w.close();
}

TEST_F(ToolWindowsTest, DrumPatternGoesIntoTheScoreAndComesBack) {
  Document doc;
  EditContext edit(doc, prompter);
  env.editor = &edit;
  DrumMachineWindow w(env);
  auto* grid = w.findChild<DrumGrid*>("picDocument");
  QTest::mouseClick(grid, Qt::LeftButton, {}, Cell(0, 15));
  QTest::mouseClick(grid, Qt::LeftButton, {}, Cell(4, 11));
  w.findChild<QAction*>("mnuAdd")->trigger();
  ASSERT_EQ(doc.score.Tracks.size(), 2u);
  EXPECT_TRUE(doc.score.Tracks[1].DrumTrack);
  EXPECT_EQ(doc.score.Tracks[1].Name, "Drums");
  w.machine().dirty = false;
  w.NewFile();
  EXPECT_FALSE(w.machine().pattern.cell(4, 11));
  w.findChild<QAction*>("mnuLoad")->trigger();
  EXPECT_TRUE(w.machine().pattern.cell(0, 15));
  EXPECT_TRUE(w.machine().pattern.cell(4, 11));
  EXPECT_EQ(w.machine().pattern.steps(), 32);
  EXPECT_FALSE(w.machine().dirty);
}

TEST_F(ToolWindowsTest, GeneratorAsksAndReplacesTheBeat) {
  DrumMachineWindow w(env);
  w.machine().pattern.setCell(0, 0, true);
  BeatGeneratorDialog g(env, w);
  g.lstUse->clearSelection();
  EXPECT_FALSE(g.Command7_Click());
  EXPECT_EQ(prompter.asked().back().text, messages.str("str_PleaseChooseAtLeastOneInstrument"));
  g.lstUse->item(15)->setSelected(true);
  g.optBeats[0]->setChecked(true);
  prompter.push(false);
  EXPECT_FALSE(g.Command7_Click());
  EXPECT_EQ(w.machine().pattern.steps(), 32);  // No leaves the beat alone
  prompter.push(true);
  EXPECT_TRUE(g.Command7_Click());
  EXPECT_EQ(w.machine().pattern.steps(), 8);
  EXPECT_EQ(w.machine().pattern.Instruments, std::vector<std::string>{"Acoustic Bass Drum"});
  w.machine().dirty = false;
}

TEST_F(ToolWindowsTest, MetronomeSetListAndFile) {
  MetronomeWindow w(env);
  w.removeSet();
  EXPECT_EQ(prompter.asked().back().text, messages.str("str_MustHaveAtLeastOneBeatSet"));
  w.addSet();
  ASSERT_EQ(w.file().Sets.size(), 2u);
  EXPECT_EQ(w.currentSet(), 1);
  w.cUTS->setText("seven");
  w.vBPM->setValue(96);
  w.applyEdit();
  EXPECT_EQ(w.file().Sets[1], (BeatSet{4, 4, 96, 4}));  // a bad upper number falls back to 4
  const std::string path = (dir_ / "practice").string();
  prompter.pushText(path);
  w.findChild<QAction*>("mnuSave")->trigger();
  ASSERT_TRUE(fs::exists(path + ".p4m"));
  EXPECT_EQ(LoadMetronomeFile(path + ".p4m"), w.file());
  EXPECT_TRUE(w.windowTitle().contains("[practice.p4m]"));
}

TEST_F(ToolWindowsTest, TrainerRoundReachesTheSettings) {
  TrainerWindow w(env, TrainerWindow::Kind::Pitch);
  w.Command1_Click();
  EXPECT_TRUE(w.picReady->isVisibleTo(&w));
  w.Command4_Click();
  for (int i = 0; i < 10; ++i) {
    const std::string answer = w.round().note().answer;
    int button = 0;
    while (kTrainerNoteNames[button] != answer) ++button;
    w.guess(button);
  }
  EXPECT_TRUE(w.round().over());
  EXPECT_FALSE(w.tmr.isActive());
  EXPECT_EQ(settings.GetSetting("Tools", "PPTotalRounds"), "1");
  EXPECT_EQ(settings.GetSetting("Tools", "PPSkillLevel"), "14");
  EXPECT_EQ(settings.GetSetting("Tools", "FBTotalRounds"), "");
  EXPECT_TRUE(w.lblRoundDone->text().contains("10"));
  // Each note sounded on channel 0 at full velocity, the one before it stopped first.
  int ons = 0;
  for (const MidiMessage& m : midi.messages) ons += (m.Status == 0x90 && m.Data2 == 127);
  EXPECT_EQ(ons, 10);
}

TEST_F(ToolWindowsTest, TunerLibrarySaveDeleteRestore) {
  TunerWindow w(env);
  EXPECT_EQ(w.library().names().size(), 22u);
  w.txtName->setText("My Drop C");
  w.cmbTuning[5]->setCurrentIndex(8);
  w.Command4_Click();
  ASSERT_TRUE(w.library().exists("My Drop C"));
  EXPECT_EQ(w.library().load("My Drop C").pitch(6), 36);
  prompter.push(false);  // overwrite? no
  w.cmbTuning[5]->setCurrentIndex(9);
  w.Command4_Click();
  EXPECT_EQ(w.library().load("My Drop C").pitch(6), 36);
  prompter.push(true);
  w.Command4_Click();
  EXPECT_EQ(w.library().load("My Drop C").pitch(6), 37);
  prompter.push(true);
  w.deleteTuning();
  EXPECT_FALSE(w.library().exists("My Drop C"));
  w.txtRate->setText("fast");
  w.Command3_Click();
  EXPECT_EQ(prompter.asked().back().text, messages.str("str_PleaseValidPlayRate"));
  EXPECT_FALSE(w.playing());
  prompter.push(true);
  w.mnuRestoreTunings_Click();
  EXPECT_EQ(prompter.asked().back().text, messages.str("str_TuningReset"));
  EXPECT_EQ(w.lstTunings->count(), 22);
}

}  // namespace
}  // namespace plectaro
