// Puts a window's texts on its controls, found by object name: menus and actions, buttons,
// labels, group boxes, tab pages, and "Caption" for the window title.
#pragma once

#include <filesystem>

#include "shell/language.h"

#include <QString>

class QWidget;

namespace plectaro {

void ApplyTexts(QWidget* form, const LanguageTexts& texts);

// The English texts of the window (by its object name), then those of the language file in
// force. A missing or short file leaves the texts the window already has.
void LoadLanguage(QWidget* form, const std::filesystem::path& languageFile);

// "&File" -> "File": for places that show a caption without a shortcut letter.
QString StripAmpersand(const std::string& caption);

}  // namespace plectaro
