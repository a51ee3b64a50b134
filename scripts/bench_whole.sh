#!/usr/bin/env bash
# Whole-process figures on a large score: `plectaro-cli convert` of a 1000-bar, 6-track score
# with a six-note chord on every eighth (about 3 MB, no two bars alike) and the editor's start-up
# on that score and on the band demo. Median of RUNS (default 5) runs each; wall seconds and peak
# memory from /usr/bin/time, start-up figures from the editor's own --print-startup-time.
#   scripts/bench_whole.sh [RUNS]
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-5}
./scripts/build.sh release -j2 plectaro plectaro-cli bench_music_file >/dev/null
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# The music-file benchmark saves its score to the temporary folder; that file is our input.
TMPDIR=$work build/release/bench/bench_music_file --benchmark_filter='BM_Save/repeating:0' >/dev/null 2>&1
big=$work/big.plm
mv "$work/plectaro-bench.plm" "$big"

median() { sort -g | awk '{v[NR] = $1} END {print v[int((NR + 1) / 2)]}'; }

# The front program, and beside it the full one that every other verb runs in: the difference
# is what loading the toolkit and the synthesizer costs a batch run.
for cli in plectaro-cli plectaro-cli-full; do
  walls=() peaks=()
  for ((i = 0; i < runs; i++)); do
    read -r wall peak < <(/usr/bin/time -f '%e %M' "build/release/app/cli/$cli" convert "$big" "$work/out.plm" 2>&1 >/dev/null | tail -1)
    walls+=("$wall") peaks+=("$peak")
  done
  printf '%s convert %s (%d bytes): median %s s wall, %s MB peak\n' "$cli" "big.plm" "$(stat -c %s "$big")" \
    "$(printf '%s\n' "${walls[@]}" | median)" "$(printf '%s\n' "${peaks[@]}" | median | awk '{printf "%.1f", $1 / 1024}')"
done

for song in data/examples/band.plm "$big"; do
  starts=() sounds=() mems=()
  for ((i = 0; i < runs; i++)); do
    rm -rf "$work/home"
    out=$(QT_QPA_PLATFORM=offscreen build/release/app/gui/plectaro --home "$work/home" --print-startup-time "$song" 2>/dev/null)
    starts+=("$(sed -n 's/^startup_ms //p' <<<"$out")")
    sounds+=("$(sed -n 's/^sound_ready_ms //p' <<<"$out")")
    mems+=("$(sed -n 's/^peak_memory_mb //p' <<<"$out")")
  done
  printf 'editor %s: median %s ms to the first page, sounds ready at %s ms, %s MB peak\n' "$(basename "$song")" \
    "$(printf '%s\n' "${starts[@]}" | median)" "$(printf '%s\n' "${sounds[@]}" | median)" \
    "$(printf '%s\n' "${mems[@]}" | median)"
done
