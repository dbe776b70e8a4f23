#!/bin/bash
# Compares the products step over ODBC, on both SQL servers of the tests, with a plain C program that sends
# the same statements.
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
    paste -d ' ' <(grep '^plain:' "$folder/times") <(grep '^run:' "$folder/times") | awk '{print $12 / $4}' |
        sort -n | awk -v server="$server" '{v[NR] = $1}
            END {printf "%s: median ratio of the pairs %.2f\n", server, (v[int((NR + 1) / 2)] + v[int(NR / 2) + 1]) / 2}'
done
