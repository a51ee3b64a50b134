#include "editing/ui/shortcuts_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include "editing/key_map.h"

namespace plectaro {

namespace {

// How a key is shown: the keypad's plus and minus spelled out.
QString keyText(const char* keys) {
  QString k = QString::fromLatin1(keys);
  if (k == "+" || k == "-") return "Num " + k;
  if (k == "Shift++" || k == "Shift+-") return "Shift+Num " + k.right(1);
  return k;
}

}  // namespace

void ShowShortcutKeys(QWidget* parent) {
  QDialog d(parent);
  d.setObjectName("ntne_frmShortcuts");
  d.setWindowTitle("Shortcut Keys");
  auto* l = new QVBoxLayout(&d);
  const auto& table = ShortcutTable();
  auto* grid = new QTableWidget(0, 2, &d);
  grid->setObjectName("grdShortcuts");
  grid->setHorizontalHeaderLabels({"Action", "Key"});
  grid->verticalHeader()->hide();
  grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid->setSelectionMode(QAbstractItemView::NoSelection);
  int group = table.empty() ? 0 : table.front().group;
  for (const ShortcutEntry& e : table) {
    if (e.group != group) {  // a blank row between groups
      grid->insertRow(grid->rowCount());
      group = e.group;
    }
    const int row = grid->rowCount();
    grid->insertRow(row);
    grid->setItem(row, 0, new QTableWidgetItem(QString::fromLatin1(e.text)));
    grid->setItem(row, 1, new QTableWidgetItem(keyText(e.keys)));
  }
  grid->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  grid->resizeColumnToContents(1);
  grid->setMinimumSize(420, 520);
  l->addWidget(grid);
  l->addWidget(new QLabel("* normal tracks only", &d));
  auto* box = new QDialogButtonBox(QDialogButtonBox::Close, &d);
  QObject::connect(box, &QDialogButtonBox::rejected, &d, &QDialog::reject);
  l->addWidget(box);
  d.exec();
}

}  // namespace plectaro
