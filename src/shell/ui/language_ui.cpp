#include "shell/ui/language_ui.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>
#include <QWidget>

namespace plectaro {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

QString StripAmpersand(const std::string& caption) {
  QString s = q(caption);
  s.replace(QLatin1String("&&"), QLatin1String("\x01"));
  s.remove('&');
  s.replace(QLatin1Char('\x01'), QLatin1Char('&'));
  return s;
}

void ApplyTexts(QWidget* form, const LanguageTexts& texts) {
  if (!form) return;
  auto textOf = [&](const QString& name) -> const std::string* {
    if (name.isEmpty()) return nullptr;
    auto it = texts.find(name.toStdString());
    return it == texts.end() || it->second.empty() ? nullptr : &it->second;
  };
  if (auto t = textOf(QStringLiteral("Caption"))) form->setWindowTitle(q(*t));
  for (QMenu* m : form->findChildren<QMenu*>())
    if (auto t = textOf(m->objectName())) m->setTitle(q(*t));
  for (QAction* a : form->findChildren<QAction*>())
    if (auto t = textOf(a->objectName())) a->setText(q(*t));
  for (QAbstractButton* b : form->findChildren<QAbstractButton*>())
    if (auto t = textOf(b->objectName())) b->setText(q(*t));
  for (QLabel* l : form->findChildren<QLabel*>())
    if (auto t = textOf(l->objectName())) l->setText(q(*t));
  for (QGroupBox* g : form->findChildren<QGroupBox*>())
    if (auto t = textOf(g->objectName())) g->setTitle(q(*t));
  for (QTabWidget* tabs : form->findChildren<QTabWidget*>())
    for (int i = 0; i < tabs->count(); ++i)
      if (auto t = textOf(tabs->widget(i)->objectName())) tabs->setTabText(i, q(*t));
}

void LoadLanguage(QWidget* form, const std::filesystem::path& languageFile) {
  const std::string name = form->objectName().toStdString();
  ApplyTexts(form, EnglishTexts(name));
  ApplyTexts(form, LoadLanguageFile(languageFile, name));
}

}  // namespace plectaro
