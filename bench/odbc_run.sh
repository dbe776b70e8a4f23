#!/bin/bash
# Compares the products step over ODBC with a plain C program that sends the same statements.
# Usage: bench/odbc_run.sh [BIN-FOLDER] [PRODUCTS] [ROUNDS]   (needs a build with TAKSAVAIHE_BENCH)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/sql_servers.sh

bin=${1:-build/bin} products=${2:-5000} rounds=${3:-5}
folder=$(mktemp -d)
trap 'stop_sql_servers; rm -rf "$folder"' EXIT
start_sql_servers
export XDG_CONFIG_HOME=$folder/config QT_QPA_PLATFORM=offscreen
"$bin/odbc_run" taksavaihe-virtuoso "$folder/company" "$products" 2>/dev/null
for ((round = 0; round < rounds; round++)); do
    "$bin/plain_odbc" DSN=taksavaihe-virtuoso
    "$bin/odbc_run" taksavaihe-virtuoso "$folder/company"
done | tee "$folder/times"
awk '$1 == "plain:" && (!p || $4 < p) { p = $4 } $1 == "run:" && (!r || $4 < r) { r = $4 }
     END { printf "best of each: %.3f s / %.3f s = %.2f\n", r, p, r / p }' "$folder/times"
