#!/usr/bin/env bash
# Installs what is missing, builds the test build (debug, AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs every test. No display or sound card needed.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
./scripts/build.sh asan
export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=0}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
ctest --test-dir build/asan --output-on-failure -j "$(nproc)" "$@"
