#!/usr/bin/env bash
# Installs every Debian package the project needs, only those that are missing.
# Safe to run again and again; run.sh and test.sh call it first.
#   scripts/setup.sh            build, test and run packages
#   scripts/setup.sh --look     also the tools for looking at output by hand
#                               (Xvfb, screenshots, PDF/MIDI/WAV checkers)
set -euo pipefail

packages=(
  build-essential cmake ninja-build ccache pkg-config git
  clang libclang-rt-14-dev
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev libqt6svg6 qt6-qpa-plugins libgl-dev libglx-dev
  libfluidsynth-dev fluid-soundfont-gm
  librtmidi-dev libsndfile1-dev nettle-dev
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  fonts-liberation2 fonts-dejavu-core fontconfig
)
if [[ "${1:-}" == "--look" ]]; then
  # fluidsynth: the stand-alone player the wave render is timed against.
  packages+=(xvfb xauth imagemagick xdotool poppler-utils qpdf midicsv sox fluidsynth)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if ((${#missing[@]} == 0)); then
  exit 0
fi

echo "setup: installing ${missing[*]}"
SUDO=""
if [[ $(id -u) -ne 0 ]]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
