// The icons of the toolbar buttons. A button takes the desktop icon theme's icon where the
// theme has one for its command; every other button gets the program's own drawing (shipped in
// data/icons/toolbar), painted in the palette's text colour so that it shows on a light and on
// a dark desktop alike, and painted again when the palette changes.
#pragma once

#include <QByteArray>
#include <QColor>
#include <QIcon>
#include <QObject>
#include <QString>

class QMainWindow;

namespace plectaro {

// The freedesktop icon name for a command, or "" when the theme has no fitting icon.
QString ThemeIconName(const QString& action);

// An SVG drawing whose "currentColor" is painted in `color`, at the toolbar sizes.
QIcon TintedIcon(const QByteArray& svg, const QColor& color);

// Sets the icons of the window's actions named in `actions`, and again after a palette change.
class ToolbarIcons : public QObject {
  Q_OBJECT
 public:
  ToolbarIcons(QMainWindow* window, QStringList actions);
  void apply();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QMainWindow* window_;
  QStringList actions_;
};

}  // namespace plectaro
