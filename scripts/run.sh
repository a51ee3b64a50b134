#!/usr/bin/env bash
# Installs what is missing, builds, and opens the editor on a demo song with the built-in
# synthesizer. Extra arguments go to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
./scripts/build.sh debug
demo=data/examples/riff.plm
if [[ -x build/debug/app/gui/plectaro ]]; then
  exec build/debug/app/gui/plectaro "${@:-$demo}"
fi
# Until the editor window lands, show what the demo song holds.
exec build/debug/app/cli/plectaro-cli info "${1:-$demo}"
