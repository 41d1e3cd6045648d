#!/usr/bin/env bash
# The catalog file and a catalog on a PostgreSQL server side by side: starts a
# private server (loopback, spare port, temporary directory, as a plain user),
# runs build/bench/server_catalog_bench on 1,000,000 rows, and stops it.
# Usage: bench/server_catalog.sh [ROWS]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
bin=$(ls -d /usr/lib/postgresql/*/bin | sort -V | tail -1)
dir=$(mktemp -d /tmp/qd-pg-bench-XXXXXX)
as=()
if [ "$(id -u)" -eq 0 ]; then
  chown postgres "$dir"
  as=(runuser -u postgres --)
fi
port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
"${as[@]}" "$bin/initdb" -D "$dir/data" -U quilldex -A trust -E UTF8 --locale=C.UTF-8 >/dev/null
"${as[@]}" "$bin/pg_ctl" -D "$dir/data" -l "$dir/log" -w \
  -o "-h 127.0.0.1 -p $port -k $dir -c shared_buffers=256MB" start >/dev/null
trap '"${as[@]}" "$bin/pg_ctl" -D "$dir/data" -m fast -w stop >/dev/null; rm -rf "$dir"' EXIT
"${as[@]}" "$bin/psql" -h 127.0.0.1 -p "$port" -U quilldex -d postgres -qc 'create database bench'
"$here/build/bench/server_catalog_bench" "$here/build/data/qd.mdb" \
  "postgresql://quilldex@127.0.0.1:$port/bench" "${1:-1000000}"
