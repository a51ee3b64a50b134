#include "editing/ui/find_dialog.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace plectaro {

FindReplaceDialog::FindReplaceDialog(EditContext& ctx, QWidget* parent) : QDialog(parent), ctx_(ctx) {
  setObjectName("ntne_frmFindReplace");
  setWindowTitle("Find and Replace");
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  txtFind = new QLineEdit(this);
  txtFind->setObjectName("txtFind");
  txtReplace = new QLineEdit(this);
  txtReplace->setObjectName("txtReplace");
  form->addRow("Find what:", txtFind);
  form->addRow("Replace with:", txtReplace);
  layout->addLayout(form);
  const auto check = [this](const char* name, const char* text, bool on) {
    auto* c = new QCheckBox(text, this);
    c->setObjectName(name);
    c->setChecked(on);
    return c;
  };
  texts_ = check("chkTexts", "Beat texts", true);
  lyrics_ = check("chkLyrics", "Lyrics", true);
  gotos_ = check("chkGoto", "Go-to names", true);
  frets_ = check("chkFrets", "Fret numbers on", false);
  string_ = new QComboBox(this);
  string_->setObjectName("cmbString");
  string_->addItem("any string");
  for (int s = 1; s <= kMaxStrings; ++s) string_->addItem(QString("string %1").arg(s));
  string_->setEnabled(false);
  // Frets are matched whole, so looking for them and for words at once makes no sense.
  connect(frets_, &QCheckBox::toggled, this, [this](bool on) {
    string_->setEnabled(on);
    for (QCheckBox* c : {texts_, lyrics_, gotos_}) c->setEnabled(!on);
  });
  for (QCheckBox* c : {texts_, lyrics_, gotos_}) layout->addWidget(c);
  auto* fretRow = new QHBoxLayout;
  fretRow->addWidget(frets_);
  fretRow->addWidget(string_, 1);
  layout->addLayout(fretRow);
  matchCase_ = check("chkMatchCase", "Match case", false);
  allTracks_ = check("chkAllTracks", "All tracks", false);
  layout->addWidget(matchCase_);
  layout->addWidget(allTracks_);
  auto* buttons = new QHBoxLayout;
  const auto button = [&](const char* name, const char* text) {
    auto* b = new QPushButton(text, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    buttons->addWidget(b);
    return b;
  };
  QPushButton* next = button("cmdFindNext", "&Find Next");
  next->setDefault(true);
  QPushButton* all = button("cmdReplaceAll", "Replace &All");
  QPushButton* close = button("cmdClose", "Close");
  layout->addLayout(buttons);
  connect(next, &QPushButton::clicked, this, [this] { FindNext(ctx_, request()); });
  connect(all, &QPushButton::clicked, this, [this] { ReplaceAll(ctx_, request()); });
  connect(close, &QPushButton::clicked, this, &QDialog::hide);
}

FindRequest FindReplaceDialog::request() const {
  FindRequest r;
  r.What = txtFind->text().toStdString();
  r.With = txtReplace->text().toStdString();
  r.Frets = frets_->isChecked();
  r.Texts = !r.Frets && texts_->isChecked();
  r.Lyrics = !r.Frets && lyrics_->isChecked();
  r.GotoNames = !r.Frets && gotos_->isChecked();
  r.String = string_->currentIndex() - 1;
  r.MatchCase = matchCase_->isChecked();
  r.AllTracks = allTracks_->isChecked();
  return r;
}

void ConnectFindMenu(const std::function<QAction*(const QString&)>& find, QWidget* window, EditContext& ctx) {
  QAction* a = find("mnuEditFindReplace");
  if (!a) return;
  a->setEnabled(true);
  FindReplaceDialog* dialog = nullptr;
  QObject::connect(a, &QAction::triggered, window, [dialog, window, &ctx]() mutable {
    if (!dialog) dialog = new FindReplaceDialog(ctx, window);
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    dialog->txtFind->setFocus();
    dialog->txtFind->selectAll();
  });
}

}  // namespace plectaro
