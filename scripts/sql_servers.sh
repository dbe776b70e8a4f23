# shellcheck shell=bash
# start_sql_servers and stop_sql_servers, for scripts that source this file: the SQL servers of the
# tests, on loopback, with their data in a temporary folder. No system file is touched; ODBCSYSINI
# and ODBCINI point the driver manager to the data sources.

sql_servers_folder=

free_port() {
    python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

odbc_driver() { # FILE
    find /usr/lib -path "*/odbc/$1" -print -quit
}

# wait_for SECONDS COMMAND...
wait_for() {
    local end=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$SECONDS" -lt "$end" ] || return 1
        sleep 0.2
    done
}

start_virtuoso() { # PORT
    local folder=$sql_servers_folder/virtuoso
    mkdir "$folder"
    cat >"$folder/virtuoso.ini" <<INI
[Database]
DatabaseFile = $folder/virtuoso.db
ErrorLogFile = $folder/virtuoso.log
LockFile = $folder/virtuoso.lck
TransactionFile = $folder/virtuoso.trx
xa_persistent_file = $folder/virtuoso.pxa
[TempDatabase]
DatabaseFile = $folder/temp.db
TransactionFile = $folder/temp.trx
[Parameters]
ServerPort = 127.0.0.1:$1
LiteMode = 1
CaseMode = 2
NumberOfBuffers = 8000
TimezonelessDatetimes = 0
INI
    virtuoso-t -f -c "$folder/virtuoso.ini" >"$folder/out" 2>&1 &
    virtuoso_pid=$!
}

start_mariadb() { # PORT
    local folder=$sql_servers_folder/mariadb user
    user=$(id -un)
    # a data folder of its own: the server takes every folder in it for a database
    mkdir "$folder" "$folder/data"
    mariadb-install-db --no-defaults --user="$user" --datadir="$folder/data" --skip-test-db \
        --auth-root-authentication-method=normal >"$folder/install" 2>&1
    cat >"$folder/start.sql" <<'SQL'
CREATE DATABASE taksavaihe;
CREATE USER taksavaihe@'127.0.0.1' IDENTIFIED BY 'taksavaihe';
CREATE USER taksavaihe@localhost IDENTIFIED BY 'taksavaihe';
GRANT ALL ON taksavaihe.* TO taksavaihe@'127.0.0.1';
GRANT ALL ON taksavaihe.* TO taksavaihe@localhost;
SQL
    # exact text comparison, case-insensitive table names
    mariadbd --no-defaults --user="$user" --datadir="$folder/data" --bind-address=127.0.0.1 \
        --port="$1" --socket="$folder/socket" --pid-file="$folder/pid" --init-file="$folder/start.sql" \
        --character-set-server=utf8mb4 --collation-server=utf8mb4_nopad_bin \
        --lower-case-table-names=1 --innodb-buffer-pool-size=32M --innodb-log-file-size=32M \
        >"$folder/out" 2>&1 &
    mariadb_pid=$!
}

write_data_sources() { # VIRTUOSO-PORT MARIADB-PORT
    cat >"$sql_servers_folder/odbcinst.ini" <<INI
[Virtuoso]
Driver = $(odbc_driver virtodbc_r.so)
[MariaDB]
Driver = $(odbc_driver libmaodbc.so)
[SQLite]
Driver = $(odbc_driver libsqlite3odbc.so)
INI
    cat >"$sql_servers_folder/odbc.ini" <<INI
[taksavaihe-virtuoso]
Driver = Virtuoso
Address = 127.0.0.1:$1
UserID = dba
Password = dba
[taksavaihe-mariadb]
Driver = MariaDB
SERVER = 127.0.0.1
PORT = $2
UID = taksavaihe
PWD = taksavaihe
DATABASE = taksavaihe
CHARSET = utf8mb4
[taksavaihe-sqlite]
Driver = SQLite
BigInt = 1
INI
}

# Returns when both servers accept connections. Exports the environment that the tests need.
start_sql_servers() {
    local virtuoso_port mariadb_port
    sql_servers_folder=$(mktemp -d "${TMPDIR:-/tmp}/taksavaihe-sql.XXXXXX")
    virtuoso_port=$(free_port)
    mariadb_port=$(free_port)
    start_virtuoso "$virtuoso_port"
    start_mariadb "$mariadb_port"
    write_data_sources "$virtuoso_port" "$mariadb_port"
    if ! wait_for 60 grep -qs "Server online" "$sql_servers_folder"/virtuoso/{out,virtuoso.log} ||
        ! wait_for 60 test -S "$sql_servers_folder/mariadb/socket"; then
        echo "The SQL servers do not start:" >&2
        tail -n 20 "$sql_servers_folder"/*/out >&2
        return 1
    fi
    export ODBCSYSINI=$sql_servers_folder ODBCINI=$sql_servers_folder/odbc.ini
    export TAKSAVAIHE_SQL_SERVERS=required
}

stop_sql_servers() {
    [ -n "$sql_servers_folder" ] || return 0
    local pid
    for pid in "${virtuoso_pid:-}" "${mariadb_pid:-}"; do
        [ -z "$pid" ] || kill "$pid" 2>/dev/null || true
    done
    for pid in "${virtuoso_pid:-}" "${mariadb_pid:-}"; do
        [ -z "$pid" ] || wait "$pid" 2>/dev/null || true
    done
    rm -rf "$sql_servers_folder"
    sql_servers_folder=
}
