#!/usr/bin/env bash
# Builds the release preset and runs every benchmark program (or those named).
#   scripts/bench.sh [bench_name ...]   e.g. scripts/bench.sh music_file
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
./scripts/build.sh release
names=("$@")
if ((${#names[@]} == 0)); then
  for b in build/release/bench/bench_*; do names+=("${b##*/bench_}"); done
fi
for n in "${names[@]}"; do
  echo "== $n"
  "build/release/bench/bench_$n" --benchmark_counters_tabular=true
done
