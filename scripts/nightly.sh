#!/bin/bash
# Checks that take too long for every change: fuzzers, a build without precompiled headers, clang-tidy
# and cppcheck on all files, hundreds of kills, power losses and faults, damaged databases, hostile
# definitions, rehearsals, concurrent programs, whole runs under the sanitizers, a large company, the thread
# sanitizer, mutations, valgrind.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh

usage() {
    cat <<'USAGE'
Usage: scripts/nightly.sh [MINUTES]

  MINUTES  for each fuzzer (default 10)

Inputs that reach new code are added to the archives in fuzz/corpus, to be committed.
USAGE
}

parse_options ARGUMENTS "$@"
minutes=${arguments[0]:-10}
failed=()
heading() { printf '\n== %s (%s)\n' "$*" "$(date +%H:%M:%S)"; }

# shellcheck disable=SC2086
install_packages $packages_build $packages_test $packages_lint $packages_nightly

heading "Fuzzers, $minutes minutes each"
scripts/fuzz.sh --keep --minutes "$minutes" || failed+=("fuzzers")

heading "Missing includes"
cmake --preset no-pch
# compiled only, without stopping at errors
ninja -C build-no-pch -t targets all | sed -n 's/^\(.*\.o\): CX\?X\?_COMPILER.*/\1/p' |
    xargs ninja -C build-no-pch -k 0 || failed+=("missing includes")

heading "clang-tidy"
scripts/lint.sh || failed+=("clang-tidy")

heading "cppcheck"
cppcheck --quiet --std=c++20 --enable=warning,performance,portability --inline-suppr \
    --suppress=missingIncludeSystem --suppress=unknownMacro --error-exitcode=1 -j "$(nproc)" -I . \
    company data engines framework platform search shell tools vatchange || failed+=("cppcheck")

heading "Kills, power losses, faults, two programs"
cmake --preset release
cmake --build build --target taksavaihe zavdb zavsql fake_client fault_tests
scripts/crash.sh || failed+=("crash.sh")
TAKSAVAIHE_FAULTS=100000 TAKSAVAIHE_DISTURBANCES=200 TAKSAVAIHE_ROUNDS=500 QT_QPA_PLATFORM=offscreen \
    build/bin/fault_tests --gtest_filter='FaultSweep.*:TwoPrograms.*' || failed+=("fault_tests")

heading "Damaged databases, hostile definitions"
python3 tests/acceptance/attack.py build/bin --databases 200 --definitions 300 || failed+=("attack.py")

heading "Rehearsals and the runs that follow"
python3 tests/acceptance/rehearsal.py build/bin --seeds "$((RANDOM * 1000))" 300 || failed+=("rehearsal.py")
python3 tests/acceptance/rehearsal.py build/bin --engine shops --seeds "$((RANDOM * 1000))" 60 ||
    failed+=("rehearsal.py on the shops' engine")

heading "Whole runs under the sanitizers"
cmake --preset asan
cmake --build --preset asan-whole
ctest --preset asan-whole -j "$(nproc)" || failed+=("whole runs under the sanitizers")

heading "A large company"
scripts/soak.sh --products 1000000 || failed+=("soak.sh")

heading "Threads"
# shellcheck disable=SC2086
install_packages $packages_servers
(
    . scripts/sql_servers.sh
    trap stop_sql_servers EXIT
    start_sql_servers
    cmake -G Ninja -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTAKSAVAIHE_TESTS=ON \
        -DCMAKE_CXX_FLAGS=-fsanitize=thread
    cmake --build build-tsan --target engines_tests odbc_tests
    export QT_QPA_PLATFORM=offscreen TSAN_OPTIONS=halt_on_error=1
    # child processes of a program with threads are not for this sanitizer
    build-tsan/bin/engines_tests && build-tsan/bin/odbc_tests --gtest_filter='-*ServerJournal*'
) || failed+=("threads")

heading "Kills on SQL servers"
(
    . scripts/sql_servers.sh
    trap stop_sql_servers EXIT
    start_sql_servers
    cmake --build build --target odbc_tests
    TAKSAVAIHE_KILLS=30 QT_QPA_PLATFORM=offscreen build/bin/odbc_tests --gtest_filter='*ServerJournal*'
) || failed+=("kills on SQL servers")

heading "Mutations"
scripts/mutants.py --count 20 --seed "$(date +%F)" --report build-mutants/report.md || failed+=("mutants.py")

heading "valgrind"
scripts/valgrind.sh || failed+=("valgrind")

heading "Result"
if [ ${#failed[@]} -gt 0 ]; then
    echo "FAILED: ${failed[*]}"
    exit 1
fi
echo "All is well."
