#!/bin/bash
# What takes too long for every change: the fuzzers, clang-tidy over everything, cppcheck.
# Usage: nightly.sh [MINUTES]   (for each fuzzer, default 10)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh

minutes=${1:-10}
failed=()
heading() { printf '\n== %s (%s)\n' "$*" "$(date +%H:%M:%S)"; }

# shellcheck disable=SC2086
install_packages $packages_build $packages_test $packages_lint $packages_nightly

heading "Fuzzers, $minutes minutes each"
scripts/fuzz.sh --minutes "$minutes" || failed+=("fuzzers")

heading "clang-tidy"
scripts/lint.sh || failed+=("clang-tidy")

heading "cppcheck"
cppcheck --quiet --std=c++20 --enable=warning,performance,portability --inline-suppr \
    --suppress=missingIncludeSystem --suppress=unknownMacro --error-exitcode=1 -j "$(nproc)" -I . \
    app data framework search vatchange tools || failed+=("cppcheck")

heading "Result"
if [ ${#failed[@]} -gt 0 ]; then
    echo "FAILED: ${failed[*]}"
    exit 1
fi
echo "All is well."
