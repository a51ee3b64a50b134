#include "reference/ui/chord_manager.h"

#include <algorithm>

#include <QActionGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QVBoxLayout>

#include "reference/cell_drawing.h"
#include "reference/place_commands.h"
#include "reference/ui/chord_editor.h"
#include "reference/ui/library_view.h"
#include "reference/ui/view_menu.h"
#include "shell/ui/language_ui.h"

namespace plectaro {

namespace {

const std::array<const char*, kViewTypes> kViewNames = {"&Notation Only", "&Chord Chart Only", "&Tablature Only",
                                            "N&otation and Tab", "Not&ation and Chart", "C&hart and Tab", "A&ll"};

}  // namespace

ChordManager::ChordManager(ReferenceEnv& env, EditContext* edit, QWidget* parent)
    : QWidget(parent), env_(env), edit_(edit) {
  setObjectName("frmChordManager");
  // The title comes from the window's section of the language file (English when none).
  LoadLanguage(this, env_.languageFile);
  editor_ = new ChordEditor(env_, this);
  connect(editor_, &ChordEditor::saved, this, [this](const QString& name) {
    RefreshFilter();
    const auto it = std::find(lstChords_.begin(), lstChords_.end(), name.toStdString());
    if (it != lstChords_.end()) view_->setSelected(static_cast<int>(it - lstChords_.begin()));
  });

  status_ = MakeStatusLine(this);
  menuBar_ = new QMenuBar(this);
  buildMenus();
  view_ = new LibraryView(
      [this](Surface& s, Point origin, int index) {
        const std::string& name = lstChords_[static_cast<size_t>(index)];
        DrawChordCell(s, origin, ChordCellGeometry(viewMenu_->viewType()), name, load(name), CellStyle{viewMenu_->leftHanded()});
      },
      this);
  connect(view_, &LibraryView::cellClicked, this, [this](int index, bool right, QPoint at) {
    selectChord(index);
    if (!right) {
      if (env_.option(env_.playChords, true)) editor_->PlayChordOnce();
      return;
    }
    // picPopUp: the three things one does with a chord.
    QMenu popup(this);
    popup.setObjectName("picPopUp");
    popup.addAction(env_.caption("lblMenu0", "Play chord"), this, [this] { runMenuItem(0); });
    QAction* diagram = popup.addAction(env_.caption("lblMenu1", "Add to Music File as Diagram"), this, [this] { runMenuItem(1); });
    QAction* notes = popup.addAction(env_.caption("lblMenu2", "Add to Music File as Notes"), this, [this] { runMenuItem(2); });
    diagram->setEnabled(edit_ != nullptr);
    notes->setEnabled(edit_ != nullptr);
    popup.exec(at);
  });

  // The three search panels; one shows at a time.
  picSearchName_ = new QWidget(this);
  picSearchName_->setObjectName("picSearchName");
  auto* nameRow = new QHBoxLayout(picSearchName_);
  nameRow->setContentsMargins(4, 2, 4, 2);
  txtSearch_ = new QLineEdit(picSearchName_);
  txtSearch_->setObjectName("txtSearch");
  txtSearch_->setClearButtonEnabled(true);
  nameRow->addWidget(new QLabel(env_.caption("lblSearch", "Name:"), picSearchName_));
  nameRow->addWidget(txtSearch_);
  connect(txtSearch_, &QLineEdit::textChanged, this, [this] { RefreshFilter(); });

  picSearchTab_ = new QWidget(this);
  picSearchTab_->setObjectName("picSearchTab");
  auto* tabRow = new QHBoxLayout(picSearchTab_);
  tabRow->setContentsMargins(4, 2, 4, 2);
  tabRow->addWidget(new QLabel(env_.caption("lblTabSearch", "Frets, string 7 to 1:"), picSearchTab_));
  for (int s = kChordStrings; s >= 1; --s) {
    auto* box = new QLineEdit(picSearchTab_);
    box->setObjectName(QString("txtTabSearch%1").arg(s - 1));
    box->setMaxLength(2);
    box->setFixedWidth(32);
    box->setToolTip(QString::number(s));
    txtTabSearch_[static_cast<size_t>(s - 1)] = box;
    tabRow->addWidget(box);
    connect(box, &QLineEdit::textChanged, this, [this] { RefreshFilter(); });
  }
  tabRow->addStretch();

  picSearchStrings_ = new QWidget(this);
  picSearchStrings_->setObjectName("picSearchStrings");
  auto* stringRow = new QHBoxLayout(picSearchStrings_);
  stringRow->setContentsMargins(4, 2, 4, 2);
  for (int n = 4; n <= 7; ++n) {
    auto* opt = new QRadioButton(env_.caption("optString", "%1 strings").arg(n), picSearchStrings_);
    opt->setObjectName(QString("optString%1").arg(n - 4));
    optString_[static_cast<size_t>(n - 4)] = opt;
    stringRow->addWidget(opt);
    connect(opt, &QRadioButton::toggled, this, [this, n](bool on) {
      if (!on) return;
      filter_.numStrings = n;
      RefreshFilter();
    });
  }
  optString_[2]->setChecked(true);
  stringRow->addStretch();



  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->setMenuBar(menuBar_);
  layout->addWidget(picSearchName_);
  layout->addWidget(picSearchTab_);
  layout->addWidget(picSearchStrings_);
  layout->addWidget(view_, 1);
  layout->addWidget(status_);

  // The library is written the first time the window opens, and never again while the folder
  // is there.
  CreateAllChords(env_.data);
  RefreshView();
  setSearch(ChordSearch::Name);
  quiet_ = false;
  resize(720, 520);
}

void ChordManager::buildMenus() {
  viewMenu_ = new ViewMenu(menuBar_, env_, "Chords", kViewNames);
  connect(viewMenu_, &ViewMenu::changed, this, [this] { RefreshView(); });

  QMenu* search = menuBar_->addMenu(env_.caption("mnuSearch", "&Search"));
  search->setObjectName("mnuSearch");
  const std::pair<ChordSearch, std::pair<const char*, const char*>> modes[] = {
      {ChordSearch::Name, {"mnuSearchName", "By &Name"}},
      {ChordSearch::Tab, {"mnuSearchTab", "By &Tablature"}},
      {ChordSearch::Strings, {"mnuSearchStrings", "By &String Number"}},
      {ChordSearch::InFile, {"mnuSearchChordsInCurrentFile", "Chords in Current &File"}},
  };
  for (const auto& [mode, names] : modes) {
    QAction* a = search->addAction(env_.caption(names.first, names.second));
    a->setObjectName(names.first);
    a->setCheckable(true);
    mnuSearch_[mode] = a;
    connect(a, &QAction::triggered, this, [this, mode = mode] { setSearch(mode); });
  }
  search->addSeparator();
  QAction* clear = search->addAction(env_.caption("mnuSearchClear", "&Clear"));
  clear->setObjectName("mnuSearchClear");
  connect(clear, &QAction::triggered, this, [this] {
    quiet_ = true;
    txtSearch_->clear();
    for (QLineEdit* box : txtTabSearch_) box->clear();
    optString_[2]->setChecked(true);
    quiet_ = false;
    RefreshFilter();
  });

  QMenu* dock = menuBar_->addMenu(env_.caption("mnuDock", "&Dock"));
  dock->setObjectName("mnuDock");
  const std::pair<const char*, const char*> sides[] = {{"mnuUndock", "&Undock"},
                                                       {"mnuDockAbove", "Dock &Above"},
                                                       {"mnuDockBelow", "Dock &Below"},
                                                       {"mnuDockLeft", "Dock &Left"},
                                                       {"mnuDockRight", "Dock &Right"}};
  for (int side = 0; side < 5; ++side) {
    QAction* a = dock->addAction(env_.caption(sides[side].first, sides[side].second));
    a->setObjectName(sides[side].first);
    connect(a, &QAction::triggered, this, [this, side] { emit dockRequested(side); });
  }

  QMenu* chords = menuBar_->addMenu(env_.caption("mnuChords", "&Chords"));
  chords->setObjectName("mnuChords");
  QAction* edit = chords->addAction(env_.caption("mnuChordEditor", "Chord &Editor..."));
  edit->setObjectName("mnuChordEditor");
  connect(edit, &QAction::triggered, this, [this] {
    editor_->show();
    editor_->raise();
  });
  QAction* reset = chords->addAction(env_.caption("mnuResetChords", "&Restore Chords"));
  reset->setObjectName("mnuResetChords");
  connect(reset, &QAction::triggered, this, [this] { restoreChords(); });
}

ChordData ChordManager::load(const std::string& name) {
  auto it = cache_.find(name);
  if (it != cache_.end()) return it->second;
  ChordData c;
  try {
    c = LoadChordFile(env_.data, name);
  } catch (const LibraryError&) {
    // Drawn as an empty chart; the status line names the file.
    c.Frets.fill("");
  }
  cache_[name] = c;
  return c;
}

void ChordManager::setViewType(int viewType) { viewMenu_->setViewType(viewType); }

void ChordManager::setLeftHanded(bool on) { viewMenu_->setLeftHanded(on); }

void ChordManager::setSearch(ChordSearch mode) {
  filter_.mode = mode;
  for (auto& [m, action] : mnuSearch_) action->setChecked(m == mode);
  picSearchName_->setVisible(mode == ChordSearch::Name);
  picSearchTab_->setVisible(mode == ChordSearch::Tab);
  picSearchStrings_->setVisible(mode == ChordSearch::Strings);
  if (mode == ChordSearch::Name) txtSearch_->setFocus();
  RefreshFilter();
}

void ChordManager::RefreshFilter() {
  lstRealChords_ = ListChordNames(env_.data);
  cache_.clear();
  filter_.text = txtSearch_->text().toStdString();
  for (int i = 0; i < kChordStrings; ++i)
    filter_.tab[static_cast<size_t>(i)] = txtTabSearch_[static_cast<size_t>(i)]->text().toStdString();
  const Score* score = edit_ ? &edit_->doc.score : nullptr;
  FilterResult r = ApplyChordFilter(
      lstRealChords_, filter_,
      [this](const std::string& n) {
        ChordData c = LoadChordFile(env_.data, n);
        cache_[n] = c;
        return c;
      },
      score);
  lstChords_ = std::move(r.names);
  broken_ = r.broken;
  const auto it = std::find(lstChords_.begin(), lstChords_.end(), current_);
  view_->setSelected(it == lstChords_.end() ? -1 : static_cast<int>(it - lstChords_.begin()));
  RefreshView();
  reportEmpty(r);
}

void ChordManager::reportEmpty(const FilterResult&) {
  // An empty result is said in the status line rather than in a box, so that typing a search
  // is never interrupted.
  const std::string summary = lstChords_.empty()
                                  ? EmptyChordResultText(filter_, lstRealChords_.empty(), env_.text)
                                  : ChordCountText(lstChords_.size(), env_.text);
  status_->setText(StatusText(summary, broken_));
}

QString ChordManager::status() const { return status_->text(); }

int ChordManager::viewType() const { return viewMenu_->viewType(); }

void ChordManager::RefreshView() { view_->setCells(ChordCellGeometry(viewMenu_->viewType()), static_cast<int>(lstChords_.size())); }

void ChordManager::selectChord(int index) {
  if (index < 0 || index >= static_cast<int>(lstChords_.size())) return;
  view_->setSelected(index);
  current_ = lstChords_[static_cast<size_t>(index)];
  editor_->setChord(current_, load(current_));
}

void ChordManager::runMenuItem(int item) {
  if (current_.empty()) return;
  const ChordData chord = load(current_);
  if (item == 0) {
    editor_->PlayChordOnce();
    return;
  }
  if (!edit_) return;
  const bool done = item == 1 ? AddChordAsDiagram(*edit_, current_, chord) : AddChordAsNotes(*edit_, chord);
  if (!done) return;
  // The beat sounds as placed; the player ends it after the beat's length.
  edit_->playBeat();
  if (item == 1) RefreshFilter();  // the chords of the file may have grown
  emit chordAdded();
}

void ChordManager::restoreChords() {
  if (env_.prompter && !env_.prompter->yesNo(env_.str("str_RestoreChordsAreYouSure"), windowTitle().toStdString()))
    return;
  status_->setText(env_.qstr("str_RestoreChordsPleaseWait"));
  setEnabled(false);
  RestoreChords(env_.data);
  RefreshFilter();
  setEnabled(true);
  if (env_.prompter)
    env_.prompter->message(env_.str("str_RestoreChordsDone"), env_.str("str_RestoreChordsChordReset"),
                           MessageIcon::Information);
}

}  // namespace plectaro
