// File > Import > MIDI File, File > Export > MIDI File and File > Batch Convert.
#pragma once

#include <QString>
#include <functional>

class QAction;
class QWidget;

namespace plectaro {

class Session;

struct ExchangeHooks {
  std::function<void()> drawDocument;  // the window shows the document again
};

// Connects and enables the items that `find` returns (null for items the window lacks).
void ConnectExchangeMenus(const std::function<QAction*(const QString& name)>& find, QWidget* parent, Session& session,
                          ExchangeHooks hooks);

// The import command itself: asks before an edited document is replaced, then the file, then
// the tracks. `path` given skips the file question (tests, files dropped on the window).
void MIDIImport(QWidget* parent, Session& session, const ExchangeHooks& hooks, const QString& path = {});
// The export command: asks for the file and writes it.
void MIDIExport(QWidget* parent, Session& session, const QString& path = {});

}  // namespace plectaro
