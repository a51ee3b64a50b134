#!/bin/sh
# Runs the editor with --print-startup-time in a fresh home folder and checks that it reports
# its four figures in order, each a number, and quits by itself with status 0.
#   print_startup_time.sh EDITOR SONG
home=$(mktemp -d) || exit 1
out=$("$1" --home "$home" --print-startup-time "$2")
rc=$?
rm -rf "$home"
printf '%s\n' "$out"
[ "$rc" -eq 0 ] || { echo "exit status $rc"; exit 1; }
keys=$(printf '%s\n' "$out" | awk '$2 ~ /^[0-9]+(\.[0-9]+)?$/ { printf "%s ", $1 }')
[ "$keys" = "startup_ms sound_ready_ms memory_mb peak_memory_mb " ] || { echo "unexpected report"; exit 1; }
