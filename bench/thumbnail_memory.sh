#!/usr/bin/env bash
# Peak memory of a thumbnail batch over four 9500 x 9500 PNGs (361 MB each
# when decoded; PNG has no reduced decode): `quilldex-cli thumbnails` beside
# vipsthumbnail on the same files, each measured as its maximum resident set
# size by /usr/bin/time -v. Pictures decoded at once share a budget of 1 GiB,
# so ours must stay below it however many cores work ahead.
#
#   bench/thumbnail_memory.sh [BUILD_DIR]      (default: build)
#
# The input is made once and kept in bench/cache/large_png (git-ignored).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
cache=bench/cache/large_png

cmake --build "$build" --target quilldex-cli >/dev/null
cli="$build/app/quilldex-cli"
mkdir -p "$cache"
if [ ! -f "$cache/large_4.png" ]; then
    gm convert -size 9500x9500 gradient:orange-navy -depth 8 "PNG24:$cache/large_1.png"
    for i in 2 3 4; do
        # Each file its own content, so nothing can be shared between them.
        gm convert "$cache/large_1.png" -rotate $((90 * (i - 1))) -depth 8 "PNG24:$cache/large_$i.png"
    done
fi
files=("$cache"/large_*.png)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/home" "$work/ours" "$work/vips"
cp "$build/app/qd.mdb" "$work/home/"

peak_kb() { sed -n 's/^[[:space:]]*Maximum resident set size (kbytes): //p' "$1"; }
now() { date +%s.%N; }

t0=$(now)
/usr/bin/time -v -o "$work/ours.time" \
    "$cli" --home "$work/home" thumbnails --target "$work/ours" --size 100 "${files[@]}" \
    >"$work/ours.out" 2>"$work/ours.err" || { cat "$work/ours.err" >&2; exit 1; }
t1=$(now)
/usr/bin/time -v -o "$work/vips.time" \
    vipsthumbnail -s 100 -o "$work/vips/%s_tn.jpg" "${files[@]}"
t2=$(now)

ours=$(peak_kb "$work/ours.time")
vips=$(peak_kb "$work/vips.time")
printf 'inputs                 %d PNGs, 9500 x 9500, 8-bit RGB, on %d cores\n' "${#files[@]}" "$(nproc)"
printf 'ours, thumbnails 100   %7.1f MB peak, %5.1f s, %d files\n' "$(echo "$ours / 1024" | bc -l)" \
    "$(echo "$t1 - $t0" | bc -l)" "$(wc -l <"$work/ours.out")"
printf 'vipsthumbnail -s 100   %7.1f MB peak, %5.1f s\n' "$(echo "$vips / 1024" | bc -l)" \
    "$(echo "$t2 - $t1" | bc -l)"
printf 'ratio ours/vips        %7.2f\n' "$(echo "$ours / $vips" | bc -l)"
printf 'decode budget          %7.1f MB (target: ours below it)\n' 1024
