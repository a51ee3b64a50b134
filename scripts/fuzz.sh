#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan + UBSan) and runs one of them.
#   scripts/fuzz.sh TARGET [SECONDS]     e.g. scripts/fuzz.sh music_file_reader 600
# The corpus lives in build/fuzz/corpus/TARGET, seeded from fuzz/seeds/TARGET if present.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
target=${1:?usage: scripts/fuzz.sh TARGET [SECONDS]}
seconds=${2:-60}
./scripts/build.sh fuzz "fuzz_$target"
corpus=build/fuzz/corpus/$target
mkdir -p "$corpus"
seeds=()
[[ -d fuzz/seeds/$target ]] && seeds=(fuzz/seeds/"$target")
"build/fuzz/fuzz/fuzz_$target" -max_total_time="$seconds" -rss_limit_mb=4096 -timeout=10 \
  "$corpus" "${seeds[@]}"
