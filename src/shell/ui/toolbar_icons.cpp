#include "shell/ui/toolbar_icons.h"

#include <QAction>
#include <QEvent>
#include <QFile>
#include <QMainWindow>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <map>

namespace plectaro {

QString ThemeIconName(const QString& action) {
  static const std::map<QString, QString> names = {
      {"mnuFileNew", "document-new"},          {"mnuFileOpen", "document-open"},
      {"mnuFileSave", "document-save"},        {"mnuFilePrint", "document-print"},
      {"mnuFileProperties", "document-properties"},
      {"mnuSoundPlayFromHere", "media-playback-start"},
      {"mnuSoundStop", "media-playback-stop"}, {"mnuBarCut", "edit-cut"},
      {"mnuBarCopy", "edit-copy"},             {"mnuBarPaste", "edit-paste"},
      {"mnuBarFirst", "go-first"},             {"mnuBarPrevious", "go-previous"},
      {"mnuBarNext", "go-next"},               {"mnuBarLast", "go-last"},
  };
  const auto it = names.find(action);
  return it == names.end() ? QString() : it->second;
}

QIcon TintedIcon(const QByteArray& svg, const QColor& color) {
  QByteArray painted = svg;
  painted.replace("currentColor", color.name().toLatin1());
  QSvgRenderer renderer(painted);
  QIcon icon;
  if (!renderer.isValid()) return icon;
  for (int size : {16, 20, 24, 32, 48}) {
    QPixmap pm(size, size);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    renderer.render(&p);
    p.end();
    icon.addPixmap(pm);
  }
  return icon;
}

ToolbarIcons::ToolbarIcons(QMainWindow* window, QStringList actions)
    : QObject(window), window_(window), actions_(std::move(actions)) {
  window_->installEventFilter(this);
  apply();
}

bool ToolbarIcons::eventFilter(QObject* watched, QEvent* event) {
  if (watched == window_ && event->type() == QEvent::PaletteChange) apply();
  return false;
}

void ToolbarIcons::apply() {
  const QColor ink = window_->palette().color(QPalette::ButtonText);
  for (const QString& name : actions_) {
    QAction* a = window_->findChild<QAction*>(name);
    if (!a) continue;
    const QString theme = ThemeIconName(name);
    if (!theme.isEmpty() && QIcon::hasThemeIcon(theme)) {
      a->setIcon(QIcon::fromTheme(theme));
      continue;
    }
    QFile f(":/icons/toolbar/" + name + ".svg");
    if (f.open(QIODevice::ReadOnly)) a->setIcon(TintedIcon(f.readAll(), ink));
  }
}

}  // namespace plectaro
