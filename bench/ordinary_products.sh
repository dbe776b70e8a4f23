# shellcheck shell=bash
# SQL of an ordinary SQLite table with the columns and keys of the products; sourced by the benchmarks.

ordinary_products() {
    awk 'BEGIN {print "PRAGMA journal_mode=WAL; create table TUOTE ("}
         $1 == "field" {type = $4 == "float" ? "REAL" : $4 ~ /^(string|date|time)$/ ? "TEXT" : "INTEGER"
                        printf "%s%s %s", (n++ ? ", " : ""), $3, type}
         END {print ");"}' "$(dirname "${BASH_SOURCE[0]}")/../data/dictionary/tables/tuote.dict"
}

ordinary_keys() {
    local key number=1
    echo "create unique index tuote0 on TUOTE(NUMERO);"
    for key in "NUMERO collate nocase" "RYHMA,NUMERO" "PAARYHMA,NUMERO" "TOIMITTAJA,TOIMTUNNUS" \
        "NIMI collate nocase" "AliRyhma,NUMERO"; do
        echo "create index tuote$number on TUOTE($key);"
        number=$((number + 1))
    done
}
