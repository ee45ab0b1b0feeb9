#!/usr/bin/env bash
# Sets up a Debian 12 machine, builds Oxa and runs the demo clinic. Without a
# display it says so and writes screenshots of every page instead.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

oxa_install_packages "${OXA_PACKAGES[@]}"
build="$OXA_ROOT/build/release"
oxa_build "$build" -DCMAKE_BUILD_TYPE=Release

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    out="$OXA_ROOT/build/screenshots"
    echo "No display available: writing screenshots of every page to $out instead."
    QT_QPA_PLATFORM=offscreen "$build/demo/oxa-demo" --screenshot "$out" "$@"
else
    "$build/demo/oxa-demo" "$@"
fi
