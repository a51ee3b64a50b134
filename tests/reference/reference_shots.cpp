// Pictures of the chord and scale windows for looking at by eye: both managers in every view
// type, both editors, and a page of a score with a chord diagram placed.
//   reference_shots OUT_DIR
#include <QApplication>
#include <QDockWidget>
#include <QImage>
#include <QPainter>
#include <filesystem>

#include "editing/edit_context.h"
#include "reference/place_commands.h"
#include "reference/ui/chord_editor.h"
#include "reference/ui/chord_manager.h"
#include "reference/ui/scale_editor.h"
#include "reference/ui/scale_list.h"
#include "reference/ui/scale_manager.h"
#include "reference/ui/tuning_loader.h"
#include "rendering/draw_document.h"
#include "rendering/qt/qt_surface.h"

using namespace plectaro;

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  if (argc < 2) return 2;
  const std::filesystem::path out = argv[1];
  std::filesystem::create_directories(out / "home");
  MemorySettingsStore settings;
  ScriptedPrompter prompter;
  Document doc;
  doc.score.Tracks.resize(1);
  EditContext edit(doc, prompter);
  edit.hooks.passwordCorrect = [] { return true; };
  ReferenceEnv env;
  env.data = out / "home" / "Data";
  env.prompter = &prompter;
  env.settings = &settings;
  env.text = [](std::string_view key) {
    if (key == "str_Chords") return std::string("chords");
    if (key == "str_Scales") return std::string("scales");
    if (key == "str_KeyOf") return std::string("Key of");
    return std::string();
  };
  auto shoot = [&](QWidget& w, const std::string& name) {
    w.show();
    app.processEvents();
    w.grab().save(QString::fromStdString((out / (name + ".png")).string()));
  };
  ChordManager chords(env, &edit);
  chords.resize(760, 480);
  chords.selectChord(3);
  for (int v = 0; v < kViewTypes; ++v) {
    chords.setViewType(v);
    shoot(chords, "chord_manager_" + std::to_string(v));
  }
  chords.setLeftHanded(true);
  shoot(chords, "chord_manager_lefty");
  chords.setLeftHanded(false);
  ScaleManager scales(env, &edit);
  scales.resize(820, 620);
  scales.setKey(0);
  for (int v = 0; v < kViewTypes; ++v) {
    scales.setViewType(v);
    shoot(scales, "scale_manager_" + std::to_string(v));
  }
  ChordData barre;
  barre.StartFret = 4;
  barre.NumStrings = 6;
  barre.Barre = true;
  barre.Frets = {"1", "1", "2", "3", "3", "x", ""};
  barre.Tuning = kLibraryTuning;
  barre.Fingers = {1, 1, 2, 4, 3, 0, 0};
  chords.editor()->setChord("C# m7 (barre)", barre);
  shoot(*chords.editor(), "chord_editor");
  TuningLibrary tunings(env.data);
  tunings.createAll();
  ShowTuning(tunings.load("Open G"), chords.editor()->tuningBoxes());
  shoot(*chords.editor(), "chord_editor_open_g");
  TuningLoader picker(tunings, env.languageFile);
  shoot(picker, "tuning_loader");
  {
    std::vector<int> dropD = {64, 59, 55, 50, 45, 38};
    ScaleListPanel list(env, [&] { return dropD; });
    list.choose("Basic Pentatonic", 5);  // D
    list.resize(list.sizeHint());
    shoot(list, "scale_list_d_drop_d");
  }
  scales.selectScale(0);
  shoot(*scales.editor(), "scale_editor");

  // A page with chords placed as diagrams.
  const auto names = chords.chords();
  for (int k = 0; k < 4; ++k) {
    if (k > 0) doc.score.barMut(0, 0).Beats.push_back(doc.score.beat(0, 0, 0));
    doc.CursorBeat = static_cast<int16_t>(k);
    const std::string name = names[static_cast<size_t>(k * 37)];
    AddChordAsDiagram(edit, name, LoadChordFile(env.data, name));
    AddChordAsNotes(edit, LoadChordFile(env.data, name));
  }
  for (Beat& b : doc.score.barMut(0, 0).Beats) b.Length = kQuarter;
  LayoutSettings layout;
  QImage page(900, 400, QImage::Format_ARGB32);
  page.fill(Qt::white);
  {
    QPainter p(&page);
    p.setRenderHint(QPainter::Antialiasing);
    QtSurface s(p);
    RenderPage(doc, 0, 0, layout, DrawTexts{}, s);
  }
  page.save(QString::fromStdString((out / "page_with_diagrams.png").string()));
  return 0;
}
