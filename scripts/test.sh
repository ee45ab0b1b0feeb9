#!/usr/bin/env bash
# Sets up a Debian 12 machine, builds Oxa and runs the whole test suite: the
# unit tests, the installed package used by a consumer project, and the same
# tests again under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

oxa_install_packages "${OXA_PACKAGES[@]}" "${OXA_TEST_PACKAGES[@]}"

build="$OXA_ROOT/build/release"
asan="$OXA_ROOT/build/asan"
stage="$OXA_ROOT/build/stage"
export QT_QPA_PLATFORM=offscreen
# The spreadsheet files are checked with real readers: they must be there.
export OXA_REQUIRE_READERS=1
export OXA_REQUIRE_POSTGRES=1
export OXA_REQUIRE_DICTIONARY=1

echo "== Formatting"
bash "$OXA_ROOT/scripts/check-format.sh"

echo "== Build"
oxa_build "$build" -DCMAKE_BUILD_TYPE=Release -DOXA_BUILD_BENCH=ON

echo "== Tests"
(cd "$build" && ctest -j "$OXA_JOBS" --output-on-failure --timeout 300)

echo "== Installed package and a consumer project"
rm -rf "$stage" "$OXA_ROOT/build/consumer"
cmake --install "$build" --prefix "$stage" >/dev/null
cmake -S "$OXA_ROOT/tests/consumer" -B "$OXA_ROOT/build/consumer" -G Ninja \
      -DCMAKE_PREFIX_PATH="$stage" >/dev/null
cmake --build "$OXA_ROOT/build/consumer" >/dev/null
LD_LIBRARY_PATH="$stage/lib:${LD_LIBRARY_PATH:-}" "$OXA_ROOT/build/consumer/oxa-consumer"

echo "== Tests under AddressSanitizer and UndefinedBehaviorSanitizer"
oxa_build "$asan" -DOXA_SANITIZE=ON -DOXA_BUILD_DEMO=OFF
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0:strict_string_checks=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export LSAN_OPTIONS="suppressions=$OXA_ROOT/scripts/lsan.supp:print_suppressions=0"
(cd "$asan" && ctest -j "$OXA_JOBS" --output-on-failure --timeout 600)
