// A short riff typed with Qt key events into the main window's document view, saved with the
// window's file commands, and read back from the file.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <QAction>
#include <QTest>

#include "main_window_editor.h"
#include "score/music_file.h"

namespace plectaro::test {
namespace {

int argc = 1;
char arg0[] = "editing_gui_tests";
char* argv[] = {arg0, nullptr};

struct Typed {
  int bar, beat, string;
  const char* fret;
};

TEST(GuiRiff, TypedNotesSurviveSaveAndOpen) {
  QApplication app(argc, argv);
  TestSession ts;
  Session& session = ts.session;
  const ScriptedPrompter& prompter = ts.prompter;
  WiredWindow w(session);
  w.window.resize(1000, 800);
  w.window.show();
  QWidget* view = w.window.view();
  view->setFocus();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&w.window));

  auto press = [&](Qt::Key k, Qt::KeyboardModifiers m = Qt::NoModifier) { QTest::keyClick(view, k, m); };
  // Bar 1: eighths on the low E string, 0 3 5, a dead note, 3 0, then 12 on the B string.
  press(Qt::Key_Up);     // from the top line up wraps to the low E
  press(Qt::Key_Minus);  // eighths
  for (Qt::Key k : {Qt::Key_0, Qt::Key_3, Qt::Key_5, Qt::Key_X, Qt::Key_3, Qt::Key_0}) {
    press(k);
    press(Qt::Key_Right);
  }
  press(Qt::Key_Up);
  press(Qt::Key_Up);
  press(Qt::Key_Up);
  press(Qt::Key_Up);  // the B string
  press(Qt::Key_1);
  press(Qt::Key_2);
  press(Qt::Key_Right);
  press(Qt::Key_7, Qt::KeypadModifier);
  press(Qt::Key_Right);  // the bar is full: on to a new bar
  press(Qt::Key_Equal);  // a quarter again
  press(Qt::Key_5);
  press(Qt::Key_3, Qt::ShiftModifier);  // triplet
  press(Qt::Key_Right);
  press(Qt::Key_4);
  press(Qt::Key_Right);
  press(Qt::Key_2);
  press(Qt::Key_Z);  // undo the last fret
  QApplication::processEvents();
  // A menu item runs the same command as its key.
  QAction* dotted = w.window.action("mnuChordDotted");
  ASSERT_NE(dotted, nullptr);
  EXPECT_TRUE(dotted->isEnabled());
  EXPECT_TRUE(dotted->text().endsWith("\t."));
  dotted->trigger();
  EXPECT_TRUE(session.doc().score.beat(0, 1, 2).Dotted);
  dotted->trigger();
  // The Edit menu names the step it would take back, and what was taken back can be redone.
  QAction* undo = w.window.action("mnuEditUndo");
  QAction* redo = w.window.action("mnuEditRedo");
  EXPECT_TRUE(undo->isEnabled());
  EXPECT_EQ(undo->text(), "&Undo Dotted Note");
  EXPECT_FALSE(redo->isEnabled());
  undo->trigger();
  EXPECT_TRUE(session.doc().score.beat(0, 1, 2).Dotted);
  EXPECT_EQ(redo->text(), "&Redo Dotted Note");
  redo->trigger();
  EXPECT_FALSE(session.doc().score.beat(0, 1, 2).Dotted);
  EXPECT_EQ(redo->shortcuts().size(), 2);

  const std::string path = ts.home.filePath("riff.plm").toStdString();
  ASSERT_TRUE(session.files().ForceSaveFile(path));
  Document back;
  ASSERT_EQ(OpenMusicFile(back, path, session.settings()), OpenOutcome::Opened);
  const Score& s = back.score;
  ASSERT_EQ(s.BarInfos.size(), 2u);
  ASSERT_EQ(s.GetLastBeat(0, 0), 7);
  const Typed want[] = {{0, 0, 5, "0"}, {0, 1, 5, "3"}, {0, 2, 5, "5"}, {0, 3, 5, "x"},
                        {0, 4, 5, "3"}, {0, 5, 5, "0"}, {0, 6, 1, "12"}, {0, 7, 1, "7"},
                        {1, 0, 1, "5"}, {1, 1, 1, "4"}, {1, 2, 1, ""}};
  for (const auto& t : want)
    EXPECT_EQ(s.note(0, t.bar, t.beat, t.string).Fret, t.fret) << "bar " << t.bar << " beat " << t.beat;
  int notes = 0;
  for (int b = 0; b < 2; ++b)
    for (int k = 0; k <= s.GetLastBeat(0, b); ++k)
      for (int str = 0; str < 7; ++str) notes += s.note(0, b, k, str).hasNote() ? 1 : 0;
  EXPECT_EQ(notes, 10) << "no note anywhere else";
  for (int k = 0; k < 8; ++k) EXPECT_EQ(s.beat(0, 0, k).Length, kEighth);
  EXPECT_EQ(s.beat(0, 1, 0).Length, kQuarter);
  EXPECT_TRUE(s.beat(0, 1, 0).IsTuplet);
  EXPECT_TRUE(s.beat(0, 1, 2).IsTuplet) << "a grown beat keeps the triplet";
  EXPECT_TRUE(prompter.asked().empty());
}

}  // namespace
}  // namespace plectaro::test
