#!/bin/bash
# Runs the Windows programs under wine and compares their results with the Linux programs'.
set -euo pipefail
# shellcheck source=scripts/options.sh
. "$(dirname "${BASH_SOURCE[0]}")/../../scripts/options.sh"

usage() {
    cat <<'USAGE'
Usage: tests/windows/smoke.sh RELEASE LINUX-PROGRAMS [--products N]

RELEASE: folder built by scripts/windows.sh --smoke (Taksavaihe/, hold_record.exe, fake_client.dll,
optionally the installer). LINUX-PROGRAMS: folder with taksavaihe, zavdb and zavsql.so of the same
sources.

  --products N  size of the companies (default 400)
USAGE
}

products=400
parse_options "products= ARGUMENTS" "$@"
[ ${#arguments[@]} -eq 2 ] || wrong_usage "Two folders are needed."
release=$(realpath "${arguments[0]}") linux=$(realpath "${arguments[1]}")

work=$(mktemp -d)
jobs_to_end=()
clean_up() {
    WINEPREFIX=$work/prefix timeout 20 /usr/lib/wine/wineserver64 -k 2>/dev/null || true
    [ ${#jobs_to_end[@]} -eq 0 ] || kill "${jobs_to_end[@]}" 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT

failures=0
check() { # TEXT COMMAND...
    local text=$1
    shift
    if "$@"; then
        echo "ok      $text"
    else
        echo "FAILED  $text"
        failures=$((failures + 1))
    fi
}
same_text() { [ "$1" = "$2" ] || { printf '  actual:   %s\n  expected: %s\n' "$1" "$2" && false; }; }
wait_for() { # SECONDS COMMAND...
    local _
    for _ in $(seq "$(($1 * 10))"); do
        ! "${@:2}" || return 0
        sleep 0.1
    done
    return 1
}

# --- a separate wine prefix
export LC_ALL=C.UTF-8 XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work
export WINEPREFIX=$work/prefix WINEARCH=win64 WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe,winedbg.exe="
exec 3>"$work/display"
Xvfb -displayfd 3 -screen 0 1280x900x24 >/dev/null 2>&1 &
jobs_to_end+=($!)
wait_for 10 test -s "$work/display"
DISPLAY=:$(cat "$work/display")
export DISPLAY
openbox >/dev/null 2>&1 &
jobs_to_end+=($!)
timeout 180 wineboot -i >/dev/null 2>&1
{
    echo 'Windows Registry Editor Version 5.00'
    echo '[HKEY_CURRENT_USER\Software\Wine]'
    echo '"Version"="win10"'
    # edits show no text if the requested fonts are missing
    echo '[HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements]'
    for font in "Segoe UI" Tahoma "MS Shell Dlg" "MS Shell Dlg 2" "Microsoft Sans Serif" Verdana; do
        echo "\"$font\"=\"Liberation Sans\""
    done
} >"$work/settings.reg"
timeout 60 wine regedit /S "Z:${work//\//\\}\\settings.reg" >/dev/null 2>&1

drive=$WINEPREFIX/drive_c
program=$drive/Ohjelmat/Taksavaihe\ ä
company=Tämä\ yritys
folder="C:\\Yritykset\\Yhtiö ä"
mkdir -p "$drive/Ohjelmat" "$work/linux"
cp -r "$release/Taksavaihe" "$program"
cp "$release/hold_record.exe" "$program/"
cp "$linux/taksavaihe" "$linux/zavdb" "$work/linux/"

win() { # PROGRAM ARGUMENT...: runs a program of the program folder
    local name=$1
    shift
    (cd "$WINEPREFIX" && timeout 180 wine "$program/$name" "$@" </dev/null 2>>"$work/errors")
}
lin() {
    local name=$1
    shift
    env -u DISPLAY timeout 180 "$work/linux/$name" "$@" </dev/null 2>>"$work/errors"
}
status_of() {
    local status=0
    "$@" >/dev/null || status=$?
    echo "$status"
}

# --- one company, converted by both programs
definitions() {
    local level=0 column
    printf '[Alv255]\nLahdeAlvLuokkaEdit=1\nKohdeAlvLuokkaEdit=5\n'
    for column in hinta kaksoishinta hinta3 hinta4 hinta5 hinta6 hinta7 hinta8 hinta9; do
        level=$((level + 1))
        printf 'Hinta%sEdit=1.0120967741935485\nHintaLahde%s=%s\nSailytaAlv0_CheckBox%s=1\n' \
            "$level" "$level" "$column" "$level"
    done
    printf '%s=1.0120967741935485\n' OstohintaEdit ViimOstohintaEdit
    printf '%s=1\n' SailytaAlv0_CheckBoxMT SailytaAlv0_CheckBoxOT Tuotteet VieHr asiakashinnasto \
        Kampanjat MaaraAle cbVakioLaskutus MtCheckBox OtCheckBox Tuoteloki PyoristysRadioGroup
    printf '[Tyhjä]\nSelite=kohde puuttuu\n'
}
batch_list() { # NAME NAME: the first two entries
    printf '[ASETUKSET]\nmaar1=%s\nmaar2=%s\nmaar3=\nmaar4=\n' "$1" "$2"
}
make_company() { # NAME
    local place="$drive/Yritykset/$1"
    check "zavdb.exe demo $1" win zavdb.exe demo "$1" "C:\\Yritykset\\$1" --products "$products" \
        --seed 7
    check "zavdb demo $1" lin zavdb demo "$1" "$work/linux/$1" --products "$products" --seed 7
    mkdir -p "$place/MAARITYS" "$work/linux/$1/MAARITYS"
    definitions | tee "$place/MAARITYS/AlvMuutosLomake.INI" >"$work/linux/$1/MAARITYS/AlvMuutosLomake.INI"
}
# Exports every table as CSV, with the time of the run replaced by RUN.
export_tables() { # win|lin zavdb[.exe] COMPANY FOLDER
    local table
    mkdir -p "$4"
    for table in $(lin zavdb tables "$3" | cut -d' ' -f1); do
        "$1" "$2" export "$3" "$table" >"$4/$table" || return 1
        sed -i -E 's/\b'"$(date +%Y-%m-%d)"'[ ,][0-9]{2}:[0-9]{2}:[0-9]{2}\b/RUN/' "$4/$table"
    done
}
same_tables() { # COMPANY STAGE
    export_tables win zavdb.exe "$1" "$work/$2-win"
    export_tables lin zavdb "$1" "$work/$2-lin"
    diff -r -q "$work/$2-lin" "$work/$2-win" >"$work/difference" || {
        cat "$work/difference"
        diff -r "$work/$2-lin" "$work/$2-win" | head -n 12
        false
    }
}
run_both() { # EXPECTED-STATUS TEXT ARGUMENT...
    local expected=$1 text=$2
    shift 2
    check "exit status $expected: $text" same_text "$(status_of win taksavaihe.exe "$@")" "$expected"
    check "  and of the Linux program" same_text "$(status_of lin taksavaihe "$@")" "$expected"
}
log_texts() { # FILE: without times and computer names
    tr -d '\r' <"$1" | sed -E 's/^[0-9.]{10} [0-9:]{8}@[^ ]+  //'
}
marks() { # win|lin zavdb[.exe] COMPANY
    "$1" "$2" sql "$3" "select count(*) from ini where sektio='TAKSAVAIHE' and data<>''" |
        tr -d '\r' | tail -n 1
}

make_company "$company"
check "demo companies are identical" same_tables "$company" demo

batch_list Alv255 "" >"$program/ALVMUUTOS.INI"
cp "$program/ALVMUUTOS.INI" "$work/linux/ALVMUUTOS.INI"
run_both 2 "no such company" Olematon /E

check "exit status 0: a run" same_text "$(status_of win taksavaihe.exe "$company" /E)" 0
check "  and of the Linux program" same_text "$(status_of lin taksavaihe "$company" /E)" 0
check "tables are identical after the run" same_tables "$company" run
log=$drive/Yritykset/$company/ALVMUUTOS.LOG
check "logs are identical" diff <(log_texts "$log") \
    <(log_texts "$work/linux/$company/ALVMUUTOS.LOG")
check "every log line ends with CR LF" same_text \
    "$(grep -c $'\r$' "$log")" "$(wc -l <"$log")"
check "the log names the computer" grep -qiE "^[0-9.]{10} [0-9:]{8}@$(hostname)  " "$log"
check "taksavaihe.exe writes the run mark" same_text "$(marks win zavdb.exe "$company")" 1
run_both 3 "the run mark is set" "$company" /E
batch_list Alv255 Puuttuva >"$program/ALVMUUTOS.INI"
cp "$program/ALVMUUTOS.INI" "$work/linux/ALVMUUTOS.INI"
run_both 2 "an unknown definition" "$company" /E /U

# --- a renamed program, a refused definition
cp "$program/taksavaihe.exe" "$program/toinen.exe"
make_company Toinen
batch_list Tyhjä Alv255 >"$program/ALVMUUTOS.INI"
check "exit status 1: a refused definition" same_text "$(status_of win toinen.exe Toinen /E)" 1
check "a renamed program writes no run mark" same_text "$(marks win zavdb.exe Toinen)" 0
check "  but runs" grep -q "Aloitetaan muutos määrittelylle: Alv255" \
    "$drive/Yritykset/Toinen/ALVMUUTOS.LOG"

# --- a record locked by another program
make_company Lukko
batch_list Alv255 "" >"$program/ALVMUUTOS.INI"
number=$(win zavdb.exe sql Lukko "select NUMERO from TUOTE where LVV = 1 order by NUMERO" |
    tr -d '\r' | sed -n 2p)
held=$drive/Yritykset/held
win hold_record.exe Lukko TUOTE "$number" 'C:\Yritykset\held' &
check "hold_record.exe locks a record" wait_for 20 test -e "$held"
check "exit status 1: the locked product is skipped" same_text \
    "$(status_of win taksavaihe.exe Lukko /E)" 1
rm -f "$held"
wait $! || true
check "  only it keeps its class" same_text "$(win zavdb.exe sql Lukko \
    "select NUMERO from TUOTE where LVV = 1" | tr -d '\r' | tail -n +2)" "$number"

# --- companies registered for all users, long paths
timeout 60 wine reg add 'HKLM\Software\Taksavaihe\Aliases\Koneen' /v PhysicalName /d "$folder" \
    /reg:32 /f >/dev/null 2>&1
timeout 60 wine reg add 'HKLM\Software\Taksavaihe\Aliases\Kaikkien' /v PhysicalName /d "$folder" \
    /reg:64 /f >/dev/null 2>&1
check "companies registered for all users, including by 32-bit programs" same_text \
    "$(win zavdb.exe list | tr -d '\r' | grep -cE '^(Koneen|Kaikkien)\b')" 2
long=C:\\Yritykset
for _ in 1 2 3 4 5 6; do
    long=$long\\kansio-jolla-on-hyvin-pitkä-nimi-jottei-polku-mahdu
done
check "a company folder with a path of ${#long} characters" win zavdb.exe create Pitkä "$long"
check "  zavdb.exe checks it" win zavdb.exe check Pitkä
batch_list "" "" >"$program/ALVMUUTOS.INI"
check "  taksavaihe.exe opens it" same_text "$(status_of win taksavaihe.exe Pitkä /E)" 0

# --- the shops' engine: client library and ODBC by their Windows names
driver=$(find /usr/lib -name libsqlite3odbc.so -print -quit)
if [ -n "$driver" ] && [ -e "$linux/zavsql.so" ]; then
    cp "$release/fake_client.dll" "$program/w64btrv.dll"
    mkdir -p "$drive/Yritykset/Kauppa"
    printf 'Kauppa\tC:\\Yritykset\\Toinen\n' >"$work/databases"
    printf '[Kauppa]\nDriver=%s\nDatabase=%s\nLoadExt=%s\n' "$driver" \
        "$drive/Yritykset/Toinen/YRITYS.ZDB" "$linux/zavsql.so" >"$work/odbc.ini"
    export ODBCINI=$work/odbc.ini FAKE_CLIENT_DATABASES=Z:${work//\//\\}\\databases
    timeout 60 wine reg add 'HKCU\Software\Taksavaihe\Aliases\Kauppa' /v PhysicalName \
        /d 'C:\Yritykset\Kauppa' /f >/dev/null 2>&1
    check "tables through w64btrv.dll" same_text "$(win zavdb.exe export Kauppa TRYHMA)" \
        "$(win zavdb.exe export Toinen TRYHMA)"
    check "statements through odbc32.dll" same_text \
        "$(win zavdb.exe sql Kauppa 'select NUMERO, HINTA from TUOTE where LVV = 5')" \
        "$(win zavdb.exe sql Toinen 'select NUMERO, HINTA from TUOTE where LVV = 5')"
else
    echo "SKIPPED: the shops' engine (libsqlite3odbc.so or $linux/zavsql.so is missing)"
fi

# --- the installer
installer=$(find "$release" -maxdepth 1 -name 'taksavaihe-*.exe' -print -quit)
if [ -n "$installer" ]; then
    target=$drive/Asennus/Taksavaihe
    setup() { timeout 180 wine "$installer" /S '/D=C:\Asennus\Taksavaihe' >/dev/null 2>&1; }
    check "the installer installs" setup
    check "  the release folder's files and an uninstaller" same_text "$(cd "$target" && find . -type f | LC_ALL=C sort)" \
        "$( (cd "$release/Taksavaihe" && find . -type f && echo ./poista.exe) | LC_ALL=C sort)"
    check "  a start menu entry" test -n "$(find "$drive/ProgramData" "$drive/users" -name 'Taksavaihe.lnk' -print -quit)"
    batch_list Alv255 "" >"$target/ALVMUUTOS.INI"
    touch "$target/vanha.dll"
    check "an upgrade" setup
    check "  keeps ALVMUUTOS.INI" same_text "$(cat "$target/ALVMUUTOS.INI")" "$(batch_list Alv255 "")"
    timeout 120 wine "$target/poista.exe" /S >/dev/null 2>&1 || true
    wait_for 20 test ! -e "$target/poista.exe" || true  # it continues in a copy of itself
    sleep 1
    check "the uninstaller leaves only user files" same_text \
        "$(cd "$target" && find . -type f | LC_ALL=C sort | tr '\n' ' ')" "./ALVMUUTOS.INI ./vanha.dll "
    check "  companies remain" win zavdb.exe tables "$company" >/dev/null
fi

# --- windows
main_window() {
    xdotool search --onlyvisible --name "Alvluokkien ja hintojen muutokset" >/dev/null 2>&1
}
batch_list Alv255 "" >"$program/ALVMUUTOS.INI"
{ win taksavaihe.exe "$company" /U; } 2>/dev/null &
check "the main window opens" wait_for 60 main_window
timeout 20 /usr/lib/wine/wineserver64 -k || true

if [ "$failures" -gt 0 ]; then
    echo "$failures checks FAILED. Standard error of the programs:"
    tail -n 20 "$work/errors"
    exit 1
fi
echo "All checks passed."
