#!/usr/bin/env bash
# Starts a throw-away PostgreSQL server for the data tests and prints the one line to export:
#   ZELKON_TEST_PG=Driver=QPSQL;Host=127.0.0.1;Port=...;Database=...;User=...;Password=...;
# Debian, as root. Installs postgresql when missing, creates a cluster in a fresh temporary
# directory owned by postgres, listens on 127.0.0.1 only, and returns leaving the server running.
# Running it again while that server still answers prints the same line and starts nothing.
# Usage: export "$(tests/data/postgres-server.sh)"   (stop it: tests/data/postgres-server.sh stop)
set -euo pipefail

STATE=${ZELKON_PG_STATE:-/tmp/zelkon-test-pg.state}
PORT=${ZELKON_PG_PORT:-54329}
DB=zelkon_test
ROLE=zelkon

log() { echo "postgres-server: $*" >&2; }

if [ "$(id -u)" -ne 0 ]; then
    log "must run as root (it installs packages and runs the server as user postgres)"
    exit 1
fi

bindir() { ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1; }
if [ -z "$(bindir)" ] || [ ! -x "$(bindir)/initdb" ]; then
    log "installing postgresql"
    DEBIAN_FRONTEND=noninteractive apt-get update -qq >&2
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq postgresql >&2
fi
BIN=$(bindir)
id -u postgres >/dev/null 2>&1 || { log "no user postgres after installing postgresql"; exit 1; }

line() { echo "ZELKON_TEST_PG=Driver=QPSQL;Host=127.0.0.1;Port=$1;Database=$DB;User=$ROLE;Password=$2;"; }

# The state file holds: data directory, port, password.
if [ -f "$STATE" ]; then
    read -r OLD_DIR OLD_PORT OLD_PASSWORD <"$STATE" || true
    if [ "${1:-}" = stop ]; then
        runuser -u postgres -- "$BIN/pg_ctl" -D "$OLD_DIR/data" -m fast -w stop >&2 || true
        rm -rf "$OLD_DIR" "$STATE"
        exit 0
    fi
    if [ -n "${OLD_DIR:-}" ] && [ -d "$OLD_DIR/data" ] \
        && runuser -u postgres -- "$BIN/pg_ctl" -D "$OLD_DIR/data" status >/dev/null 2>&1 \
        && "$BIN/pg_isready" -q -h 127.0.0.1 -p "$OLD_PORT"; then
        line "$OLD_PORT" "$OLD_PASSWORD"
        exit 0
    fi
    # A stale state (a reboot, a removed directory): stop what may be left and start afresh.
    if [ -n "${OLD_DIR:-}" ] && [ -d "$OLD_DIR/data" ]; then
        runuser -u postgres -- "$BIN/pg_ctl" -D "$OLD_DIR/data" -m fast -w stop >/dev/null 2>&1 || true
        rm -rf "$OLD_DIR"
    fi
    rm -f "$STATE"
fi
[ "${1:-}" = stop ] && exit 0

port_taken() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }
while port_taken "$PORT"; do
    PORT=$((PORT + 1))
done

DIR=$(mktemp -d /tmp/zelkon-pg.XXXXXX)
chown postgres: "$DIR"
chmod 700 "$DIR"
PASSWORD=$(head -c 12 /dev/urandom | od -An -tx1 | tr -d ' \n')

log "creating a cluster in $DIR"
runuser -u postgres -- "$BIN/initdb" -D "$DIR/data" -U postgres --auth-local=trust \
    --auth-host=scram-sha-256 -E UTF8 --locale=C.UTF-8 >"$DIR/initdb.log" 2>&1 \
    || { cat "$DIR/initdb.log" >&2; exit 1; }
# Only the loopback address, and the socket in the cluster's own directory.
runuser -u postgres -- "$BIN/pg_ctl" -D "$DIR/data" -l "$DIR/server.log" -w -t 60 \
    -o "-c listen_addresses=127.0.0.1 -p $PORT -k $DIR" start >&2 \
    || { cat "$DIR/server.log" >&2; exit 1; }

psql_admin() { runuser -u postgres -- "$BIN/psql" -v ON_ERROR_STOP=1 -q -h "$DIR" -p "$PORT" -U postgres -d postgres "$@"; }
psql_admin -c "CREATE ROLE $ROLE LOGIN PASSWORD '$PASSWORD'" >&2
psql_admin -c "CREATE DATABASE $DB OWNER $ROLE" >&2

echo "$DIR $PORT $PASSWORD" >"$STATE"
line "$PORT" "$PASSWORD"
