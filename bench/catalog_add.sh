#!/usr/bin/env bash
# `quilldex-cli catalog-add` over 100,000 new paths into a fresh copy of the
# delivered catalog, beside SQLite's C interface doing the same lookups and
# inserts with the same journal settings (bench/sqlite_catalog_add.cpp) on
# the same list and another fresh copy. Both are whole processes timed from
# start to exit; every row is in the catalog file when each ends. Prints
# files per second for both and their ratio.
#
#   bench/catalog_add.sh [BUILD_DIR]      (default: build)
#
# Each side runs five times, alternating; the best wall time of each counts.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
count=100000
cmake --build "$build" --target quilldex-cli sqlite_catalog_add >/dev/null
cli=$(realpath "$build/app/quilldex-cli")
ref=$(realpath "$build/bench/sqlite_catalog_add")
pristine=$(realpath "$build/data/qd.mdb")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
awk -v n="$count" 'BEGIN { for (i = 0; i < n; i++)
    printf "/home/user/photos/%04d/img_%06d.jpg\n", int(i / 100), i }' >"$work/paths.txt"
mkdir -p "$work/home" "$work/ref"

now() { date +%s.%N; }
best() { printf '%s\n' "$@" | sort -g | head -n1; }

ours_times=() ref_times=()
for run in 1 2 3 4 5; do
    cp "$pristine" "$work/home/qd.mdb"; chmod u+w "$work/home/qd.mdb"
    cp "$pristine" "$work/ref/qd.mdb"; chmod u+w "$work/ref/qd.mdb"
    sync
    t0=$(now)
    "$cli" --home "$work/home" catalog-add --catalog Bench --from "$work/paths.txt" >"$work/out.txt"
    t1=$(now)
    "$ref" "$work/ref/qd.mdb" "$work/paths.txt"
    t2=$(now)
    ours_times+=("$(echo "$t1 - $t0" | bc -l)")
    ref_times+=("$(echo "$t2 - $t1" | bc -l)")
done
rows=$(sqlite3 "$work/home/qd.mdb" "select count(*) from filenames where catalog='Bench'")
ref_rows=$(sqlite3 "$work/ref/qd.mdb" "select count(*) from filenames where catalog='Bench'")
[ "$rows" -eq "$count" ] && [ "$ref_rows" -eq "$count" ] ||
    { echo "rows in the catalogs: ours $rows, SQLite $ref_rows, expected $count" >&2; exit 1; }
ours=$(best "${ours_times[@]}")
sqlite=$(best "${ref_times[@]}")
printf 'paths                      %d, all new\n' "$count"
printf 'quilldex-cli catalog-add   %7.3f s  %8.0f files/s  (runs: %s)\n' \
    "$ours" "$(echo "$count / $ours" | bc -l)" "${ours_times[*]}"
printf 'SQLite C interface         %7.3f s  %8.0f files/s  (runs: %s)\n' \
    "$sqlite" "$(echo "$count / $sqlite" | bc -l)" "${ref_times[*]}"
printf 'ratio ours/SQLite (rate)   %7.2f\n' "$(echo "$sqlite / $ours" | bc -l)"
printf 'target >= 40000 files/s    %s\n' \
    "$(echo "$count / $ours >= 40000" | bc -l | sed 's/1/met/;s/0/not met/')"
