// ntne_frmASCIIImport: the text to import in an editable box `T`, where it came from (a file,
// the clipboard or a web page), and the choices of the import. OK converts the text into the
// current track through the command guard; a failed import leaves the document as it was.
#pragma once

#include <QDialog>

#include "editing/edit_context.h"
#include "exchange/text_tab_import.h"
#include "exchange/ui/text_tab_menus.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace plectaro {

class WebFetch;

class AsciiImportDialog : public QDialog {
  Q_OBJECT
 public:
  AsciiImportDialog(QWidget* parent, EditContext& edit, TabSource source);

  // Loads a text file into T.
  void ImportASCII(const QString& path);
  // The clipboard's text into T.
  void ImportCLIPBOARD();
  // Starts the download of a page into T; the status label follows it.
  void ImportHTTP(const QString& address);

  AsciiImportOptions options() const;
  QPlainTextEdit* text() const { return T; }
  QLabel* status() const { return lblStatus; }

  void accept() override;

 private:
  EditContext& edit_;
  TabSource source_;
  bool fromWeb_ = false;
  WebFetch* fetch_ = nullptr;

  QLineEdit* txtSource = nullptr;
  QPushButton* cmdSource = nullptr;
  QLabel* lblStatus = nullptr;
  QPlainTextEdit* T = nullptr;
  QCheckBox* chkGetFileDetails = nullptr;
  QCheckBox* chkEnforceLength = nullptr;
  QComboBox* cmbLen = nullptr;
  QCheckBox* chkEnforceTiming = nullptr;
  QLineEdit* txtTiming = nullptr;
  QLineEdit* txtAcceptedChars = nullptr;

  void setText(const std::string& utf8, bool fromWeb);
  QString str(std::string_view key) const;
};

}  // namespace plectaro
