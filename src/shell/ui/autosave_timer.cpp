#include "shell/ui/autosave_timer.h"

#include <QTimer>
#include <ctime>
#include <memory>

#include "shell/session.h"

namespace plectaro {

void StartAutosave(QObject* owner, Session& session) {
  auto* timer = new QTimer(owner);
  timer->setObjectName("tmrAutosave");
  timer->setInterval(60 * 1000);
  // Minutes since the last write; a coarse timer keeps the editor's wake-ups rare.
  auto minutes = std::make_shared<int>(0);
  QObject::connect(timer, &QTimer::timeout, owner, [&session, minutes] {
    const int every = session.autosaveMinutes();
    if (every <= 0 || ++*minutes < every) return;
    *minutes = 0;
    session.autosaveNow(std::time(nullptr));
  });
  timer->start();
}

}  // namespace plectaro
