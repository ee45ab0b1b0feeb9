#!/usr/bin/env bash
# Builds the record-stream reader's fuzz target with clang's libFuzzer and
# AddressSanitizer (leak detection on), and runs it for a bounded time.
#   tests/fuzz/build_and_run.sh [seconds, default 60] [extra libFuzzer args]
# Installs what it needs (clang with libFuzzer, Qt 6) when it is missing.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
source "$root/scripts/setup.sh"
oxa_install_packages "${OXA_PACKAGES[@]}" "${OXA_FUZZ_PACKAGES[@]}"
seconds=${1:-60}
[ $# -gt 0 ] && shift
out=${OXA_FUZZ_DIR:-$root/build-fuzz}
mkdir -p "$out/corpus"

moc=$(pkg-config --variable=libexecdir Qt6Core 2>/dev/null)/moc
[ -x "$moc" ] || moc=/usr/lib/qt6/libexec/moc
"$moc" "$root/src/oxa/spreadsheet/XLSfile.h" -o "$out/moc_XLSfile.cpp"

# The unit registers itself in the catalogue, so the catalogue comes along.
clang++ -std=c++20 -g -O1 -fsanitize=fuzzer,address,undefined -fno-omit-frame-pointer \
    -DQT_NO_KEYWORDS -I"$root/src" $(pkg-config --cflags Qt6Core Qt6Widgets) \
    "$here/fuzz_xlsread.cpp" \
    "$root/src/oxa/spreadsheet/XLSfile.cpp" \
    "$root/src/oxa/toolkit/CodePage1250.cpp" \
    "$root/src/oxa/toolkit/Catalogue.cpp" \
    "$out/moc_XLSfile.cpp" \
    $(pkg-config --libs Qt6Core Qt6Widgets) \
    -o "$out/fuzz_xlsread"

# Seeds: an end record alone, and a header with a word cell.
printf '\012\000\000\000' > "$out/corpus/seed_end"
printf '\011\010\006\000\000\000\020\000\000\000\002\000\011\000\000\000\000\000\000\000\000\007\000\012\000\000\000' \
    > "$out/corpus/seed_cell"

ASAN_OPTIONS=detect_leaks=1 "$out/fuzz_xlsread" -max_total_time="$seconds" -timeout=5 \
    -rss_limit_mb=2048 "$@" "$out/corpus"
