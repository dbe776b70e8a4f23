#!/bin/bash
# Installs what the tests need, builds and runs every test.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/packages.sh
. scripts/sql_servers.sh

usage() {
    cat <<'USAGE'
Usage: scripts/test.sh [--all]

Builds (Release, folder build/) and runs every test.

  --all   also runs the tests under the address and undefined behaviour sanitizers (folder
          build-asan/), compares whole runs of random companies with a model, checks the
          format of the sources and lints the files that changed
USAGE
}

all=no
case "${1:-}" in
    "") ;;
    --all) all=yes ;;
    --help | -h)
        usage
        exit 0
        ;;
    *)
        usage >&2
        exit 2
        ;;
esac

heading() { printf '\n== %s (%s)\n' "$*" "$(date +%H:%M:%S)"; }

closing_lines=()
failed=()

# build_and_test NAME FOLDER CMAKE-OPTION...
build_and_test() {
    local title=$1 folder=$2 log=$2/ctest.log
    shift 2
    heading "$title: building in $folder"
    cmake -G Ninja -S . -B "$folder" -DTAKSAVAIHE_TESTS=ON "$@"
    cmake --build "$folder"
    heading "$title: tests"
    if ! ctest --test-dir "$folder" -j "$(nproc)" --output-on-failure 2>&1 | tee "$log"; then
        failed+=("$title")
    fi
    closing_lines+=("$title:" "$(tail -n 12 "$log")")
}

check_format() {
    heading "Format"
    if ! git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --dry-run -Werror; then
        failed+=("format")
    fi
}

# shellcheck disable=SC2086
install_packages $packages_build $packages_test $packages_servers
heading "SQL servers"
trap stop_sql_servers EXIT
start_sql_servers
build_and_test "Release" build -DCMAKE_BUILD_TYPE=Release
if [ "$all" = yes ]; then
    # shellcheck disable=SC2086
    install_packages $packages_lint
    check_format
    heading "Whole runs against the model"
    python3 tests/acceptance/acceptance.py build/bin --seeds 1 8 || failed+=("acceptance")
    export ASAN_OPTIONS=detect_stack_use_after_return=1
    export LSAN_OPTIONS=suppressions=$PWD/scripts/lsan.supp:print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1
    build_and_test "Sanitizers" build-asan -DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS_DEBUG=-g1 -O1" \
        -DTAKSAVAIHE_SANITIZE=ON
    heading "Windows programs under wine"
    scripts/windows.sh --smoke --if-qt-is-there || failed+=("windows")
    heading "Lint"
    scripts/lint.sh --changed --minutes 8 || failed+=("lint")
fi

heading "Result"
printf '%s\n' "${closing_lines[@]}"
if [ ${#failed[@]} -gt 0 ]; then
    echo "FAILED: ${failed[*]}"
    exit 1
fi
echo "All is well."
