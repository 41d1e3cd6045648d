#!/usr/bin/env bash
# Page making at the size of a collection: one gallery page over 5,000 photos
# beside the thumbnail batch alone on the same files, and a slide show of
# 1,000 pages without resizing.
#
#   bench/pages.sh [INPUT_DIR] [WORK_DIR]
#
# The input (5,000 photo-like 1600 x 1200 JPEGs, about 2 GB) is made once and
# kept; WORK_DIR is emptied at each run.
set -euo pipefail
cd "$(dirname "$0")/.."
input=${1:-/tmp/quilldex_page_bench/input}
work=${2:-/tmp/quilldex_page_bench/work}
cmake --build build --target page_bench >/dev/null
bench=build/bench/page_bench
"$bench" make-input "$input" 5000
"$bench" gallery "$input" "$work" 5000
"$bench" slides "$input" "$work" 1000
rm -rf "$work"
