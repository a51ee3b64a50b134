// The window's side of text tab: File > Import > ASCII Tab File, Tab from a Web Page and Tab
// from the Clipboard (also Ctrl+Shift+V), and File > Export > ASCII Tab and HTML.
#pragma once

#include <QString>
#include <functional>

#include "editing/edit_context.h"
#include "exchange/text_tab_export.h"

class QAction;
class QWidget;

namespace plectaro {

enum class TabSource { File, Clipboard, Web };

// `exportOptions` reads the (C) warning and line length settings at the time of each export.
void ConnectTextTabMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent,
                         EditContext& edit, std::function<TextExportOptions()> exportOptions);

// Opens the import dialog; for the web, with `address` filled in and its download started.
void ShowTabImport(QWidget* parent, EditContext& edit, TabSource source, const QString& address = {});

}  // namespace plectaro
