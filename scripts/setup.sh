#!/usr/bin/env bash
# Installs what building, testing and running Oxa needs on Debian 12, when it
# is missing. Sourced by demo.sh and test.sh.
set -euo pipefail

OXA_PACKAGES=(
    g++ cmake ninja-build pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-tools-dev qt6-tools-dev-tools
    libqt6sql6-sqlite libgl-dev libqt6opengl6-dev
    libbenchmark-dev
    qt6-translations-l10n
    libqt6sql6-psql
    libhunspell-dev hunspell-cs
)
# Only for the comparisons in the benchmarks (scripts/bench.sh).
OXA_BENCH_PACKAGES=(
    python3 python3-xlwt
)
# Only for the fuzz targets (tests/fuzz/build_and_run.sh): clang and its libFuzzer.
OXA_FUZZ_PACKAGES=(
    clang libclang-rt-14-dev
)
OXA_TEST_PACKAGES=(
    clang-format
    python3 python3-xlrd libreoffice-calc-nogui
    xvfb xauth
    postgresql
)

oxa_missing_packages() {
    local missing=()
    for p in "$@"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    echo "${missing[@]:-}"
}

oxa_install_packages() {
    local missing
    missing=$(oxa_missing_packages "$@")
    [ -z "$missing" ] && return 0
    echo "Installing: $missing"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -qq
    # shellcheck disable=SC2086
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

OXA_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
OXA_JOBS="$(nproc 2>/dev/null || echo 2)"

# Configures and builds one build directory: oxa_build DIR [cmake options...]
oxa_build() {
    local dir="$1"
    shift
    cmake -S "$OXA_ROOT" -B "$dir" -G Ninja "$@" >/dev/null
    cmake --build "$dir" -j "$OXA_JOBS"
}
