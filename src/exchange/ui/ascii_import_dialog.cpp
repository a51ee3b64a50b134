#include "exchange/ui/ascii_import_dialog.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "exchange/qt/web_fetch.h"
#include "score/file_io.h"

namespace plectaro {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

// The choices last used, kept while the program runs, so a second import asks nothing again.
struct Remembered {
  bool details = true;
  bool enforceLength = false;
  int length = kSixteenth;
  bool enforceTiming = false;
  QString timing = "4:4";
  QString accepted = "1234567890-";
  QString address = "http://";
};
Remembered& remembered() {
  static Remembered r;
  return r;
}

}  // namespace

QString AsciiImportDialog::str(std::string_view key) const { return q(edit_.text(key)); }

AsciiImportDialog::AsciiImportDialog(QWidget* parent, EditContext& edit, TabSource source)
    : QDialog(parent), edit_(edit), source_(source) {
  setObjectName("ntne_frmASCIIImport");
  setWindowTitle(str(source == TabSource::Web         ? "str_HTMLIMPORT"
                     : source == TabSource::Clipboard ? "str_CLIPBOARDIMPORT"
                                                      : "str_ASCIIIMPORT"));
  const Remembered& r = remembered();
  auto* l = new QVBoxLayout(this);

  if (source != TabSource::Clipboard) {
    auto* row = new QHBoxLayout;
    txtSource = new QLineEdit(this);
    txtSource->setObjectName(source == TabSource::Web ? "txtAddress" : "txtFile");
    cmdSource = new QPushButton(source == TabSource::Web ? str("str_Download") : tr("Browse..."), this);
    cmdSource->setObjectName(source == TabSource::Web ? "cmdDownload" : "cmdBrowse");
    row->addWidget(new QLabel(source == TabSource::Web ? tr("Web address:") : tr("File:"), this));
    row->addWidget(txtSource, 1);
    row->addWidget(cmdSource);
    l->addLayout(row);
    if (source == TabSource::Web) {
      txtSource->setText(r.address);
      connect(cmdSource, &QPushButton::clicked, this, [this] { ImportHTTP(txtSource->text()); });
      connect(txtSource, &QLineEdit::returnPressed, this, [this] { ImportHTTP(txtSource->text()); });
    } else {
      connect(cmdSource, &QPushButton::clicked, this, [this] {
        auto path = edit_.prompter.openFileName(windowTitle().toStdString(),
                                                "Text Tab|*.txt *.tab|All Files|*|", "");
        if (path && !path->empty()) ImportASCII(q(*path));
      });
      connect(txtSource, &QLineEdit::returnPressed, this, [this] { ImportASCII(txtSource->text()); });
    }
  }
  lblStatus = new QLabel(this);
  lblStatus->setObjectName("lblStatus");
  l->addWidget(lblStatus);

  T = new QPlainTextEdit(this);
  T->setObjectName("T");
  T->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  T->setLineWrapMode(QPlainTextEdit::NoWrap);
  T->setMinimumSize(640, 320);
  l->addWidget(T, 1);

  auto* g = new QGridLayout;
  chkGetFileDetails = new QCheckBox(tr("Read the title, artist and album from the text"), this);
  chkGetFileDetails->setObjectName("chkGetFileDetails");
  chkGetFileDetails->setChecked(r.details);
  g->addWidget(chkGetFileDetails, 0, 0, 1, 2);
  chkEnforceLength = new QCheckBox(tr("Every note has the length"), this);
  chkEnforceLength->setObjectName("chkEnforceLength");
  chkEnforceLength->setChecked(r.enforceLength);
  cmbLen = new QComboBox(this);
  cmbLen->setObjectName("cmbLen");
  for (const char* name : kImportLengthNames) cmbLen->addItem(name);
  cmbLen->setCurrentIndex(r.length);
  g->addWidget(chkEnforceLength, 1, 0);
  g->addWidget(cmbLen, 1, 1);
  chkEnforceTiming = new QCheckBox(tr("Every bar has the time signature"), this);
  chkEnforceTiming->setObjectName("chkEnforceTiming");
  chkEnforceTiming->setChecked(r.enforceTiming);
  txtTiming = new QLineEdit(r.timing, this);
  txtTiming->setObjectName("txtTiming");
  g->addWidget(chkEnforceTiming, 2, 0);
  g->addWidget(txtTiming, 2, 1);
  g->addWidget(new QLabel(tr("Characters kept:"), this), 3, 0);
  txtAcceptedChars = new QLineEdit(r.accepted, this);
  txtAcceptedChars->setObjectName("txtAcceptedChars");
  g->addWidget(txtAcceptedChars, 3, 1);
  l->addLayout(g);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &AsciiImportDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  l->addWidget(buttons);

  if (source == TabSource::Clipboard) ImportCLIPBOARD();
}

void AsciiImportDialog::setText(const std::string& utf8, bool fromWeb) {
  T->setPlainText(q(utf8));
  fromWeb_ = fromWeb;
}

void AsciiImportDialog::ImportASCII(const QString& path) {
  if (txtSource) txtSource->setText(path);
  try {
    setText(DecodeTabText(ReadWholeFile(path.toStdString(), size_t(64) << 20)), false);
    lblStatus->clear();
  } catch (const FileError& e) {
    lblStatus->setText(q(e.what()));
  }
}

void AsciiImportDialog::ImportCLIPBOARD() {
  const QString text = QGuiApplication::clipboard()->text();
  setText(text.toStdString(), false);
}

void AsciiImportDialog::ImportHTTP(const QString& address) {
  if (txtSource) txtSource->setText(address);
  remembered().address = address;
  if (!fetch_) {
    fetch_ = new WebFetch(this);
    connect(fetch_, &WebFetch::progress, this, [this](qint64 got, qint64 total) {
      lblStatus->setText(str("str_Downloading") + " " +
                         (total > 0 ? QString("%1 %").arg(got * 100 / total) : QString("%1 KB").arg(got / 1024)));
    });
    connect(fetch_, &WebFetch::finished, this, [this](const QByteArray& bytes) {
      setText(DecodeTabText(std::string_view(bytes.constData(), static_cast<size_t>(bytes.size()))), true);
      lblStatus->setText(tr("Downloaded %1 KB.").arg((bytes.size() + 1023) / 1024));
      if (cmdSource) cmdSource->setEnabled(true);
    });
    connect(fetch_, &WebFetch::failed, this, [this](const QString& why) {
      lblStatus->setText(str("str_ErrorImporting") + " " + why);
      if (cmdSource) cmdSource->setEnabled(true);
    });
  }
  lblStatus->setText(str("str_Downloading"));
  if (cmdSource) cmdSource->setEnabled(false);
  fetch_->start(address);
}

AsciiImportOptions AsciiImportDialog::options() const {
  AsciiImportOptions o;
  o.GetFileDetails = chkGetFileDetails->isChecked();
  o.EnforceLength = chkEnforceLength->isChecked();
  o.Length = cmbLen->currentIndex();
  o.EnforceTiming = chkEnforceTiming->isChecked();
  o.Timing = txtTiming->text().toStdString();
  o.AcceptedChars = txtAcceptedChars->text().toStdString();
  o.FromWeb = fromWeb_;
  return o;
}

void AsciiImportDialog::accept() {
  if (fetch_ && fetch_->running()) return;
  const AsciiImportOptions o = options();
  if (T->toPlainText().trimmed().isEmpty()) {
    edit_.message(source_ == TabSource::File ? "str_PleaseSpecifyFile" : "str_ErrorImporting",
                  MessageIcon::Warning);
    return;
  }
  int num = 0, den = 0;
  if (o.EnforceTiming && !ParseTiming(o.Timing, num, den)) {
    edit_.message("str_ValidTSPlease", MessageIcon::Warning);
    txtTiming->setFocus();
    return;
  }
  if (!edit_.prompter.yesNo(edit_.text("str_CurrTrackWilLBeLost"), windowTitle().toStdString())) return;

  Remembered& r = remembered();
  r.details = o.GetFileDetails;
  r.enforceLength = o.EnforceLength;
  r.length = o.Length;
  r.enforceTiming = o.EnforceTiming;
  r.timing = txtTiming->text();
  r.accepted = txtAcceptedChars->text();

  const std::string text = T->toPlainText().toStdString();
  const bool done = RunCommand(edit_, [&] {
    Document& doc = edit_.doc;
    try {
      ASCIIToPLM(doc.score, doc.CursorTrack, text, o);
    } catch (const ScoreError& e) {
      throw ScoreError(edit_.text("str_ErrorImporting") + " (" + e.what() + ")");
    }
    doc.CursorBar = 0;
    doc.CursorBeat = 0;
  }, "Import Tab");
  if (done) QDialog::accept();
}

}  // namespace plectaro
