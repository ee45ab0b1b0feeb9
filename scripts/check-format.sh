#!/usr/bin/env bash
# Fails when a C++ file of the project is not formatted as .clang-format says.
#   bash scripts/check-format.sh [--fix]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
format=$(command -v clang-format-14 || command -v clang-format || true)
[ -n "$format" ] || { echo "check-format: clang-format is not installed (Debian: clang-format)" >&2; exit 2; }
mapfile -t files < <(git ls-files '*.cpp' '*.h' 2>/dev/null || find src tests bench demo designer -name '*.cpp' -o -name '*.h')
if [ "${1:-}" = "--fix" ]; then
    "$format" -i "${files[@]}"
    exit 0
fi
if ! "$format" --dry-run --Werror "${files[@]}" 2>/tmp/oxa-format.$$; then
    grep -E '^[^ ].*: error:' /tmp/oxa-format.$$ | sed 's/:.*//' | sort -u | head -20 >&2
    rm -f /tmp/oxa-format.$$
    echo "check-format: the files above are not formatted: run 'bash scripts/check-format.sh --fix'" >&2
    exit 1
fi
rm -f /tmp/oxa-format.$$
echo "check-format: $(echo "${files[@]}" | wc -w) files formatted"
