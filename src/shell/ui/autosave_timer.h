// The editor's autosave clock: writes the session's recovery file at the interval the settings
// ask for.
#pragma once

class QObject;

namespace plectaro {

class Session;

// Runs for as long as `owner` lives. The interval is read at every minute's tick, so a change in
// the Options takes effect without a restart, and 0 turns autosave off.
void StartAutosave(QObject* owner, Session& session);

}  // namespace plectaro
