// Not a test: opens every practice tool window with something in it (a generated beat
// playing, a practice schedule, a round of the trainers, the tuning library) and saves a
// picture of each into the folder given, for checking by eye.
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QListWidget>
#include <QPixmap>
#include <cstdio>
#include <filesystem>

#include <QAction>
#include <QImage>
#include <QPainter>

#include "editing/edit_context.h"
#include "playback/recording_out.h"
#include "rendering/draw_document.h"
#include "rendering/qt/qt_surface.h"
#include "score/document.h"
#include "score/settings_store.h"
#include "shell/language.h"
#include "score/prompter.h"
#include "tools/ui/beat_generator_dialog.h"
#include "tools/ui/drum_machine_window.h"
#include "tools/ui/metronome_window.h"
#include "tools/ui/trainer_window.h"
#include "reference/ui/tuning_loader.h"
#include "tools/ui/tuner_window.h"

namespace {

void wait(int ms) {
  QElapsedTimer t;
  t.start();
  while (t.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 10);
}

void shoot(QWidget& w, const QString& file) {
  w.show();
  wait(150);
  w.grab().save(file);
  std::printf("%s\n", file.toUtf8().constData());
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  const QString out = argc > 1 ? argv[1] : ".";
  QDir().mkpath(out);
  namespace fs = std::filesystem;
  const fs::path data = fs::temp_directory_path() / "plectaro-shots-data";
  fs::remove_all(data);
  fs::create_directories(data);

  plectaro::RecordingMidiOut midi;
  plectaro::MemorySettingsStore settings;
  plectaro::Messages messages;
  plectaro::ScriptedPrompter prompter;
  for (int i = 0; i < 4; ++i) prompter.push(true);
  plectaro::ToolEnv env{midi, settings, messages, prompter, data, data / "CurrentLanguage.txt", 0, {}};

  plectaro::DrumMachineWindow drums(env);
  plectaro::BeatGeneratorDialog generator(env, drums);
  generator.Command7_Click();
  shoot(generator, out + "/beat_generator.png");
  generator.hide();
  drums.machine().pattern.BeatLength[5] = 3;
  drums.machine().pattern.Dotted[5] = true;
  drums.machine().pattern.Tupleted[9] = true;
  drums.patternReplaced();
  drums.method132();
  wait(900);
  shoot(drums, out + "/drum_machine.png");
  drums.stopPlay();

  // The pattern into a new drum track of a score, the page of that track, and the track read
  // back into an emptied grid.
  plectaro::Document doc;
  plectaro::EditContext edit(doc, prompter);
  edit.hooks.passwordCorrect = [] { return true; };
  env.editor = &edit;
  plectaro::DrumMachineWindow fromScore(env);
  fromScore.machine().pattern = drums.machine().pattern;
  fromScore.findChild<QAction*>("mnuAdd")->trigger();
  {
    QImage page(1000, 700, QImage::Format_ARGB32);
    page.fill(Qt::white);
    QPainter p(&page);
    p.setRenderHint(QPainter::Antialiasing);
    plectaro::QtSurface surface(p);
    plectaro::RenderPage(doc, doc.CursorTrack, 0, plectaro::LayoutSettings{}, plectaro::DrawTexts{}, surface);
    p.end();
    page.save(out + "/drum_track_page.png");
  }
  fromScore.NewFile();
  fromScore.findChild<QAction*>("mnuLoad")->trigger();
  shoot(fromScore, out + "/drum_machine_loaded.png");

  plectaro::MetronomeWindow metronome(env);
  metronome.file().Sets = {{4, 4, 80, 40}, {4, 4, 100, 50}, {3, 4, 80, 40}, {3, 4, 100, 50}, {6, 8, 120, 8}};
  metronome.selectSet(0);
  metronome.applyEdit();
  metronome.play();
  wait(1700);
  shoot(metronome, out + "/metronome.png");
  metronome.stopPlay();

  for (auto kind : {plectaro::TrainerWindow::Kind::Fretboard, plectaro::TrainerWindow::Kind::Pitch}) {
    plectaro::TrainerWindow trainer(env, kind);
    const QString name = kind == plectaro::TrainerWindow::Kind::Fretboard ? "fretboard" : "pitch";
    shoot(trainer, out + "/" + name + "_stats.png");
    trainer.Command1_Click();
    trainer.Command4_Click();
    trainer.guess(0);
    shoot(trainer, out + "/" + name + "_round.png");
    for (int i = 0; i < 9; ++i) trainer.timeUp();
    shoot(trainer, out + "/" + name + "_over.png");
  }

  plectaro::TunerWindow tuner(env);
  for (int i = 0; i < tuner.lstTunings->count(); ++i)
    if (tuner.lstTunings->item(i)->text() == "Dropped D") tuner.lstTunings->setCurrentRow(i);
  tuner.Command3_Click();
  wait(1200);
  shoot(tuner, out + "/tuner.png");
  tuner.Command3_Click();
  plectaro::TuningLoader loader(tuner.library(), env.languageFile);
  shoot(loader, out + "/tuning_loader.png");
  std::printf("%zu MIDI messages\n", midi.messages.size());
  fs::remove_all(data);
  return 0;
}
