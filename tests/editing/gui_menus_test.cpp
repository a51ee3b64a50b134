// The right-click menu and the track selector of the main window, driven with Qt mouse events
// on the band demo.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <optional>
#include <utility>

#include "editing/hit_test.h"
#include "editing/selection.h"
#include "editing/ui/right_menu.h"
#include "editing/ui/track_selector.h"
#include "../shell/test_folder.h"
#include "main_window_editor.h"
#include "score/music_file.h"

namespace plectaro::test {
namespace {

int argc = 1;
char arg0[] = "editing_gui_menu_tests";
char* argv[] = {arg0, nullptr};

// A point of the view that lands on (bar, beat, string) of the cursor's track.
std::optional<QPoint> pointOf(const Document& doc, int bar, int beat, int string) {
  for (int y = 0; y < 900; y += 2)
    for (int x = 0; x < 1200; x += 2) {
      const HitResult h = HitTest(doc, doc.CursorTrack, x, y);
      if (h.hit && h.bar == bar && h.beat == beat && h.string == string) return QPoint(x, y);
    }
  return std::nullopt;
}

QStringList namesIn(const QMenu* menu) {
  QStringList names;
  for (const QAction* a : menu->actions())
    if (!a->isSeparator()) names << a->objectName();
  return names;
}

TEST(GuiMenus, RightClickOffersTheSpotsCommandsAndTheToolbarPicksTheTrack) {
  QApplication app(argc, argv);
  TestSession ts((testing::SourceData() / "examples" / "band.plm").string());
  Session& session = ts.session;
  ASSERT_GE(session.doc().score.LastTrack(), 2);
  WiredWindow w(session);
  auto find = [&w](const QString& name) { return w.window.action(name); };
  ConnectRightMenu(find, w.window.view(), w.ctx);
  auto* selector = new TrackSelector(w.ctx, &w.window);
  w.window.toolbar(7)->addWidget(selector);
  QObject::connect(w.window.view(), &DocumentView::drawn, selector, &TrackSelector::refresh);
  w.window.resize(1100, 900);
  w.window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&w.window));
  w.window.DrawDocument();
  QApplication::processEvents();

  // Every item the menu may hold is a command of the window.
  for (bool note : {false, true})
    for (bool sel : {false, true})
      for (const char* n : RightMenuItems(note, sel))
        if (*n) {
          EXPECT_NE(find(n), nullptr) << n;
        }

  Document& doc = session.doc();
  auto* menu = w.window.view()->findChild<QMenu*>("picRightMenu");
  ASSERT_NE(menu, nullptr);
  QWidget* viewport = w.window.view()->viewport();
  // On a note: the note's commands; on an empty string of a beat: the beat's and bar's only.
  // Beat 1 of the first bar: a note on the top string, none on the lowest.
  const int beat = 1, noteString = 0, emptyString = 5;
  doc.score.noteMut(0, 0, beat, noteString).Fret = "7";
  doc.score.noteMut(0, 0, beat, emptyString) = NoteSlot{};
  w.window.DrawDocument();
  for (const auto& [string, hasNoteItems] : {std::pair{noteString, true}, std::pair{emptyString, false}}) {
    const auto at = pointOf(doc, 0, beat, string);
    ASSERT_TRUE(at.has_value()) << string;
    QTest::mouseClick(viewport, Qt::RightButton, {}, *at);
    EXPECT_EQ(doc.CursorBeat, beat);
    EXPECT_EQ(doc.CursorString, string);
    ASSERT_TRUE(menu->isVisible());
    const QStringList names = namesIn(menu);
    EXPECT_EQ(names.contains("mnuNoteUp"), hasNoteItems) << names.join(' ').toStdString();
    EXPECT_TRUE(names.contains("mnuNoteInsertBeat"));
    EXPECT_TRUE(names.contains("mnuBarTimeSignature"));
    EXPECT_FALSE(names.contains("mnuEditCopy"));
    menu->hide();
  }
  // Inside a marked band the click keeps the band, and the menu offers what acts on it.
  w.ctx.selection = Selection{true, true, 0, 0};
  RunCursorMove(w.ctx, [&] { doc.CursorBar = 1; });
  const auto inBand = pointOf(doc, 0, beat, noteString);
  ASSERT_TRUE(inBand.has_value());
  QTest::mouseClick(viewport, Qt::RightButton, {}, *inBand);
  ASSERT_TRUE(w.ctx.selection.active);
  EXPECT_EQ(doc.CursorBar, 1);
  EXPECT_TRUE(namesIn(menu).contains("mnuEditCopy"));
  menu->hide();

  // The selector lists the tracks and shows the one chosen.
  ASSERT_EQ(selector->count(), static_cast<int>(doc.score.Tracks.size()));
  EXPECT_EQ(selector->currentIndex(), 0);
  selector->activated(2);
  QApplication::processEvents();
  EXPECT_EQ(doc.CursorTrack, 2);
  EXPECT_EQ(selector->currentIndex(), 2);
  // A track renamed elsewhere shows its new name at the next draw.
  doc.score.Tracks[2].Name = "Renamed";
  w.window.DrawDocument();
  QApplication::processEvents();
  EXPECT_EQ(selector->itemText(2).toStdString(), "3. Renamed");
}

// Zooming moves every bar: the cursor, far down the song, stays in view at every zoom.
TEST(GuiMenus, ZoomingKeepsTheCursorInView) {
  QApplication app(argc, argv);
  TestSession ts((testing::SourceData() / "examples" / "band.plm").string());
  Document& doc = ts.session.doc();
  WiredWindow w(ts.session);
  w.window.resize(1100, 700);
  w.window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&w.window));
  doc.CursorBar = doc.score.GetLastBar(doc.CursorTrack);
  w.window.DrawDocument();
  QScrollBar* v = w.window.view()->verticalScrollBar();
  const auto inView = [&] {
    const double height = w.window.view()->viewport()->height() / w.window.view()->zoom();
    return ScrollToShowCursor(doc, v->value(), height) == v->value();
  };
  for (double zoom : {1.0, 2.5, 4.0, 0.5}) {
    w.window.view()->setZoom(zoom);
    for (int i = 0; i < 5; ++i) QTest::qWait(20);  // draw, scroll, draw again
    EXPECT_TRUE(inView()) << zoom;
  }
}

}  // namespace
}  // namespace plectaro::test
