// Light or dark, as the desktop is. Qt takes the palette from the desktop's platform theme; on
// desktops it has no theme plugin for, a user who chose a dark GTK theme would still get a
// light window. This reads that choice and gives the window a dark palette to match.
#pragma once

#include <QPalette>
#include <string_view>

class QApplication;

namespace plectaro {

// Whether a GTK theme name ("Adwaita:dark", "Adwaita-dark", "Yaru-Dark") asks for dark.
bool ThemeNameIsDark(std::string_view gtkTheme);
// Whether a palette is already a dark one (light text on a dark window).
bool PaletteIsDark(const QPalette& p);
// The dark palette the window takes when the desktop asks for dark and the platform gave light.
QPalette DarkPalette();
// Applies DarkPalette (with the Fusion style, which draws every part from the palette) when
// $GTK_THEME asks for dark and the palette in force is light. Call once, before any window.
void FollowDesktopPalette(QApplication& app);

}  // namespace plectaro
