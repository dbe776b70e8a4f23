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
cmake -G Ninja -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
    -DCMAKE_CXX_COMPILER=clang++ -DTAKSAVAIHE_TESTS=OFF -DTAKSAVAIHE_FUZZ=ON -DTAKSAVAIHE_SANITIZE=ON \
    -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link
mapfile -t fuzzers < <(find fuzz -maxdepth 1 -name '*_fuzz.cpp' -printf '%f\n' | sed 's|\.cpp$||' | sort)
cmake --build build-fuzz --target "${fuzzers[@]}"
for fuzzer in "${fuzzers[@]}"; do
    heading "$fuzzer"
    found=build-fuzz/found/$fuzzer
    mkdir -p "$found"
    # new inputs go to the build folder; what crashes is worth a file in fuzz/corpus
    "build-fuzz/bin/$fuzzer" -max_total_time="$((minutes * 60))" -print_final_stats=1 \
        -artifact_prefix="$found/" "$found" "fuzz/corpus/${fuzzer%_fuzz}" 2>&1 | tail -n 20 ||
        failed+=("$fuzzer")
done

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
