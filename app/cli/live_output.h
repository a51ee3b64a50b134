// What playing in real time from the command line needs before the first note: a Qt event loop
// for the timers (unless one runs already) and the chosen output device, opened.
#pragma once

#include <QCoreApplication>
#include <memory>

#include "cli.h"
#include "playback/output_devices.h"

namespace plectaro::cli {

struct LiveOutput {
  std::unique_ptr<QCoreApplication> ownApp;  // null when the process had one already
  std::unique_ptr<OutputDevices> devices;
};

// Opens row `deviceRow` of `play --list-devices`; UsageError for a row that is not there. A
// device that could not open is said once on stderr, and play goes on silent.
LiveOutput OpenLiveOutput(Context& ctx, int deviceRow);

}  // namespace plectaro::cli
