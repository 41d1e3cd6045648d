#!/usr/bin/env bash
# Thumbnails of 100 photo-like 6000 x 4000 JPEGs: ours against vipsthumbnail
# on the same files in one run, and our single-thread cost per image against
# libjpeg-turbo's own 1/8 scaled decode (djpeg -scale 1/8), the decode floor.
#
#   bench/thumbnails.sh [BUILD_DIR]      (default: build)
#
# The input is made once and kept in bench/cache/photos (git-ignored).
# Each side runs three times; the best wall time of each is reported.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
count=100
cache=bench/cache/photos

cmake --build "$build" --target thumbnail_bench >/dev/null
bench="$build/bench/thumbnail_bench"
"$bench" make-input "$cache" "$count"
files=("$cache"/photo_*.jpg)
[ ${#files[@]} -eq "$count" ] || { echo "expected $count inputs in $cache" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat "${files[@]}" >/dev/null  # the same warm page cache for both sides

now() { date +%s.%N; }
best() { printf '%s\n' "$@" | sort -g | head -n1; }
elapsed() { echo "$2 - $1" | bc -l; }

vips_times=() ours_times=() ours_rss=()
for run in 1 2 3; do
    rm -rf "$work/vips" "$work/ours"; mkdir -p "$work/vips" "$work/ours"
    t0=$(now)
    vipsthumbnail -s 100 -o "$work/vips/%s_tn.jpg" "${files[@]}"
    t1=$(now)
    /usr/bin/time -f '%M' -o "$work/rss" "$bench" run "$cache" "$work/ours" 100 >"$work/ours.txt"
    t2=$(now)
    vips_times+=("$(elapsed "$t0" "$t1")")
    ours_times+=("$(elapsed "$t1" "$t2")")
    ours_rss+=("$(cat "$work/rss")")
done
written=$(ls "$work/ours" | wc -l)
vips=$(best "${vips_times[@]}")
ours=$(best "${ours_times[@]}")
rss_kb=$(printf '%s\n' "${ours_rss[@]}" | sort -g | tail -n1)

rm -rf "$work/single"; mkdir -p "$work/single"
t0=$(now)
"$bench" run "$cache" "$work/single" 100 1 >/dev/null
t1=$(now)
for f in "${files[@]}"; do djpeg -scale 1/8 "$f" >/dev/null; done
t2=$(now)
single=$(elapsed "$t0" "$t1")
floor=$(elapsed "$t1" "$t2")

printf 'inputs            %d JPEGs, 6000 x 4000, %s\n' "$count" "$(du -sh "$cache" | cut -f1)"
printf 'vipsthumbnail -s 100   %7.2f s  (runs: %s)\n' "$vips" "${vips_times[*]}"
printf 'ours, size 100         %7.2f s  (runs: %s), %d files\n' "$ours" "${ours_times[*]}" "$written"
printf 'ratio ours/vips        %7.2f   (target <= 1.0)\n' "$(echo "$ours / $vips" | bc -l)"
printf 'peak memory, ours      %7.1f MB (target < 300)\n' "$(echo "$rss_kb / 1024" | bc -l)"
printf 'ours, one thread       %7.1f ms per image\n' "$(echo "1000 * $single / $count" | bc -l)"
printf 'djpeg -scale 1/8       %7.1f ms per image (decode floor)\n' "$(echo "1000 * $floor / $count" | bc -l)"
printf 'load average           %s\n' "$(cut -d' ' -f1-3 /proc/loadavg)"
