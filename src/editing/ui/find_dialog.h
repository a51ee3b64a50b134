// ntne_frmFindReplace (Edit > Find and Replace, Ctrl+F): a small window that stays open
// beside the score. Find Next moves the cursor to the next match; Replace All changes every
// match as one undo step and says how many terms it replaced.
#pragma once

#include <QDialog>
#include <functional>

#include "editing/edit_context.h"
#include "editing/find_replace.h"

class QAction;
class QCheckBox;
class QComboBox;
class QLineEdit;

namespace plectaro {

class FindReplaceDialog : public QDialog {
  Q_OBJECT
 public:
  FindReplaceDialog(EditContext& ctx, QWidget* parent = nullptr);
  FindRequest request() const;

  QLineEdit* txtFind;
  QLineEdit* txtReplace;

 private:
  EditContext& ctx_;
  QCheckBox* texts_;
  QCheckBox* lyrics_;
  QCheckBox* gotos_;
  QCheckBox* frets_;
  QComboBox* string_;
  QCheckBox* matchCase_;
  QCheckBox* allTracks_;
};

// Enables Edit > Find and Replace; the window is made on first use and kept.
void ConnectFindMenu(const std::function<QAction*(const QString&)>& find, QWidget* window, EditContext& ctx);

}  // namespace plectaro
