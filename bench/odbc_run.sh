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
for server in virtuoso mariadb; do
    "$bin/odbc_run" "taksavaihe-$server" "$folder/$server" "$products" 2>/dev/null
    for ((round = 0; round < rounds; round++)); do
        "$bin/plain_odbc" "DSN=taksavaihe-$server"
        "$bin/odbc_run" "taksavaihe-$server" "$folder/$server"
    done | tee "$folder/times"
    awk -v server="$server" '
        $1 == "plain:" && (!p || $4 < p) { p = $4; f = $7 } $1 == "run:" && (!r || $4 < r) { r = $4 }
        END { printf "%s, best of each: %.3f s / %.3f s = %.2f; the query of plain C %.3f s\n", server, r, p, r / p, f }' "$folder/times"
done
