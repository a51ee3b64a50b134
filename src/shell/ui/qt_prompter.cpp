#include "shell/ui/qt_prompter.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/ui/language_ui.h"

namespace plectaro {

namespace {

QString q(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

QMessageBox::Icon qicon(MessageIcon i) {
  switch (i) {
    case MessageIcon::Information: return QMessageBox::Information;
    case MessageIcon::Warning: return QMessageBox::Warning;
    case MessageIcon::Critical: return QMessageBox::Critical;
    case MessageIcon::Question: return QMessageBox::Question;
  }
  return QMessageBox::NoIcon;
}

}  // namespace

QString QtFileFilter(std::string_view filter) {
  const QStringList parts = q(filter).split('|');
  QStringList out;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    if (parts[i].isEmpty()) continue;
    QString patterns = parts[i + 1];
    patterns.replace(';', ' ');
    out << parts[i] + " (" + patterns + ")";
  }
  return out.join(";;");
}

void QtPrompter::message(std::string_view text, std::string_view title, MessageIcon icon) {
  QMessageBox box(qicon(icon), q(title), q(text), QMessageBox::Ok, parent_);
  box.exec();
}

Answer QtPrompter::yesNoCancel(std::string_view text, std::string_view title) {
  QMessageBox box(QMessageBox::Question, q(title), q(text),
                  QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, parent_);
  box.setDefaultButton(QMessageBox::Yes);
  switch (box.exec()) {
    case QMessageBox::Yes: return Answer::Yes;
    case QMessageBox::No: return Answer::No;
    default: return Answer::Cancel;
  }
}

bool QtPrompter::yesNo(std::string_view text, std::string_view title) {
  return QMessageBox::question(parent_, q(title), q(text), QMessageBox::Yes | QMessageBox::No,
                               QMessageBox::No) == QMessageBox::Yes;
}

std::optional<std::string> QtPrompter::textInput(std::string_view prompt, std::string_view title,
                                                 bool secret) {
  // The password question is its own small window, so that a language file can word it.
  QDialog dlg(parent_);
  dlg.setObjectName(secret ? "ntne_frmPassword" : "dlgTextInput");
  dlg.setWindowTitle(q(title));
  auto* layout = new QVBoxLayout(&dlg);
  auto* label = new QLabel(q(prompt), &dlg);
  label->setObjectName("lblPrompt");
  auto* edit = new QLineEdit(&dlg);
  edit->setObjectName("txtPassword");
  if (secret) edit->setEchoMode(QLineEdit::Password);
  auto* buttons = new QDialogButtonBox(&dlg);
  QPushButton* ok = buttons->addButton(QDialogButtonBox::Ok);
  QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
  ok->setObjectName("cmdOK");
  cancel->setObjectName("cmdCancel");
  if (secret && messages_) {
    ok->setText(q(messages_->text("ntne_frmPassword", "cmdOK")));
    cancel->setText(q(messages_->text("ntne_frmPassword", "cmdCancel")));
  }
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dlg, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dlg, &QDialog::reject);
  layout->addWidget(label);
  layout->addWidget(edit);
  layout->addWidget(buttons);
  dlg.resize(360, dlg.sizeHint().height());
  if (dlg.exec() != QDialog::Accepted) return std::nullopt;
  return edit->text().toStdString();
}

std::optional<std::string> QtPrompter::openFileName(std::string_view title,
                                                    std::string_view filter,
                                                    std::string_view folder) {
  const QString f =
      QFileDialog::getOpenFileName(parent_, StripAmpersand(std::string(title)), q(folder),
                                   QtFileFilter(filter));
  if (f.isEmpty()) return std::nullopt;
  return f.toStdString();
}

std::optional<std::string> QtPrompter::saveFileName(std::string_view title,
                                                    std::string_view filter,
                                                    std::string_view suggested) {
  // The file commands ask about an existing file themselves, in the user's language.
  const QString f = QFileDialog::getSaveFileName(parent_, StripAmpersand(std::string(title)),
                                                 q(suggested), QtFileFilter(filter), nullptr,
                                                 QFileDialog::DontConfirmOverwrite);
  if (f.isEmpty()) return std::nullopt;
  return f.toStdString();
}

}  // namespace plectaro
