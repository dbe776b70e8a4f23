#!/bin/bash
# Builds the program, creates the demo company and changes its VAT class from 24 % to 25.5 %.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh

usage() {
    cat <<'USAGE'
Usage: scripts/demo.sh [--gui] [--keep] [--products N]

Installs missing packages, builds (Release, folder build/), creates the demo company, runs one saved
definition (24 % to 25.5 %) unattended and prints what changed. Can be run again: the company is
recreated each time.

  --gui          opens the main window on the company instead of running the definition
  --keep         keeps the company of an earlier run
  --products N   number of products (default 2000)
USAGE
}

gui=no keep=no products=2000
parse_options "gui keep products=" "$@"

name=Demo
definition=Alv255
demo=$PWD/build/demo
company=$demo/company
# separate settings, so that the user's registered companies are not touched
export XDG_CONFIG_HOME=$demo/config
if [ -z "${XDG_RUNTIME_DIR:-}" ]; then
    export XDG_RUNTIME_DIR=$demo/runtime
    mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
fi
zavdb=$PWD/build/bin/zavdb
program=$PWD/build/bin/taksavaihe

heading() { printf '\n== %s\n' "$*"; }

build() {
    heading "Building"
    # shellcheck disable=SC2086
    install_packages $packages_build
    if [ ! -f build/CMakeCache.txt ]; then
        cmake -G Ninja -S . -B build -DCMAKE_BUILD_TYPE=Release -DTAKSAVAIHE_TESTS=OFF
    fi
    cmake --build build --target taksavaihe zavdb
}

create_company() {
    heading "Creating the company \"$name\" in $company"
    rm -rf "$company" "$XDG_CONFIG_HOME" "$demo/before" "$demo/after"
    mkdir -p "$demo"
    LC_ALL=C.UTF-8 "$zavdb" demo "$name" "$company" --products "$products" 2>"$demo/zavdb.log" ||
        {
            cat "$demo/zavdb.log" >&2
            exit 1
        }
    mkdir -p "$company/MAARITYS"
    write_definition >"$company/MAARITYS/AlvMuutosLomake.INI"
    printf '[ASETUKSET]\r\nmaar1=%s\r\nmaar2=\r\nmaar3=\r\nmaar4=\r\n' "$definition" \
        >"$(dirname "$program")/ALVMUUTOS.INI"
}

# Moves class 1 (24 %) to class 5 (25.5 %): every price level from its own column with the VAT-free
# price kept, all dependent tables and open orders.
write_definition() {
    local coefficient=1.0120967741935485 level=0 column
    echo "[$definition]"
    echo "Selite=Yleinen verokanta 24 % -> 25,5 %"
    echo "LahdeAlvLuokkaEdit=1"
    echo "KohdeAlvLuokkaEdit=5"
    for column in hinta kaksoishinta hinta3 hinta4 hinta5 hinta6 hinta7 hinta8 hinta9; do
        level=$((level + 1))
        echo "Hinta${level}Edit=$coefficient"
        echo "HintaLahde${level}=$column"
        echo "SailytaAlv0_CheckBox${level}=1"
    done
    echo "OstohintaEdit=$coefficient"
    echo "SailytaAlv0_CheckBoxOstohinta=1"
    echo "ViimOstohintaEdit=$coefficient"
    echo "SailytaAlv0_CheckBoxViimOstohinta=1"
    echo "SailytaAlv0_CheckBoxMT=1"
    echo "SailytaAlv0_CheckBoxOT=1"
    for option in Tuotteet VieHr asiakashinnasto WebKauppaAsHinCheckBox Kampanjat MaaraAle \
        cbVakioLaskutus MtCheckBox OtCheckBox chkCheckWebstoreCompliantProductIds; do
        echo "$option=1"
    done
    echo "PyoristysSaantoRadioGroup=0"
    echo "PyoristysRadioGroup=1"
}

# Exports every table to a folder; the file "counts" there lists the tables with their record counts.
export_tables() { # FOLDER
    mkdir -p "$1"
    "$zavdb" tables "$name" >"$1/counts"
    local table
    while read -r table _; do
        "$zavdb" export "$name" "$table" "$1/$table.csv" >/dev/null
    done <"$1/counts"
}

# Ten products of class 24 %, spread evenly over the product numbers.
choose_products() {
    "$zavdb" sql "$name" "select NUMERO from TUOTE where LVV = 1 and HINTA3 > 0 order by NUMERO" |
        tr -d '\r' | grep -E '^[0-9]{6,13}$' |
        awk '{ line[NR] = $0 } END { step = NR / 10; if (step < 1) step = 1
               for (i = 1; i <= NR && n < 10; i += step) { print line[int(i)]; n++ } }'
}

# The chosen products as "number;class;price 1;price 3;purchase price;name".
product_lines() { # "'number','number'..."
    "$zavdb" sql "$name" "select NUMERO, LVV, HINTA, HINTA3, KESKIHINTA, NIMI from TUOTE
        where NUMERO in ($1) order by NUMERO" | tr -d '\r"' |
        awk -F, 'NR > 1 { name = $6; for (i = 7; i <= NF; i++) name = name "," $i
                          print $1 ";" $2 ";" $3 ";" $4 ";" $5 ";" name }'
}

show_products() { # BEFORE AFTER
    heading "Ten products: VAT class, price levels 1 and 3, purchase price (before -> after)"
    paste -d';' "$1" "$2" | awk -F';' '{
        printf "%-13s  %s -> %s  %8.2f -> %8.2f  %8.2f -> %8.2f  %9.4f -> %9.4f  %s\n",
               $1, $2, $8, $3, $9, $4, $10, $5, $11, $6 }'
}

show_counts() {
    heading "Rows per table"
    printf '%-16s %9s %9s %15s\n' table before after "changed or new"
    local table before after changed
    while read -r table before _ after; do
        changed=$(LC_ALL=C comm -13 <(LC_ALL=C sort "$demo/before/$table.csv") \
            <(LC_ALL=C sort "$demo/after/$table.csv") 2>/dev/null | wc -l)
        printf '%-16s %9d %9d %15d\n' "$table" "$before" "$after" "$changed"
    done < <(paste -d' ' "$demo/before/counts" "$demo/after/counts")
}

show_log() {
    local log=$company/ALVMUUTOS.LOG lines
    heading "Change log"
    lines=$(wc -l <"$log")
    if [ "$lines" -le 120 ]; then
        cat "$log"
    else
        head -60 "$log"
        echo "... ($((lines - 120)) lines)"
        tail -60 "$log"
    fi
}

show_files() {
    heading "Files"
    echo "programs        $(dirname "$program")/taksavaihe, zavdb"
    echo "batch list      $(dirname "$program")/ALVMUUTOS.INI"
    echo "company         $company"
    echo "definitions     $company/MAARITYS/AlvMuutosLomake.INI"
    [ ! -f "$company/ALVMUUTOS.LOG" ] || echo "change log      $company/ALVMUUTOS.LOG"
    [ ! -d "$demo/before" ] || echo "tables as CSV   $demo/before, $demo/after"
    echo "settings        XDG_CONFIG_HOME=$XDG_CONFIG_HOME"
}

if [ "$gui" = yes ]; then
    if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
        echo "--gui needs a display (DISPLAY or WAYLAND_DISPLAY is not set)." >&2
        exit 1
    fi
fi
build
if [ "$keep" = no ] || [ ! -d "$company" ]; then
    create_company
fi

if [ "$gui" = yes ]; then
    show_files
    exec "$program" "$name"
fi

numbers=$(choose_products | sed "s/.*/'&'/" | paste -sd, -)
product_lines "${numbers:-''}" >"$demo/products-before.txt"
export_tables "$demo/before"

heading "Running definition \"$definition\": taksavaihe $name /E"
status=0
env -u DISPLAY -u WAYLAND_DISPLAY "$program" "$name" /E || status=$?

product_lines "${numbers:-''}" >"$demo/products-after.txt"
export_tables "$demo/after"
show_log
show_products "$demo/products-before.txt" "$demo/products-after.txt"
show_counts
show_files
heading "Check"
"$zavdb" check "$name"
heading "Exit status of taksavaihe: $status"
exit "$status"
