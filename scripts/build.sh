#!/usr/bin/env bash
# Configures and builds one preset: debug, asan (the test build), release (benchmarks) or fuzz.
#   scripts/build.sh [PRESET] [ninja targets...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-debug}
shift || true
export CCACHE_DIR=${CCACHE_DIR:-$HOME/.cache/ccache}
if [[ ! -f build/$preset/build.ninja ]]; then
  cmake --preset "$preset" >/dev/null
fi
cmake --build "build/$preset" -- "$@"
