#include "shell/ui/desktop_palette.h"

#include <QApplication>
#include <QStyleFactory>
#include <cstdlib>
#include <string>

namespace plectaro {

bool ThemeNameIsDark(std::string_view gtkTheme) {
  std::string lower(gtkTheme);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  // "Name:dark" is GTK's own way to pick the dark variant; many themes ship "Name-dark".
  return lower.ends_with(":dark") || lower.find("-dark") != std::string::npos;
}

bool PaletteIsDark(const QPalette& p) {
  return p.color(QPalette::Window).lightness() < p.color(QPalette::WindowText).lightness();
}

QPalette DarkPalette() {
  QPalette p;
  const QColor window(45, 45, 48), base(30, 30, 32), text(225, 225, 225), disabled(128, 128, 128);
  p.setColor(QPalette::Window, window);
  p.setColor(QPalette::WindowText, text);
  p.setColor(QPalette::Base, base);
  p.setColor(QPalette::AlternateBase, window);
  p.setColor(QPalette::ToolTipBase, window);
  p.setColor(QPalette::ToolTipText, text);
  p.setColor(QPalette::PlaceholderText, disabled);
  p.setColor(QPalette::Text, text);
  p.setColor(QPalette::Button, window);
  p.setColor(QPalette::ButtonText, text);
  p.setColor(QPalette::BrightText, QColor(255, 90, 90));
  p.setColor(QPalette::Light, QColor(70, 70, 74));
  p.setColor(QPalette::Midlight, QColor(58, 58, 62));
  p.setColor(QPalette::Mid, QColor(38, 38, 40));
  p.setColor(QPalette::Dark, QColor(22, 22, 24));
  p.setColor(QPalette::Shadow, Qt::black);
  p.setColor(QPalette::Highlight, QColor(53, 132, 228));
  p.setColor(QPalette::HighlightedText, Qt::white);
  p.setColor(QPalette::Link, QColor(110, 170, 255));
  for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    p.setColor(QPalette::Disabled, role, disabled);
  return p;
}

void FollowDesktopPalette(QApplication& app) {
  const char* theme = std::getenv("GTK_THEME");
  if (!theme || !ThemeNameIsDark(theme) || PaletteIsDark(QApplication::palette())) return;
  if (QStyle* fusion = QStyleFactory::create("Fusion")) QApplication::setStyle(fusion);
  app.setPalette(DarkPalette());
}

}  // namespace plectaro
