#!/usr/bin/env bash
# Compares a whole run of taksavaihe (journal and verification included) with plain_products.c, which sends
# the same statements to an ordinary table with one flush a commit. Every run begins with a fresh copy.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/options.sh
. "$here/../scripts/options.sh"
# shellcheck source=bench/ordinary_products.sh
. "$here/ordinary_products.sh"

usage() {
    cat <<'USAGE'
Usage: bench/product_run.sh [--build DIR] [--products N] [--disk DISK] [--rounds N] [--only-program]

Needs a build with TAKSAVAIHE_BENCH, the sqlite3 shell, cc and GNU time. All products have nine levels and
change; no labels, no web shop marks.

  --build DIR     build folder (default build)
  --products N    default 100000
  --disk DISK     this: the disk of this machine (default); none: no flushes; a number: a disk that takes
                  so many milliseconds a flush (slow_disk.c). For plain C and the program alike
  --rounds N      pairs of runs (default 1)
  --only-program  without plain C

Prints for each run wall, user and system seconds, maximum memory in kB and the number of flushes;
then the median ratios of the pairs. "apart" is without the processor time of a verification alone.
USAGE
}

build=build products=100000 disk=this rounds=1 only_program=no
parse_options "build= products= disk= rounds= only-program" "$@"
bin=$(realpath "$build")/bin
work=$(mktemp -d "${TMPDIR:-/var/tmp}/product_run.XXXXXX")
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config QT_QPA_PLATFORM=offscreen
cc -O2 -o "$work/plain" "$here/plain_products.c" -lsqlite3 -lm
cc -O2 -shared -fPIC -o "$work/slow_disk.so" "$here/slow_disk.c"
preload=(env "LD_PRELOAD=$work/slow_disk.so" "BENCH_FLUSH_COUNT=$work/flushes")
[ "$disk" = this ] || preload+=("BENCH_FLUSH_MS=$disk")
company=$work/company
LD_PRELOAD=$work/slow_disk.so BENCH_FLUSH_MS=none "$bin/zavdb" demo BENCH "$company" --products "$products" >/dev/null 2>&1
class_of() { # of a rate
    "$bin/zavdb" sql BENCH "select luokka from ALVKANTA where Prosentti=$1" | tail -1 | tr -d '\r'
}
source_class=$(class_of 24) target_class=$(class_of 25.5)
"$bin/zavdb" sql BENCH "delete from MYYMALAHINNAT" >/dev/null
"$bin/zavdb" sql BENCH "update TUOTE set LVV=$source_class where LVV<>$source_class" >/dev/null
if [ "$only_program" = no ]; then
    "$bin/zavdb" export BENCH TUOTE "$work/tuote.csv" >/dev/null
    {
        ordinary_products
        echo ".import --csv --skip 1 $work/tuote.csv TUOTE"
        ordinary_keys
    } | sqlite3 "$work/ordinary.pristine" >/dev/null
    rm "$work/tuote.csv"
fi
mkdir -p "$company/MAARITYS"
{
    echo "[Mittaus]"
    printf 'LahdeAlvLuokkaEdit=%s\nKohdeAlvLuokkaEdit=%s\nVieHr=0\nEiverkkokauppaa=1\n' "$source_class" "$target_class"
    level=0
    for column in hinta kaksoishinta hinta3 hinta4 hinta5 hinta6 hinta7 hinta8 hinta9; do
        level=$((level + 1))
        printf 'Hinta%dEdit=1.0120967741935485\nHintaLahde%d=%s\n' "$level" "$level" "$column"
    done
} >"$company/MAARITYS/AlvMuutosLomake.INI"
cp "$bin/taksavaihe" "$work/taksavaihe"
printf '[ASETUKSET]\nmaar1=Mittaus\n' >"$work/ALVMUUTOS.INI"
cp -r "$company" "$work/pristine"

measure() { # NAME COMMAND...; adds wall, user, system seconds, maximum kB, flushes to $work/NAME.times
    local name=$1
    shift
    sync "$work" # what was copied is not this run's to write
    /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$@" >"$work/out" 2>"$work/err" || { cat "$work/out" "$work/err" >&2; exit 1; }
    echo "$(cat "$work/time") $(cat "$work/flushes")" | tee -a "$work/$name.times" | sed "s/^/$(printf '%-11s' "$name") /"
}

echo "products $products, disk $disk; wall, user, system s, max kB, flushes"
for ((round = 0; round < rounds; round++)); do
    if [ "$only_program" = no ]; then
        cp "$work/ordinary.pristine" "$work/ordinary.db"
        measure plain "${preload[@]}" "$work/plain" "$work/ordinary.db" "$source_class" "$target_class" 1.0120967741935485
        rm -f "$work"/ordinary.db*
    fi
    rm -rf "$company"
    cp -r "$work/pristine" "$company"
    measure taksavaihe "${preload[@]}" "$work/taksavaihe" BENCH /E
    measure verify "${preload[@]}" "$bin/zavdb" verify BENCH 1
done
[ "$only_program" = no ] || exit 0
ratios() { # EXPRESSION over the fields of a pair; prints the median
    paste -d ' ' "$work/plain.times" "$work/taksavaihe.times" "$work/verify.times" | awk "{print $1}" | sort -n |
        awk '{v[NR] = $1} END {printf "%.3f", (v[int((NR + 1) / 2)] + v[int(NR / 2) + 1]) / 2}'
}
# shellcheck disable=SC2016
echo "ratio: wall $(ratios '$6 / $1'), processor $(ratios '($7 + $8) / ($2 + $3)')," \
    "processor apart $(ratios '($7 + $8 - $12 - $13) / ($2 + $3)')"
