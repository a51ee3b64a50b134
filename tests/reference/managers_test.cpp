// The Chord Manager and Scale Manager through their widgets: searches and their notices,
// adding a chord or scale at the cursor (and undoing it), restore, the key menu.
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <fstream>
#include <QMenuBar>
#include <gtest/gtest.h>

#include "../shell/test_folder.h"
#include "reference/ui/chord_editor.h"
#include "reference/ui/chord_manager.h"
#include "reference/ui/scale_editor.h"
#include "reference/ui/scale_list.h"
#include "reference/ui/scale_manager.h"
#include "reference/ui/tuning_loader.h"
#include "reference/place_commands.h"
#include "score/value_text.h"

namespace plectaro {
namespace {

class Managers : public ::testing::Test {
 protected:
  Managers() : edit(doc, prompter) {
    env.data = home.path() / "Data";
    env.prompter = &prompter;
    env.settings = &settings;
    env.text = [](std::string_view key) { return "<" + std::string(key) + ">"; };
    env.playChords = [] { return false; };
    env.soundChord = [this](const BeatChord& c) { sounded.push_back(c.Name); };
    env.noteOn = [this](int pitch) { notes.push_back(pitch); };
    doc.score.Tracks.resize(1);
    doc.score.Tracks[0].Tuning.NumStrings = 6;
    edit.hooks.passwordCorrect = [] { return true; };
  }
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "managers_test";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) new QApplication(argc, argv);
  }

  testing::TempFolder home;
  MemorySettingsStore settings;
  ScriptedPrompter prompter;
  Document doc;
  EditContext edit;
  ReferenceEnv env;
  std::vector<std::string> sounded;
  std::vector<int> notes;
};

int indexOf(const std::vector<std::string>& v, const std::string& s) {
  const auto it = std::find(v.begin(), v.end(), s);
  return it == v.end() ? -1 : static_cast<int>(it - v.begin());
}

TEST_F(Managers, ChordSearchesAndTheirNotices) {
  ChordManager m(env, &edit);
  EXPECT_EQ(m.chords().size(), 396u);
  EXPECT_EQ(m.status(), "396 <str_Chords>");
  m.searchBox()->setText("am");
  EXPECT_NE(indexOf(m.chords(), "A m7"), -1);
  m.searchBox()->setText("zz");
  EXPECT_TRUE(m.chords().empty());
  EXPECT_EQ(m.status(), "<str_NoChordsContaining1>zz<str_NoChordsContaining2>");
  m.setSearch(ChordSearch::InFile);
  EXPECT_TRUE(m.chords().empty());
  EXPECT_EQ(m.status(), "<str_NoChordsInFile>");
  m.setSearch(ChordSearch::Tab);
  m.tabBox(1)->setText("0");
  m.tabBox(6)->setText("0");
  m.tabBox(5)->setText("2");
  EXPECT_NE(indexOf(m.chords(), "E m"), -1);
  EXPECT_EQ(indexOf(m.chords(), "A m"), -1);
  EXPECT_TRUE(prompter.asked().empty());  // searching never opens a box
}

TEST_F(Managers, AddingAChordAsDiagramAndAsNotesIsUndoable) {
  ChordManager m(env, &edit);
  m.selectChord(indexOf(m.chords(), "C Maj"));
  EXPECT_EQ(m.currentChord(), "C Maj");
  const Score empty = doc.score;
  m.runMenuItem(2);
  const Beat& b = doc.score.beat(0, 0, 0);
  const std::vector<std::string> frets = {b.Notes[0].Fret, b.Notes[1].Fret, b.Notes[2].Fret,
                                          b.Notes[3].Fret, b.Notes[4].Fret, b.Notes[5].Fret};
  EXPECT_EQ(frets, (std::vector<std::string>{"0", "1", "0", "2", "3", "0"}));
  EXPECT_TRUE(doc.ScoreChanged);

  m.runMenuItem(1);
  ASSERT_TRUE(doc.score.beat(0, 0, 0).HasChord);
  EXPECT_EQ(doc.score.beat(0, 0, 0).Chord->Name, "C Maj");
  EXPECT_EQ(doc.score.beat(0, 0, 0).Chord->Frets[4], "3");
  // The Chordbook now lists the chord of the file.
  m.setSearch(ChordSearch::InFile);
  EXPECT_EQ(m.chords(), std::vector<std::string>{"C Maj"});

  mnuEditUndo_Click(edit);
  mnuEditUndo_Click(edit);
  EXPECT_EQ(doc.score, empty);

  m.runMenuItem(0);
  EXPECT_EQ(sounded, std::vector<std::string>{"C Maj"});

  // A percussion track takes no chord, and nothing is said.
  doc.score.Tracks[0].DrumTrack = true;
  const Score before = doc.score;
  m.runMenuItem(2);
  EXPECT_EQ(doc.score, before);
  EXPECT_TRUE(prompter.asked().empty());
}

TEST_F(Managers, ChordEditorSavesAskingBeforeItReplaces) {
  ChordManager m(env, &edit);
  m.selectChord(indexOf(m.chords(), "A m7"));
  ChordEditor* e = m.editor();
  ChordData c;
  std::string error;
  ASSERT_TRUE(e->chord(c, error));
  EXPECT_EQ(c, LoadChordFile(env.data, "A m7"));

  prompter.push(false);  // do not replace
  EXPECT_FALSE(e->saveChord());
  e->setChord("A m7 high", [&] {
    ChordData high = c;
    high.StartFret = 4;
    high.Frets = {"1", "1", "2", "3", "3", "x", ""};
    return high;
  }());
  EXPECT_TRUE(e->saveChord());
  EXPECT_EQ(LoadChordFile(env.data, "A m7 high").Frets[3], "3");
  EXPECT_NE(indexOf(m.chords(), "A m7 high"), -1);
}

TEST_F(Managers, ChordEditorKeepsFretsRelativeToTheStartFret) {
  // The editor shows absolute frets; the record (and file) keeps them relative to StartFret.
  struct Case {
    int16_t startFret;
    std::array<std::string, kChordStrings> frets;  // as stored
    std::vector<QString> shown;                    // the boxes of strings 1..6
  };
  const Case cases[] = {
      {0, {"0", "1", "0", "2", "3", "x", ""}, {"0", "1", "0", "2", "3", "x"}},
      {4, {"1", "1", "2", "3", "3", "x", ""}, {"5", "5", "6", "7", "7", "x"}},
      {7, {"0", "", "2", "x", "5", "", ""}, {"7", "", "9", "x", "12", ""}},
  };
  ChordEditor e(env);
  for (const Case& c : cases) {
    ChordData chord;
    chord.StartFret = c.startFret;
    chord.Frets = c.frets;
    chord.Tuning = kLibraryTuning;
    e.setChord("Test", chord);
    for (size_t i = 0; i < c.shown.size(); ++i)
      EXPECT_EQ(e.findChild<QLineEdit*>(QString("txtFret%1").arg(i))->text(), c.shown[i]) << c.startFret << " " << i;
    ChordData back;
    std::string error;
    ASSERT_TRUE(e.chord(back, error)) << error;
    EXPECT_EQ(back, chord) << c.startFret;
    // Saved and read again, the blanks come back as the single blank of the file.
    SaveChordFile(env.data, "Test", back);
    const ChordData loaded = LoadChordFile(env.data, "Test");
    for (size_t i = 0; i < kChordStrings; ++i) EXPECT_EQ(Trim(loaded.Frets[i]), c.frets[i]);
    EXPECT_EQ(loaded.StartFret, c.startFret);
  }
  // A fret below the start fret or more than five above it does not fit the chart.
  ChordData wide;
  wide.StartFret = 4;
  wide.Frets = {"1", "1", "2", "3", "3", "x", ""};
  e.setChord("Wide", wide);
  e.findChild<QLineEdit*>("txtFret0")->setText("0");
  ChordData back;
  std::string error;
  EXPECT_FALSE(e.chord(back, error));
  EXPECT_EQ(error, "str_InvalidChordRange");
}

TEST_F(Managers, ChordNotesKeepMutedStringsAsDeadNotes) {
  ChordData c;
  c.StartFret = 2;
  c.Frets = {"1", "x", " ", "0", "", "x", ""};
  ASSERT_TRUE(AddChordAsNotes(edit, c));
  const Beat& b = doc.score.beat(0, 0, 0);
  const std::vector<std::string> frets = {b.Notes[0].Fret, b.Notes[1].Fret, b.Notes[2].Fret,
                                          b.Notes[3].Fret, b.Notes[4].Fret, b.Notes[5].Fret};
  EXPECT_EQ(frets, (std::vector<std::string>{"3", "x", "", "2", "", "x"}));
}

TEST_F(Managers, TheTuningPickerSetsTheEditorsStrings) {
  ChordEditor chords(env);
  ScaleEditor scales(env);
  TuningLibrary library(env.data);
  library.createAll();
  const TuningData openG = library.load("Open G");
  const TuningData nashville = library.load("Nashville");
  ShowTuning(openG, chords.tuningBoxes());
  ShowTuning(nashville, scales.tuningBoxes());
  ChordData c;
  std::string error;
  ASSERT_TRUE(chords.chord(c, error));
  const ScaleData s = scales.scale();
  for (int string = 1; string <= 6; ++string) {
    const auto i = static_cast<size_t>(string - 1);
    EXPECT_EQ(c.Tuning[i], openG.pitch(string)) << string;
    EXPECT_EQ(s.Tuning[i], nashville.pitch(string)) << string;
  }
  EXPECT_EQ(c.NumStrings, 6);
  // Strings 6 to 3 of Nashville sound an octave up.
  EXPECT_EQ(s.Tuning[5], 52);
}

TEST_F(Managers, TheScaleListFillsAtStartAndAgainAfterChanges) {
  std::vector<int> strings = {64, 59, 55, 50, 45, 40};
  ScaleListPanel list(env, [&] { return strings; });
  EXPECT_EQ(list.scales().size(), 38);  // the library is written on first use
  list.choose("Basic Pentatonic", 0);  // A
  ASSERT_FALSE(list.dots().empty());
  const auto inA = list.dots();
  // The chosen scale and key come back in a new list.
  ScaleListPanel again(env, [&] { return strings; });
  EXPECT_EQ(again.dots(), inA);
  // Another tuning moves the dots once the list is told.
  strings[5] = 38;
  list.refresh();
  EXPECT_NE(list.dots(), inA);
  // A deleted scale goes at the next fill; a damaged one is named and shows nothing.
  std::filesystem::remove(ScaleFolder(env.data) / "Arabian");
  { std::ofstream(ScaleFolder(env.data) / "Basic Pentatonic", std::ios::trunc) << " 6 \r\n1\r\n"; }
  list.PopulateScaleList();
  EXPECT_EQ(list.scales().size(), 37);
  EXPECT_TRUE(list.dots().empty());
  EXPECT_FALSE(list.findChild<QLabel*>("lblStatus")->text().isEmpty());
}

TEST_F(Managers, RestoreChordsPutsTheLibraryBack) {
  ChordManager m(env, &edit);
  std::filesystem::remove(ChordFolder(env.data) / "A m7");
  m.RefreshFilter();
  EXPECT_EQ(m.chords().size(), 395u);
  prompter.push(true);
  m.restoreChords();
  EXPECT_EQ(m.chords().size(), 396u);
  ASSERT_EQ(prompter.asked().size(), 2u);
  EXPECT_EQ(prompter.asked()[1].text, "<str_RestoreChordsDone>");
}

TEST_F(Managers, ScaleKeysOctaveSearchAndAdd) {
  bool populated = false;
  env.populateScaleList = [&] { populated = true; };
  ScaleManager m(env, &edit);
  EXPECT_EQ(m.scales().size(), 38u);
  m.setKey(6);  // D#
  m.setHigh(true);
  EXPECT_EQ(m.scaleView().keyOffset, 11);
  EXPECT_TRUE(m.findChild<QAction*>("mnuKey6")->isChecked());

  m.setSearch(ScaleSearch::Keywords);
  m.searchBox()->setText("horror");
  EXPECT_EQ(m.scales(), std::vector<std::string>{"Phrygian"});
  m.searchBox()->setText("bossa");
  EXPECT_EQ(m.status(), "<str_SearchUnsuccessful>: <str_NoKeywords1>bossa<str_NoKeywords2>");
  m.searchBox()->setText("");

  m.setKey(0);  // A: offset 5
  m.setHigh(false);
  m.selectScale(indexOf(m.scales(), "Minor Pentatonic"));
  ASSERT_TRUE(m.addToMusicFile());
  const auto& beats = doc.score.Tracks[0].Bars[0]->Beats;
  ASSERT_EQ(beats.size(), 6u);
  // In A, from the low string up: frets 5, 7 and 8 on string 6 first.
  EXPECT_EQ(beats[0].Notes[5].Fret, "5");
  EXPECT_EQ(beats[1].Notes[5].Fret, "7");
  EXPECT_EQ(beats[2].Notes[5].Fret, "8");
  EXPECT_EQ(beats[5].Notes[3].Fret, "7");
  EXPECT_EQ(beats[0].Length, kEighth);

  m.editor()->play();
  EXPECT_EQ(notes, std::vector<int>{45});
  m.editor()->stop();

  prompter.push(true);
  m.restoreScales();
  EXPECT_TRUE(populated);
}

}  // namespace
}  // namespace plectaro
