#!/bin/bash
# Converts a company of a tenth of the size and then a very large one: memory must stay flat, processor
# time must grow linearly, and the change log must agree with the database. Prints the figures quoted in
# docs/reliability.md.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh

usage() {
    cat <<'USAGE'
Usage: scripts/soak.sh [--products N] [--folder DIR] [--flush] [--build DIR] [--keep]

  --products N  products of the large company (default 2000000; takes about 9 GB of disk)
  --folder DIR  folder for the companies (default soak/ in the build folder)
  --flush       flush after every statement. By default flushes are disabled (eatmydata), since on a
                slow disk they take hours
  --build DIR   build folder with the programs (default build; built if missing)
  --keep        keep the companies

Exit status 1 if memory grows, time is not proportional to the size, or the log disagrees.
USAGE
}

products=2000000 folder='' build=build keep=no flush=no
parse_options "products= folder= build= flush keep" "$@"
preload=()
[ "$flush" = yes ] || preload=(eatmydata)

if [ ! -x "$build/bin/taksavaihe" ] || [ ! -x "$build/bin/zavdb" ]; then
    # shellcheck disable=SC2086
    install_packages $packages_build
    cmake -G Ninja -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DTAKSAVAIHE_TESTS=OFF
    cmake --build "$build" --target taksavaihe zavdb
fi
# shellcheck disable=SC2086
[ ${#preload[@]} -eq 0 ] || install_packages $packages_soak

[ -n "$folder" ] || folder=$PWD/$build/soak
rm -rf "$folder"
mkdir -p "$folder/bin"
cp "$build/bin/taksavaihe" "$build/bin/zavdb" "$folder/bin/"
export XDG_CONFIG_HOME=$folder/settings QT_QPA_PLATFORM=offscreen
printf '[ASETUKSET]\nmaar1=Alv\n' >"$folder/bin/ALVMUUTOS.INI"
failed=0
complain() {
    echo "FAILED: $*"
    failed=1
}

definition() {
    local column level=0
    printf '[Alv]\nLahdeAlvLuokkaEdit=1\nKohdeAlvLuokkaEdit=5\n'
    for column in hinta kaksoishinta hinta3 hinta4 hinta5 hinta6 hinta7 hinta8 hinta9; do
        level=$((level + 1))
        printf 'Hinta%dEdit=1.0120967741935485\nHintaLahde%d=%s\n' "$level" "$level" "$column"
    done
    printf '%s=1\n' Tuotteet Tuoteloki VieHr asiakashinnasto Kampanjat MaaraAle cbVakioLaskutus \
        MtCheckBox OtCheckBox
}

number() { # COMPANY STATEMENT -> its one number
    "$folder/bin/zavdb" sql "$1" "$2" | tr -d '\r' | tail -1
}

# Writes the private memory of a process in kB, one line per second, until it ends.
sample() { # PID FILE
    while [ -d "/proc/$1" ]; do
        awk '/^RssAnon/ { print $2 }' "/proc/$1/status" 2>/dev/null || true
        sleep 1
    done >"$2"
}

soak() { # NAME PRODUCTS; leaves processor seconds in $seconds and products in $converted
    local name=$1 count=$2 company=$folder/$1 times=$folder/$1.times memory=$folder/$1.memory
    local class rows before after told lines status=0
    "${preload[@]}" "$folder/bin/zavdb" demo "$name" "$company" --products "$count" 2>"$folder/$name.demo"
    mkdir -p "$company/MAARITYS"
    definition >"$company/MAARITYS/AlvMuutosLomake.INI"
    class="LVV=1 or ALV2=1 or OSTOVERO=1"
    before=$(number "$name" "select count(*) from TUOTE where $class")
    rows=$(number "$name" "select (select count(*) from MTRIVI) + (select count(*) from WINOTRI)")

    local TIMEFORMAT='%U %S'
    # shellcheck disable=SC2016
    { time "${preload[@]}" bash -c 'echo $$ >"$0"; exec "$@"' "$folder/pid" \
        "$folder/bin/taksavaihe" "$name" /E /U; } 2>"$times" &
    local job=$!
    sleep 1
    sample "$(cat "$folder/pid")" "$memory"
    wait "$job" || status=$?
    [ "$status" -eq 0 ] || complain "$name: exit status $status"

    seconds=$(tail -1 "$times" | awk '{ print $1 + $2 }')
    after=$(number "$name" "select count(*) from TUOTE where $class")
    converted=$((before - after))
    told=$(grep -c '  Tuote: ' "$company/ALVMUUTOS.LOG")
    lines=$(grep -cvP '^\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d@\S+  ' "$company/ALVMUUTOS.LOG" || true)
    [ "$after" -eq 0 ] || complain "$name: $after products still have the old class"
    [ "$told" -eq "$converted" ] || complain "$name: $told products in the log, $converted changed"
    grep -q "Tuotetiedot muutettu ( $converted kpl)" "$company/ALVMUUTOS.LOG" ||
        complain "$name: the log has another count"
    [ "$lines" -eq 0 ] || complain "$name: $lines lines of the log are malformed"
    [ "$(sed -n 's/.*  Tuote: \(.*\) VANHAHINTA(=hinta ).*/\1/p' "$company/ALVMUUTOS.LOG" |
        sort -u | wc -l)" -eq "$converted" ] || complain "$name: a product is twice in the log"

    # the value after a tenth of the run, and the later maximum
    local early peak
    read -r early peak < <(awk '{ m[NR] = $1 }
        END { a = int(NR / 10) + 2; e = m[a] + 0
              for (i = a; i <= NR; i++) if (m[i] > p) p = m[i]
              print e, p + 0 }' "$memory")
    printf '%-8s %9d products, %8d order rows: %9d products changed, %8.1f s of processor time, ' \
        "$name" "$count" "$rows" "$converted" "$seconds"
    printf '%.1f us a product, private memory %d kB, later at most %d kB\n' \
        "$(awk "BEGIN { print $seconds * 1e6 / $count }")" "$early" "$peak"
    [ "$peak" -le $((early + 32768)) ] || complain "$name: memory grows from $early to $peak kB"
}

soak pieni $((products / 10))
small=$seconds
soak suuri "$products"
awk "BEGIN { r = $seconds / $small / 10; printf \"time of the large one: %.2f times ten small ones\n\", r
             exit r > 1.5 }" || complain "time does not follow the size"
"$folder/bin/zavdb" check suuri || complain "check"
[ "$keep" = yes ] || rm -rf "$folder"
exit "$failed"
