#!/usr/bin/env bash
# A throw-away PostgreSQL cluster for the tests: made by initdb in a
# temporary directory, run by an unprivileged user, reachable only through a
# Unix socket in that directory, and removed again.
#
#   pgcluster.sh start STATE_FILE   starts it and writes "dir=<directory>"
#   pgcluster.sh stop STATE_FILE    stops it and removes the directory
#
# When the server cannot be started the state file says "unavailable=<why>"
# and start still succeeds, so the tests report themselves skipped with the
# reason; with OXA_REQUIRE_POSTGRES set, start fails instead.
set -uo pipefail

action="${1:-}"
state="${2:-}"
[ -n "$action" ] && [ -n "$state" ] || { echo "usage: $0 start|stop STATE_FILE" >&2; exit 2; }

pgbin="$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)"

# initdb refuses to run as root: the cluster belongs to postgres or nobody.
runas=()
owner="$(id -un)"
if [ "$(id -u)" -eq 0 ]; then
    if id postgres >/dev/null 2>&1; then
        owner=postgres
        runas=(runuser -u postgres --)
    else
        owner=nobody
        runas=(setpriv --reuid=nobody --regid=nogroup --clear-groups --)
    fi
fi

stop_cluster() {
    local dir=""
    [ -f "$state" ] && dir="$(sed -n 's/^dir=//p' "$state")"
    if [ -n "$dir" ] && [ -d "$dir" ]; then
        "${runas[@]}" "$pgbin/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1
        rm -rf "$dir"
    fi
    rm -f "$state"
}

unavailable() {
    echo "PostgreSQL test server not started: $1" >&2
    echo "unavailable=$1" >"$state"
    [ -n "${OXA_REQUIRE_POSTGRES:-}" ] && exit 1
    exit 0
}

start_cluster() {
    stop_cluster
    [ -x "$pgbin/initdb" ] || unavailable "initdb not found (Debian package postgresql)"
    local dir
    dir="$(mktemp -d /tmp/oxa-pg.XXXXXX)" || unavailable "no temporary directory"
    # Whatever goes wrong from here on, the directory goes with it.
    trap 'rm -rf "$dir"' EXIT
    mkdir -p "$dir/sock"
    chmod 755 "$dir"
    chown -R "$owner" "$dir" 2>/dev/null
    if ! "${runas[@]}" "$pgbin/initdb" -D "$dir/data" -U oxa -A trust -E UTF8 --no-locale \
            --no-sync >"$dir/initdb.log" 2>&1; then
        unavailable "initdb failed: $(tail -n 1 "$dir/initdb.log")"
    fi
    if ! "${runas[@]}" "$pgbin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 \
            -o "-c listen_addresses='' -c unix_socket_directories='$dir/sock' -c fsync=off -c full_page_writes=off" \
            start >/dev/null 2>&1; then
        unavailable "server did not start: $(tail -n 1 "$dir/server.log" 2>/dev/null)"
    fi
    trap - EXIT
    echo "dir=$dir" >"$state"
    # Should the test run be killed before its cleanup step, the cluster
    # still goes when the process that started it ends.
    local parent="$PPID"
    setsid bash -c '
        while kill -0 '"$parent"' 2>/dev/null && [ -f "'"$state"'" ]; do sleep 2; done
        if [ -f "'"$state"'" ] && grep -q "^dir='"$dir"'$" "'"$state"'"; then
            "$0" stop "'"$state"'"
        fi' "$0" </dev/null >/dev/null 2>&1 &
}

case "$action" in
start) start_cluster ;;
stop) stop_cluster ;;
*) echo "usage: $0 start|stop STATE_FILE" >&2; exit 2 ;;
esac
