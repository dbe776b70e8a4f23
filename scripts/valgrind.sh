#!/bin/bash
# One whole run of a small company and some fault tests under valgrind: no invalid access, no leak.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh

usage() {
    cat <<'USAGE'
Usage: scripts/valgrind.sh [--build DIR]

  --build DIR  build folder with the programs and fault_tests (default build)
USAGE
}

build=build
parse_options "build=" "$@"

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# The JIT code of regular expressions reads beyond the end of a text by design, so no JIT here.
export XDG_CONFIG_HOME=$folder/settings QT_QPA_PLATFORM=offscreen QT_ENABLE_REGEXP_JIT=0
checked=(valgrind --quiet --error-exitcode=99 --leak-check=full --show-leak-kinds=definite
    --errors-for-leak-kinds=definite --trace-children=no)

mkdir "$folder/bin"
cp "$build/bin/taksavaihe" "$folder/bin/"
"$build/bin/zavdb" demo Koe "$folder/data" --products 40 2>/dev/null
mkdir -p "$folder/data/MAARITYS"
{
    printf '[Alv]\nLahdeAlvLuokkaEdit=1\nKohdeAlvLuokkaEdit=5\nHintaLahde1=hinta\n'
    printf '%s=1.0120967741935485\n' Hinta1Edit OstohintaEdit
    printf '%s=1\n' Tuotteet Tuoteloki VieHr asiakashinnasto Kampanjat MaaraAle cbVakioLaskutus \
        MtCheckBox OtCheckBox chkCheckWebstoreCompliantProductIds
} >"$folder/data/MAARITYS/AlvMuutosLomake.INI"
printf '[ASETUKSET]\nmaar1=Alv\n' >"$folder/bin/ALVMUUTOS.INI"
"${checked[@]}" "$folder/bin/taksavaihe" Koe /E
grep -q 'Ostotilaukset konvertoitu' "$folder/data/ALVMUUTOS.LOG"
TAKSAVAIHE_FAULTS=${TAKSAVAIHE_FAULTS:-40} "${checked[@]}" "$build/bin/fault_tests" \
    --gtest_filter='FaultSweep.*-*CutOff*' --gtest_brief=1
echo "valgrind: no errors"
