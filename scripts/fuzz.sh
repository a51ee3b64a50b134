#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan + UBSan) and runs them.
#   scripts/fuzz.sh TARGET [SECONDS]     one target, e.g. scripts/fuzz.sh music_file_reader 600
#   scripts/fuzz.sh all [MINUTES]        every target of fuzz/, one after another, MINUTES each
#                                        (default 1), then a table of executions per second,
#                                        coverage and findings per target
# The corpus lives in build/fuzz/corpus/TARGET, seeded from fuzz/seeds/TARGET if present; what a
# target finds is written to build/fuzz/findings/TARGET/. Exit status 1 when anything was found.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/setup.sh
target=${1:?usage: scripts/fuzz.sh TARGET [SECONDS] | scripts/fuzz.sh all [MINUTES]}

# Runs one built target for $2 seconds; prints "name execs/s coverage findings" on the last line
# of its log.
run_one() {
  local name=$1 seconds=$2
  local corpus=build/fuzz/corpus/$name findings=build/fuzz/findings/$name
  mkdir -p "$corpus" "$findings"
  local seeds=()
  [[ -d fuzz/seeds/$name ]] && seeds=(fuzz/seeds/"$name")
  local log=build/fuzz/logs/$name.log
  mkdir -p build/fuzz/logs
  local status=0
  "build/fuzz/fuzz/fuzz_$name" -max_total_time="$seconds" -rss_limit_mb=4096 -timeout=10 \
    -print_final_stats=1 -artifact_prefix="$findings/" "$corpus" "${seeds[@]}" >"$log" 2>&1 ||
    status=$?
  local execs rate cov found
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  cov=$(grep -o 'cov: [0-9]*' "$log" | tail -1 | cut -d' ' -f2)
  found=$(find "$findings" -type f | wc -l)
  # A crash ends the run early and has no final statistics; the finding itself is the news.
  ((status != 0 && found == 0)) && found=1
  printf '%-22s %12s %10s %8s %8s\n' "$name" "${execs:--}" "${rate:--}" "${cov:--}" "$found"
}

header() { printf '%-22s %12s %10s %8s %8s\n' target executions execs/s coverage findings; }

# The rates mean little without the machine's load beside them: other work on the same cores
# halves them easily.
load() { cut -d' ' -f1-3 /proc/loadavg; }

if [[ $target == all ]]; then
  minutes=${2:-1}
  names=()
  for src in fuzz/*.cpp; do names+=("$(basename "$src" .cpp)"); done
  ./scripts/build.sh fuzz -j2 "${names[@]/#/fuzz_}"
  results=()
  load_before=$(load)
  for name in "${names[@]}"; do
    echo "fuzzing $name for $minutes minute(s)..." >&2
    results+=("$(run_one "$name" $((minutes * 60)))")
  done
  header
  printf '%s\n' "${results[@]}"
  echo "load average (1, 5, 15 min) before: $load_before; after: $(load)"
  total=0
  for line in "${results[@]}"; do total=$((total + ${line##* })); done
  ((total == 0))
else
  seconds=${2:-60}
  ./scripts/build.sh fuzz -j2 "fuzz_$target"
  header
  line=$(run_one "$target" "$seconds")
  echo "$line"
  echo "log: build/fuzz/logs/$target.log" >&2
  [[ ${line##* } == 0 ]]
fi
