// frmMain: the editor's one main window. It holds the menus, the toolbars, the status bar and
// the document view, and hands every File command to the session's FileCommands.
#pragma once

#include <QMainWindow>
#include <array>
#include <functional>
#include <map>

#include "shell/ini_settings.h"
#include "shell/session.h"

class QLabel;
class QMenu;
class QToolBar;

namespace plectaro {

class DocumentView;
struct ViewStatus;

class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  explicit MainWindow(Session& session);
  ~MainWindow() override;

  // Everything that shows the document: view, status bar, caption, menus.
  void DrawDocument();
  void SetWindowCaption();
  void UpdateRecentFiles();
  DocumentView* view() const { return view_; }
  QAction* action(const QString& name) const;
  QToolBar* toolbar(int index) const { return toolbars_[static_cast<size_t>(index)]; }

  // Restores and stores the toolbars as PL4.ini describes them, and the window's place.
  void restoreToolbars();
  void storeToolbars();

  // Opens a dropped file that a tool takes (a drumbeat, a metronome file); false for others.
  std::function<bool(const std::string& path)> openToolFile;
  // Closes the tool windows when the program ends; false when one of them wants to stay
  // (its file is not saved and the user cancelled).
  std::function<bool()> closeTools;

  void mnuFileProperties_Click();
  void mnuToolsOptions_Click();

 signals:
  // The Options dialog stored new settings (undo levels, playing notes as typed...).
  void settingsApplied();

 protected:
  void closeEvent(QCloseEvent* e) override;
  void dragEnterEvent(QDragEnterEvent* e) override;
  void dropEvent(QDropEvent* e) override;

 private:
  Session& session_;
  DocumentView* view_ = nullptr;
  std::array<QToolBar*, kToolbarCount> toolbars_{};
  std::array<QAction*, kRecentFileCount> recent_{};
  QAction* recentNone_ = nullptr;
  QLabel* sbTiming_ = nullptr;
  QLabel* sbFill_ = nullptr;
  QLabel* sbPages_ = nullptr;
  QLabel* sbTime_ = nullptr;
  bool closing_ = false;

  void buildMenus();
  void buildToolbars();
  void buildStatusBar();
  void moveCursorBar(int to);
  void moveCursorTrack(int delta);
  void showStatus(const ViewStatus& status);
  void applyTexts();
  QMenu* menu(QMenu* parent, const char* name);
  QAction* item(QMenu* menu, const char* name, std::function<void()> fn = nullptr,
                QKeySequence shortcut = {});
  QString str(std::string_view key) const;
};

}  // namespace plectaro
