#!/usr/bin/env bash
# Compares a whole run of taksavaihe over N products (nine levels, no labels, no web shop marks) with the
# plain C program plain_products.c on an ordinary table. Prints times, ratios and maximum memory.
# Usage: bench/product_run.sh BUILD_DIR [N]     (needs the sqlite3 shell, cc and GNU time)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
bin=$(realpath "$1")/bin
n=${2:-100000}
work=$(mktemp -d "${TMPDIR:-/var/tmp}/product_run.XXXXXX")
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config QT_QPA_PLATFORM=offscreen
cc -O2 -o "$work/plain" "$here/plain_products.c" -lsqlite3 -lm
"$bin/zavdb" demo BENCH "$work/data" --products "$n" >/dev/null
source_class=$("$bin/zavdb" sql BENCH "select luokka from ALVKANTA where Prosentti=24" | tail -1 | tr -d '\r')
target_class=$("$bin/zavdb" sql BENCH "select luokka from ALVKANTA where Prosentti=25.5" | tail -1 | tr -d '\r')
"$bin/zavdb" export BENCH TUOTE "$work/tuote.csv"
"$bin/zavdb" sql BENCH "delete from MYYMALAHINNAT" >/dev/null
# puts every product into the source class
"$bin/zavdb" sql BENCH "update TUOTE set LVV=$source_class where LVV<>$source_class" >/dev/null
{
    echo "create table TUOTE ("
    awk '$1=="field" {t=$4; if (t=="float") t="REAL"; else if (t=="string"||t=="date"||t=="time") t="TEXT"; else t="INTEGER";
         printf "%s%s %s", (n++ ? ", " : ""), $3, t} END {print ");"}' "$here/../data/dictionary/tables/tuote.dict"
    echo ".import --csv --skip 1 $work/tuote.csv TUOTE"
    echo "create unique index tuote0 on TUOTE(NUMERO);"
    for key in "NUMERO collate nocase" "RYHMA,NUMERO" "PAARYHMA,NUMERO" "TOIMITTAJA,TOIMTUNNUS" "NIMI collate nocase" "AliRyhma,NUMERO"; do
        i=$((${i:-0} + 1)); echo "create index tuote$i on TUOTE($key);"
    done
    echo "update TUOTE set LVV=$source_class;"
} | sqlite3 "$work/ordinary.db"
mkdir -p "$work/data/MAARITYS"
{
    echo "[Mittaus]"
    echo "LahdeAlvLuokkaEdit=$source_class"; echo "KohdeAlvLuokkaEdit=$target_class"; echo "VieHr=0"; echo "Eiverkkokauppaa=1"
    for i in 1 2 3 4 5 6 7 8 9; do
        echo "Hinta${i}Edit=1.0120967741935485"
        case $i in 1) c=hinta ;; 2) c=kaksoishinta ;; *) c=hinta$i ;; esac
        echo "HintaLahde$i=$c"
    done
} >"$work/data/MAARITYS/AlvMuutosLomake.INI"
cp "$bin/taksavaihe" "$work/taksavaihe"
printf '[ASETUKSET]\nmaar1=Mittaus\n' >"$work/ALVMUUTOS.INI"
measure() { # wall seconds, processor seconds (user, system), maximum memory in kB
    /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$@" >"$work/out" 2>"$work/err" || { cat "$work/out" "$work/err" >&2; exit 1; }
    cat "$work/time"
}
sync
plain=$(measure "$work/plain" "$work/ordinary.db" "$source_class" "$target_class" 1.0120967741935485)
sync
ours=$(measure "$work/taksavaihe" BENCH /E)
echo "products $n"
echo "plain C      wall/user/sys s, max kB: $plain"
echo "taksavaihe   wall/user/sys s, max kB: $ours"
awk -v a="$ours" -v b="$plain" 'BEGIN {split(a,x," "); split(b,y," "); printf "ratio wall %.2f, processor %.2f\n", x[1]/y[1], (x[2]+x[3])/(y[2]+y[3])}'
