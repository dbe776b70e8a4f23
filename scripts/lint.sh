#!/bin/bash
# Runs clang-tidy on the program's sources, without tests, fuzzers and benchmarks.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh

usage() {
    cat <<'USAGE'
Usage: scripts/lint.sh [--changed] [--minutes N] [FILE...]

  --changed    only sources that differ from the previous commit
  --minutes N  stops after N minutes; files not checked by then are no error
USAGE
}

sources=('*.cpp' ':!tests' ':!fuzz' ':!bench')
changed=no minutes=0
parse_options "changed minutes= ARGUMENTS" "$@"
files=("${arguments[@]}")

if [ "$changed" = yes ]; then
    if git rev-parse -q --verify HEAD~1 >/dev/null; then
        mapfile -t files < <(git diff --name-only --diff-filter=d HEAD~1 -- "${sources[@]}")
    fi
    [ ${#files[@]} -gt 0 ] || { echo "No source has changed."; exit 0; }
elif [ ${#files[@]} -eq 0 ]; then
    mapfile -t files < <(git ls-files "${sources[@]}")
fi

# clang-tidy needs clang's command lines, without precompiled headers (those are gcc's, or not built)
cmake --preset tidy >build-tidy.log 2>&1 || { cat build-tidy.log >&2; exit 1; }
rm -f build-tidy.log

# files not in the build (of another platform) cannot be checked
known=()
for file in "${files[@]}"; do
    ! grep -qF "\"file\": \"$PWD/$file\"" build-tidy/compile_commands.json || known+=("$file")
done
[ ${#known[@]} -gt 0 ] || { echo "Nothing to check."; exit 0; }

limit=()
[ "$minutes" -eq 0 ] || limit=(timeout "$((minutes * 60))")
status=0
printf '%s\0' "${known[@]}" |
    "${limit[@]}" xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build-tidy --quiet || status=$?
if [ "$status" -eq 124 ]; then
    echo "Time is up; scripts/nightly.sh checks all files."
    status=0
fi
exit "$status"
