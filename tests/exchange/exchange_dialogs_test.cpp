// The MIDI import and export commands, the Batch Convert window and the text tab import from a
// file, driven through their widgets as a user would: values set, the command run, then the
// file on disk or the score checked.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <functional>

#include "../shell/test_folder.h"
#include "exchange/midi_export.h"
#include "exchange/ui/ascii_import_dialog.h"
#include "exchange/ui/batch_convert_dialog.h"
#include "exchange/ui/exchange_menus.h"
#include "exchange/ui/midi_import_dialog.h"
#include "score/music_file.h"
#include "shell/session.h"

namespace plectaro {
namespace {

namespace fs = std::filesystem;

// Two guitar tracks and a bass: a riff of quarter notes over two bars.
Score threeTracks() {
  Score s;
  s.Tempo = 100;
  s.Tracks.resize(3);
  s.SetBarCount(1);
  const char* names[] = {"Lead", "Rhythm", "Bass"};
  for (int t = 0; t < 3; ++t) {
    Track& tr = s.Tracks[static_cast<size_t>(t)];
    tr.Name = names[t];
    tr.Channel = static_cast<int16_t>(2 * t);
    tr.EffectChannel = static_cast<int16_t>(2 * t + 1);
    for (int b = 0; b < 2; ++b) {
      s.SetBeatCount(t, b, 3);
      for (int k = 0; k < 4; ++k) {
        Beat& beat = s.beatMut(t, b, k);
        beat.Length = kQuarter;
        beat.Notes[static_cast<size_t>(t == 2 ? 5 : t)].Fret = std::to_string(3 + k);
      }
    }
  }
  return s;
}

class ExchangeDialogs : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static int argc = 1;
    static char name[] = "exchange_dialogs_test";
    static char* argv[] = {name, nullptr};
    if (!QApplication::instance()) new QApplication(argc, argv);
  }
  ExchangeDialogs() : session(ResolveAppFolder((home.path() / "home").string()), prompter) {}

  fs::path at(const std::string& name) const { return home.path() / name; }

  // Runs `work`, which opens a modal dialog of type D; `answer` fills it in and closes it.
  template <class D>
  void withDialog(const std::function<void(D&)>& answer, const std::function<void()>& work) {
    bool seen = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
      if (auto* d = qobject_cast<D*>(QApplication::activeModalWidget())) {
        poll.stop();
        seen = true;
        answer(*d);
      }
    });
    poll.start(10);
    work();
    EXPECT_TRUE(seen) << "the dialog never opened";
  }

  testing::TempFolder home;
  ScriptedPrompter prompter;
  Session session;
  int redraws = 0;
  ExchangeHooks hooks{[this] { ++redraws; }};
};

TEST_F(ExchangeDialogs, MidiImportTakesTheTickedTracksAndBoxes) {
  MakeMIDIFile(threeTracks(), at("riff.mid"));
  withDialog<MidiImportDialog>(
      [](MidiImportDialog& d) {
        ASSERT_EQ(d.TrackList()->count(), 3);
        EXPECT_TRUE(d.TrackList()->item(2)->text().startsWith("Track 3 (Bass)"));
        d.TrackList()->item(1)->setCheckState(Qt::Unchecked);
        d.Check3()->setChecked(true);  // Quantize
        d.accept();
      },
      [&] { MIDIImport(nullptr, session, hooks, QString::fromStdString(at("riff.mid").string())); });
  const Score& s = session.doc().score;
  ASSERT_EQ(s.Tracks.size(), 2u);
  EXPECT_EQ(s.Tracks[0].Name, "Lead");
  EXPECT_EQ(s.Tracks[1].Name, "Bass");
  EXPECT_TRUE(s.Tracks[1].BassStaff);
  EXPECT_EQ(s.Title, "riff");
  EXPECT_TRUE(s.CurrentFileName.empty());  // saving asks where: the MIDI file stays as it is
  EXPECT_EQ(s.note(0, 1, 3, 0).Fret, "6");
  EXPECT_EQ(redraws, 1);

  // An edited document is replaced only when the user agrees; No leaves it, asks nothing more.
  session.doc().ScoreChanged = true;
  const Score edited = session.doc().score;
  prompter.clear();
  prompter.push(false);
  MIDIImport(nullptr, session, hooks, QString::fromStdString(at("riff.mid").string()));
  EXPECT_EQ(session.doc().score, edited);
  ASSERT_EQ(prompter.asked().size(), 1u);
  EXPECT_EQ(prompter.asked()[0].text, session.messages().str("str_MIDIWillLoseCurrentFile"));

  // A file that is not MIDI is refused with the reason; the document stays.
  WriteFileAtomically(at("fake.mid"), "RIFF0000");
  prompter.clear();
  prompter.push(true);
  MIDIImport(nullptr, session, hooks, QString::fromStdString(at("fake.mid").string()));
  EXPECT_EQ(session.doc().score, edited);
  ASSERT_EQ(prompter.asked().size(), 2u);
  EXPECT_NE(prompter.asked()[1].text.find("MThd"), std::string::npos) << prompter.asked()[1].text;
}

TEST_F(ExchangeDialogs, MidiExportWritesWhereTheUserSays) {
  session.doc().score = threeTracks();
  prompter.pushText(at("out/song").string());  // no extension typed: .mid is added
  fs::create_directories(at("out"));
  MIDIExport(nullptr, session);
  EXPECT_EQ(ReadWholeFile(at("out/song.mid")), SerializeMidiFile(MakeMIDIData(threeTracks())));

  prompter.pushText(std::nullopt);  // Cancel in the file question writes nothing
  MIDIExport(nullptr, session);
  EXPECT_EQ(std::distance(fs::directory_iterator(at("out")), fs::directory_iterator()), 1);
}

TEST_F(ExchangeDialogs, BatchWindowConvertsAndReports) {
  fs::create_directories(at("in"));
  MakeMIDIFile(threeTracks(), at("in/riff.mid"));
  WriteFileAtomically(at("in/broken.mid"), ReadWholeFile(at("in/riff.mid")).substr(0, 30));
  BatchConvertDialog d(session.settings(), session.messages());
  d.folder()->setText(QString::fromStdString(at("in").string()));
  d.outFolder()->setText(QString::fromStdString(at("plm").string()));
  d.fromKind()->setCurrentIndex(d.fromKind()->findData(".mid"));
  d.toKind()->setCurrentIndex(d.toKind()->findData(".plm"));
  d.convert();
  const QString report = d.report()->toPlainText();
  EXPECT_TRUE(report.contains("1 of 2 files converted")) << report.toStdString();
  EXPECT_TRUE(report.contains("broken.mid: ")) << report.toStdString();
  EXPECT_TRUE(fs::exists(at("plm/riff.plm")));
  EXPECT_FALSE(fs::exists(at("plm/broken.plm")));  // nothing half-written

  // Music files to text tab, with the text settings handed to the window.
  d.setTextOptions({false, 24});
  d.folder()->setText(QString::fromStdString(at("plm").string()));
  d.outFolder()->setText(QString::fromStdString(at("txt").string()));
  ASSERT_GE(d.fromKind()->findData(".plm"), 0);
  ASSERT_GE(d.toKind()->findData(".txt"), 0);
  d.fromKind()->setCurrentIndex(d.fromKind()->findData(".plm"));
  d.toKind()->setCurrentIndex(d.toKind()->findData(".txt"));
  d.convert();
  EXPECT_TRUE(d.report()->toPlainText().contains("1 of 1 files converted")) << d.report()->toPlainText().toStdString();
  Document back;
  ASSERT_EQ(OpenMusicFile(back, at("plm/riff.plm"), MemorySettingsStore()), OpenOutcome::Opened);
  EXPECT_EQ(ReadWholeFile(at("txt/riff.txt")), ExportASCIIText(back.score, 0, {false, 24}));
}

TEST_F(ExchangeDialogs, TextImportFromAFile) {
  // Windows line ends, string names and bar lines, a title line above the staff.
  WriteFileAtomically(at("lick.tab"),
                      "Title: Sunday Lick\r\nArtist: Nobody\r\n\r\n"
                      "e|--0--3--|\r\nB|--1--3--|\r\nG|--0--0--|\r\nD|--2--0--|\r\nA|--3--2--|\r\nE|-----3--|\r\n");
  Document& doc = session.doc();
  EditContext edit(doc, prompter);
  AsciiImportDialog d(nullptr, edit, TabSource::File);
  prompter.pushText(at("lick.tab").string());
  d.findChild<QPushButton*>("cmdBrowse")->click();
  EXPECT_TRUE(d.text()->toPlainText().contains("Sunday Lick"));
  EXPECT_EQ(d.findChild<QLineEdit*>("txtFile")->text().toStdString(), at("lick.tab").string());
  d.findChild<QCheckBox*>("chkGetFileDetails")->setChecked(true);
  prompter.push(true);  // the current track will be replaced
  d.accept();
  EXPECT_EQ(d.result(), QDialog::Accepted);
  EXPECT_EQ(doc.score.Title, "Sunday Lick");
  EXPECT_EQ(doc.score.Artist, "Nobody");
  EXPECT_EQ(doc.score.note(0, 0, 0, 4).Fret, "3");
  EXPECT_EQ(doc.score.note(0, 0, 1, 5).Fret, "3");
  EXPECT_TRUE(doc.ScoreChanged);

  // A file that cannot be read says so in the status line and keeps the text.
  d.findChild<QLineEdit*>("txtFile")->setText(QString::fromStdString(at("none.tab").string()));
  emit d.findChild<QLineEdit*>("txtFile")->returnPressed();
  EXPECT_TRUE(d.status()->text().contains("none.tab")) << d.status()->text().toStdString();
  EXPECT_TRUE(d.text()->toPlainText().contains("Sunday Lick"));
}

}  // namespace
}  // namespace plectaro
