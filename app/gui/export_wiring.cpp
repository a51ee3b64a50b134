#include "export_wiring.h"

#include <algorithm>

#include "exchange/ui/export_windows.h"
#include "playback/fluidsynth_out.h"
#include "rendering/ui/print_windows.h"
#include "shell/session.h"
#include "shell/ui/document_view.h"
#include "shell/ui/main_window.h"

namespace plectaro {

void WireExports(MainWindow& window, Session& session) {
  // Paper output is never stretched to the window: it always has the page setup's paper.
  auto layout = [&session] {
    LayoutSettings s;
    s.MinTabX = static_cast<int16_t>(std::clamp(session.ini().MinTabX, 1, 1000));
    s.MaxTabX = static_cast<int16_t>(std::clamp(session.ini().MaxTabX, 1, 1000));
    return s;
  };
  auto text = [&session](std::string_view key) { return session.messages().str(key); };
  const PageSetup setup = LoadPageSetup(session.settings());
  window.view()->setPaper(setup.PaperSizeIndex, setup.Landscape);

  PrintEnvironment print{session.doc(), session.settings(), layout, text,
                         [&session](std::string_view form, std::string_view key) {
                           return session.messages().text(form, key);
                         },
                         [&window](const PageSetup& chosen) {
                           window.view()->setPaper(chosen.PaperSizeIndex, chosen.Landscape);
                           window.DrawDocument();
                         }};
  auto find = [&window](const QString& name) { return window.action(name); };
  ConnectPrintMenus(find, &window, print);

  ExportEnvironment exports{session.doc(), session.settings(), session.prompter(),
                            [print] { return print.pageSettings(); }, text,
                            [&session] {
                              PlaybackOptions o;
                              o.CountIn = session.ini().CountIn;
                              o.Metronome = session.ini().Metronome;
                              return o;
                            },
                            FindSoundFont(&session.settings()),
                            [&session] {
                              TextExportOptions o;
                              o.CopyrightWarning = session.ini().CopyrightWarning;
                              o.MaxLineLength = session.ini().MaxLineLength;
                              return o;
                            }};
  ConnectExportMenus(find, &window, exports);
}

}  // namespace plectaro
