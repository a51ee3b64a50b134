#!/usr/bin/env bash
# Installs what is missing, builds, and opens the editor on a demo song. Extra arguments go to
# the program instead (a file to open, --home DIR...).
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
./scripts/build.sh debug plectaro
demo=data/examples/riff.plm
if [[ $# -eq 0 ]]; then
  set -- "$demo"
fi
exec build/debug/app/gui/plectaro "$@"
