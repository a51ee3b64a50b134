#include "reference/ui/scale_manager.h"

#include <algorithm>

#include <QActionGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSpinBox>
#include <QVBoxLayout>

#include "reference/place_commands.h"
#include "reference/ui/library_view.h"
#include "reference/ui/view_menu.h"
#include "shell/ui/language_ui.h"
#include "reference/ui/scale_editor.h"

namespace plectaro {

namespace {

const std::array<const char*, kViewTypes> kViewNames = {"&Notation Only", "&Chart Only", "&Tablature Only", "N&otation and Tab",
                                            "Not&ation and Chart", "C&hart and Tab", "A&ll"};

}  // namespace

ScaleManager::ScaleManager(ReferenceEnv& env, EditContext* edit, QWidget* parent)
    : QWidget(parent), env_(env), edit_(edit) {
  setObjectName("frmScaleManager");
  // The title comes from the window's section of the language file (English when none).
  LoadLanguage(this, env_.languageFile);
  editor_ = new ScaleEditor(env_, this);
  connect(editor_, &ScaleEditor::saved, this, [this] { RefreshFilter(); });

  status_ = MakeStatusLine(this);
  menuBar_ = new QMenuBar(this);
  buildMenus();
  view_ = new LibraryView(
      [this](Surface& s, Point origin, int index) {
        const std::string& name = lstScales_[static_cast<size_t>(index)];
        DrawScaleCell(s, origin, ScaleCellGeometry(viewMenu_->viewType()), title(name), load(name), key_, CellStyle{viewMenu_->leftHanded()});
      },
      this);
  connect(view_, &LibraryView::cellClicked, this, [this](int index, bool right, QPoint at) {
    selectScale(index);
    if (right) {
      QMenu popup(this);
      popup.addAction(env_.caption("cmdPlay", "&Play"), this, [this] { editor_->play(); });
      popup.addAction(env_.qstr("str_AddtoMusicFile"), this, [this] { addToMusicFile(); })->setEnabled(edit_ != nullptr);
      popup.exec(at);
      return;
    }
    editor_->play();
  });

  picSearch_ = new QWidget(this);
  picSearch_->setObjectName("picSearch");
  auto* row = new QHBoxLayout(picSearch_);
  row->setContentsMargins(4, 2, 4, 2);
  txtSearch_ = new QLineEdit(picSearch_);
  txtSearch_->setObjectName("txtSearch");
  txtSearch_->setClearButtonEnabled(true);
  txtStrings_ = new QSpinBox(picSearch_);
  txtStrings_->setObjectName("txtStrings");
  txtStrings_->setRange(1, 7);
  txtStrings_->setValue(6);
  row->addWidget(txtSearch_);
  row->addWidget(txtStrings_);
  connect(txtSearch_, &QLineEdit::textChanged, this, [this] { RefreshFilter(); });
  connect(txtStrings_, &QSpinBox::valueChanged, this, [this] { RefreshFilter(); });


  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->setMenuBar(menuBar_);
  layout->addWidget(picSearch_);
  layout->addWidget(view_, 1);
  layout->addWidget(status_);

  CreateAllScales(env_.data);
  mnuAscend_->setChecked(true);
  mnuLow_->setChecked(true);
  setKey(ScaleKeyItem(0));
  RefreshView();
  setSearch(ScaleSearch::Name);
  resize(800, 600);
}

void ScaleManager::buildMenus() {
  auto add = [this](QMenu* m, const char* name, const char* english, bool checkable = false) {
    QAction* a = m->addAction(env_.caption(name, english));
    a->setObjectName(name);
    a->setCheckable(checkable);
    return a;
  };
  viewMenu_ = new ViewMenu(menuBar_, env_, "Scales", kViewNames);
  connect(viewMenu_, &ViewMenu::changed, this, [this] { RefreshView(); });

  QMenu* search = menuBar_->addMenu(env_.caption("mnuSearch", "&Search"));
  search->setObjectName("mnuSearch");
  const std::tuple<ScaleSearch, const char*, const char*> modes[] = {
      {ScaleSearch::Name, "mnuSearchName", "By &Name"},
      {ScaleSearch::Keywords, "mnuSearchKeywords", "By &Keywords"},
      {ScaleSearch::Strings, "mnuSearchStrings", "By &String Number"},
  };
  for (const auto& [mode, name, english] : modes) {
    QAction* a = add(search, name, english, true);
    mnuSearch_[mode] = a;
    connect(a, &QAction::triggered, this, [this, mode = mode] { setSearch(mode); });
  }
  search->addSeparator();
  connect(add(search, "mnuSearchClear", "&Clear"), &QAction::triggered, this, [this] {
    txtSearch_->clear();
    txtStrings_->setValue(6);
  });

  QMenu* key = menuBar_->addMenu(env_.caption("mnuKeyMenu", "&Key"));
  key->setObjectName("mnuKeyMenu");
  auto* keys = new QActionGroup(this);
  for (int i = 0; i < 12; ++i) {
    QAction* a = key->addAction(kScaleKeys[static_cast<size_t>(i)]);
    a->setObjectName(QString("mnuKey%1").arg(i));
    a->setCheckable(true);
    keys->addAction(a);
    mnuKey_[static_cast<size_t>(i)] = a;
    connect(a, &QAction::triggered, this, [this, i] { setKey(i); });
  }
  QMenu* octave = key->addMenu(env_.caption("mnuOctave", "&Octave"));
  auto* octaves = new QActionGroup(this);
  mnuHigh_ = add(octave, "mnuHigh", "&High", true);
  mnuLow_ = add(octave, "mnuLow", "&Low", true);
  octaves->addAction(mnuHigh_);
  octaves->addAction(mnuLow_);
  connect(mnuHigh_, &QAction::triggered, this, [this] { setHigh(true); });
  connect(mnuLow_, &QAction::triggered, this, [this] { setHigh(false); });
  QMenu* progression = key->addMenu(env_.caption("mnuProgression", "&Progression"));
  auto* directions = new QActionGroup(this);
  mnuAscend_ = add(progression, "mnuAscend", "&Ascending", true);
  mnuDescending_ = add(progression, "mnuDescending", "&Descending", true);
  directions->addAction(mnuAscend_);
  directions->addAction(mnuDescending_);
  connect(mnuAscend_, &QAction::triggered, this, [this] { setAscending(true); });
  connect(mnuDescending_, &QAction::triggered, this, [this] { setAscending(false); });

  QMenu* scales = menuBar_->addMenu(env_.caption("mnuScales", "S&cales"));
  scales->setObjectName("mnuScales");
  connect(add(scales, "mnuScaleEditor", "Scale &Editor..."), &QAction::triggered, this, [this] {
    editor_->show();
    editor_->raise();
  });
  mnuAdd_ = scales->addAction(env_.qstr("str_AddtoMusicFile"));
  mnuAdd_->setObjectName("mnuAddToMusicFile");
  mnuAdd_->setEnabled(edit_ != nullptr);
  connect(mnuAdd_, &QAction::triggered, this, [this] { addToMusicFile(); });
  scales->addSeparator();
  connect(add(scales, "mnuRestore", "&Restore Scales"), &QAction::triggered, this, [this] { restoreScales(); });
}

ScaleData ScaleManager::load(const std::string& name) {
  auto it = cache_.find(name);
  if (it != cache_.end()) return it->second;
  ScaleData s;
  try {
    s = LoadScaleFile(env_.data, name);
  } catch (const LibraryError&) {
  }
  cache_[name] = s;
  return s;
}

std::string ScaleManager::title(const std::string& name) const {
  return name + " - " + env_.str("str_KeyOf") + " " + kScaleKeys[static_cast<size_t>(ScaleKeyItem(key_.keyOffset))];
}

void ScaleManager::setViewType(int viewType) { viewMenu_->setViewType(viewType); }

void ScaleManager::setLeftHanded(bool on) { viewMenu_->setLeftHanded(on); }

void ScaleManager::setSearch(ScaleSearch mode) {
  filter_.mode = mode;
  for (auto& [m, action] : mnuSearch_) action->setChecked(m == mode);
  txtSearch_->setVisible(mode != ScaleSearch::Strings);
  txtStrings_->setVisible(mode == ScaleSearch::Strings);
  RefreshFilter();
}

void ScaleManager::setKey(int item) {
  item = std::clamp(item, 0, 11);
  mnuKey_[static_cast<size_t>(item)]->setChecked(true);
  key_.keyOffset = ScaleKeyOffset(item);
  if (!current_.empty()) editor_->setScale(current_, load(current_), key_);
  view_->update();
}

void ScaleManager::setHigh(bool high) {
  key_.high = high;
  (high ? mnuHigh_ : mnuLow_)->setChecked(true);
  // The key is applied again from its menu item, found back from the offset.
  setKey(ScaleKeyItem(key_.keyOffset));
}

void ScaleManager::setAscending(bool ascending) {
  key_.ascending = ascending;
  (ascending ? mnuAscend_ : mnuDescending_)->setChecked(true);
  if (!current_.empty()) editor_->setScale(current_, load(current_), key_);
  view_->update();
}

void ScaleManager::RefreshFilter() {
  lstRealScales_ = ListScaleNames(env_.data);
  cache_.clear();
  filter_.text = txtSearch_->text().toStdString();
  filter_.numStrings = txtStrings_->value();
  FilterResult r = ApplyScaleFilter(lstRealScales_, filter_, [this](const std::string& n) {
    ScaleData s = LoadScaleFile(env_.data, n);
    cache_[n] = s;
    return s;
  });
  lstScales_ = std::move(r.names);
  const auto it = std::find(lstScales_.begin(), lstScales_.end(), current_);
  view_->setSelected(it == lstScales_.end() ? -1 : static_cast<int>(it - lstScales_.begin()));
  RefreshView();
  std::string summary = ScaleCountText(lstScales_.size(), env_.text);
  // As in the Chord Manager, an empty result is said in the status line.
  if (lstScales_.empty()) {
    const auto [head, body] = EmptyScaleResultText(filter_, lstRealScales_.empty(), env_.text);
    summary = head + ": " + body;
  }
  status_->setText(StatusText(summary, r.broken));
}

QString ScaleManager::status() const { return status_->text(); }

int ScaleManager::viewType() const { return viewMenu_->viewType(); }

void ScaleManager::RefreshView() { view_->setCells(ScaleCellGeometry(viewMenu_->viewType()), static_cast<int>(lstScales_.size())); }

void ScaleManager::selectScale(int index) {
  if (index < 0 || index >= static_cast<int>(lstScales_.size())) return;
  view_->setSelected(index);
  current_ = lstScales_[static_cast<size_t>(index)];
  editor_->setScale(current_, load(current_), key_);
}

bool ScaleManager::addToMusicFile() {
  if (!edit_ || current_.empty()) return false;
  return AddScaleAsNotes(*edit_, load(current_), key_);
}

void ScaleManager::restoreScales() {
  if (env_.prompter && !env_.prompter->yesNo(env_.str("str_ConfirmScaleRestore"), windowTitle().toStdString()))
    return;
  status_->setText(env_.qstr("str_RestoringNow"));
  setEnabled(false);
  RestoreScales(env_.data);
  RefreshFilter();
  setEnabled(true);
  if (env_.populateScaleList) env_.populateScaleList();
  if (env_.prompter)
    env_.prompter->message(env_.str("str_RestoredOK"), env_.str("str_ScaleReset"), MessageIcon::Information);
}

}  // namespace plectaro
