#!/usr/bin/env bash
# Sets up a Debian 12 machine, builds Oxa's benchmarks (Release) and runs them
# all, with the outside tools they are compared with.
#   bash scripts/bench.sh [Google Benchmark options...]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

oxa_install_packages "${OXA_PACKAGES[@]}" "${OXA_BENCH_PACKAGES[@]}"
build="$OXA_ROOT/build/release"
oxa_build "$build" -DCMAKE_BUILD_TYPE=Release -DOXA_BUILD_BENCH=ON
export QT_QPA_PLATFORM=offscreen
for bench in "$build"/bench/bench_*; do
    [ -x "$bench" ] || continue
    echo "== $(basename "$bench")"
    "$bench" "$@"
done
