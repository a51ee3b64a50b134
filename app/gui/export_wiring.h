// File > Print, Print Preview, Page Setup and the export windows, wired to the session.
#pragma once

namespace plectaro {

class MainWindow;
class Session;

// Connects the menu items and gives the document view the paper of the page setup.
void WireExports(MainWindow& window, Session& session);

}  // namespace plectaro
