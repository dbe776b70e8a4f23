#!/usr/bin/env bash
# Compares "zavdb import" of the products with the sqlite3 shell's .import of the same CSV file into an
# ordinary table of the same columns and keys; each a transaction into an empty table.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/options.sh
. "$here/../scripts/options.sh"
# shellcheck source=bench/ordinary_products.sh
. "$here/ordinary_products.sh"

usage() {
    cat <<'USAGE'
Usage: bench/import_run.sh [--build DIR] [--products N] [--rounds N]

Needs a build, the sqlite3 shell and GNU time.

  --build DIR   build folder (default build)
  --products N  default 100000
  --rounds N    pairs of imports (default 5)

Prints wall, user and system seconds and maximum memory in kB of each import, then the median ratio of the
pairs' processor times.
USAGE
}

build=build products=100000 rounds=5
parse_options "build= products= rounds=" "$@"
bin=$(realpath "$build")/bin
work=$(mktemp -d "${TMPDIR:-/var/tmp}/import_run.XXXXXX")
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config QT_QPA_PLATFORM=offscreen
"$bin/zavdb" demo BENCH "$work/company" --products "$products" >/dev/null 2>&1
"$bin/zavdb" export BENCH TUOTE "$work/tuote.csv" >/dev/null
rm -rf "$work/company"
"$bin/zavdb" create EMPTY "$work/company" >/dev/null
cp -r "$work/company" "$work/pristine"
{
    ordinary_products
    ordinary_keys
} | sqlite3 "$work/ordinary.pristine" >/dev/null

measure() { # NAME COMMAND...
    local name=$1
    shift
    sync "$work"
    /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$@" >"$work/out" 2>"$work/err" || { cat "$work/out" "$work/err" >&2; exit 1; }
    tee -a "$work/$name.times" <"$work/time" | sed "s/^/$(printf '%-7s' "$name") /"
}

echo "products $products; wall, user, system s, max kB"
for ((round = 0; round < rounds; round++)); do
    rm -rf "$work/company" "$work"/ordinary.db*
    cp -r "$work/pristine" "$work/company"
    cp "$work/ordinary.pristine" "$work/ordinary.db"
    measure sqlite3 sqlite3 "$work/ordinary.db" "PRAGMA synchronous=FULL" ".import --csv --skip 1 $work/tuote.csv TUOTE"
    measure zavdb "$bin/zavdb" import EMPTY TUOTE "$work/tuote.csv"
done
paste -d ' ' "$work/sqlite3.times" "$work/zavdb.times" | awk '{print ($6 + $7) / ($2 + $3)}' | sort -n |
    awk '{v[NR] = $1} END {printf "ratio: processor %.2f\n", (v[int((NR + 1) / 2)] + v[int(NR / 2) + 1]) / 2}'
