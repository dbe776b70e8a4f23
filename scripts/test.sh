#!/bin/bash
# Installs missing packages, builds and runs every test.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh
. scripts/sql_servers.sh

usage() {
    cat <<'USAGE'
Usage: scripts/test.sh [--all]

Builds (Release, folder build/) and runs every test.

  --all  first checks source format and scripts; builds the benchmarks too; then runs all tests
         except whole runs under the address and undefined behaviour sanitizers (folder
         build-asan/), the Windows programs under wine, and clang-tidy on changed files
USAGE
}

all=no
parse_options "all" "$@"

times=()
part="" begin=0
end_part() {
    [ -z "$part" ] || times+=("$(printf '%-28s %3d:%02d' "$part" \
        $(((SECONDS - begin) / 60)) $(((SECONDS - begin) % 60)))")
}
heading() {
    end_part
    part=$* begin=$SECONDS
    printf '\n== %s (%s)\n' "$*" "$(date +%H:%M:%S)"
}

closing_lines=()
failed=()

# build_and_test TITLE PRESET CMAKE-OPTION...
build_and_test() {
    local title=$1 preset=$2 log
    shift 2
    log=$(mktemp)
    heading "$title: build"
    cmake --preset "$preset" "$@"
    cmake --build --preset "$preset"
    heading "$title: tests"
    if ! ctest --preset "$preset" -j "$(nproc)" 2>&1 | tee "$log"; then
        failed+=("$title")
    fi
    closing_lines+=("$title:" "$(tail -n 16 "$log")")
    rm -f "$log"
}

check_sources() {
    heading "Format and scripts"
    git ls-files -z '*.cpp' '*.h' |
        xargs -0 -n 40 -P "$(nproc)" clang-format --dry-run -Werror || failed+=("format")
    git ls-files -z '*.sh' .ci/run | xargs -0 shellcheck -x || failed+=("shellcheck")
    if [ ${#failed[@]} -gt 0 ]; then
        echo "FAILED: ${failed[*]}"
        exit 1
    fi
}

release_options=()
# shellcheck disable=SC2086
install_packages $packages_build $packages_test $packages_servers
if [ "$all" = yes ]; then
    # shellcheck disable=SC2086
    install_packages $packages_lint
    check_sources
    release_options=(-DTAKSAVAIHE_BENCH=ON)
fi
heading "SQL servers"
trap stop_sql_servers EXIT
start_sql_servers
build_and_test "Release" release "${release_options[@]}"
if [ "$all" = yes ]; then
    build_and_test "Sanitizers" asan
    heading "Windows programs under wine"
    scripts/windows.sh --smoke --if-qt-is-there || failed+=("windows")
    heading "Lint"
    scripts/lint.sh --changed --minutes 5 || failed+=("lint")
fi

end_part
printf '\n== Result\n'
printf '%s\n' "${closing_lines[@]}" "Minutes:" "${times[@]}"
if [ ${#failed[@]} -gt 0 ]; then
    echo "FAILED: ${failed[*]}"
    exit 1
fi
echo "All is well."
