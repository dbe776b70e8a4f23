#!/bin/bash
# Fuzzes the readers of external bytes and texts one after another, with the address and undefined
# behaviour sanitizers.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh

usage() {
    cat <<'USAGE'
Usage: scripts/fuzz.sh [--minutes N] [--keep] [TARGET...]

  --minutes N  for each target (default 30; fractions are allowed)
  --keep       adds inputs that reach new code to fuzz/corpus/TARGET.tar.xz
  TARGET       as in fuzz/TARGET_fuzz.cpp (default: all)

New inputs are kept in build-fuzz/found/ and reused; inputs that crash a target are kept in
build-fuzz/crashes/. Exit status 1 if a target crashed.
USAGE
}

minutes=30 keep=no
parse_options "minutes= keep ARGUMENTS" "$@"
targets=("${arguments[@]}")
seconds=$(awk -v m="$minutes" 'BEGIN { s = int(m * 60); print (s > 0 ? s : 1) }')
if [ ${#targets[@]} -eq 0 ]; then
    mapfile -t targets < <(find fuzz -maxdepth 1 -name '*_fuzz.cpp' -printf '%f\n' |
        sed 's|_fuzz\.cpp$||' | sort)
fi
for target in "${targets[@]}"; do
    if [ ! -f "fuzz/${target}_fuzz.cpp" ]; then
        echo "fuzz.sh: there is no target $target" >&2
        exit 2
    fi
done

if ! command -v clang++ >/dev/null; then
    . scripts/packages.sh
    # shellcheck disable=SC2086
    install_packages $packages_build $packages_lint
fi
build="build-fuzz"
cmake -G Ninja -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
    -DCMAKE_CXX_COMPILER=clang++ -DTAKSAVAIHE_TESTS=OFF -DTAKSAVAIHE_FUZZ=ON \
    -DTAKSAVAIHE_SANITIZE=ON -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link >/dev/null
nice cmake --build "$build" --target "${targets[@]/%/_fuzz}"

# Companies and files of a target are kept in memory, for speed.
scratch=$(mktemp -d -p "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")" fuzz-XXXXXX)
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch XDG_CONFIG_HOME=$scratch/config XDG_RUNTIME_DIR=$scratch
export QT_QPA_PLATFORM=offscreen
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
LSAN_OPTIONS=suppressions=$PWD/scripts/lsan.supp:print_suppressions=0
export LSAN_OPTIONS

failed=()
table=$(printf '%-14s %9s %14s %8s %9s %8s' target minutes executions edges features inputs)
for target in "${targets[@]}"; do
    printf '\n== %s (%s)\n' "$target" "$(date +%H:%M:%S)"
    program=$build/bin/${target}_fuzz
    found=$build/found/$target
    crashes=$build/crashes/$target
    corpus=$build/corpus/$target
    log=$build/$target.log
    mkdir -p "$found" "$crashes"
    scripts/corpus.sh unpack "$target" "$corpus"
    begin=$SECONDS
    nice -n 19 "$program" -max_total_time="$seconds" -timeout=25 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$crashes/" "$found" "$corpus" \
        >"$log" 2>&1 || {
        failed+=("$target")
        grep -E 'ERROR|SUMMARY|runtime error|Test unit written' "$log" || tail -n 20 "$log"
    }
    ran=$(awk -v s=$((SECONDS - begin)) 'BEGIN { printf "%.1f", s / 60 }')
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    reached=$(grep -E ' cov: ' "$log" | tail -n 1 || true)
    edges=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<<"$reached")
    features=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$reached")
    inputs=$(sed -n 's/.* corp: \([0-9]*\).*/\1/p' <<<"$reached")
    line=$(printf '%-14s %9s %14s %8s %9s %8s' "$target" "$ran" "${executions:-?}" \
        "${edges:-?}" "${features:-?}" "${inputs:-?}")
    echo "$line"
    table+=$'\n'$line
    # the smallest set of inputs with the same coverage
    rm -rf "$found.merged" && mkdir "$found.merged"
    if nice -n 19 "$program" -merge=1 -timeout=25 "$found.merged" "$found" "$corpus" \
        >"$log.merge" 2>&1; then
        rm -rf "$found" && mv "$found.merged" "$found"
    fi
    if [ "$keep" = yes ]; then
        if nice -n 19 "$program" -merge=1 -timeout=25 -max_len=512 "$corpus" "$found" \
            >"$log.keep" 2>&1; then
            scripts/corpus.sh pack "$target" "$corpus"
        else
            failed+=("$target (merge)")
        fi
    fi
done

printf '\n%s\n' "$table"
if [ ${#failed[@]} -gt 0 ]; then
    echo "BROKEN: ${failed[*]}; inputs in $build/crashes/"
    exit 1
fi
