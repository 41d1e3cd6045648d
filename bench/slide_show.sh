#!/usr/bin/env bash
# The slide show's timing and its processor use while a slide stands:
# lateness of 20 one-second slides, and the share of a core over a
# ten-second slide, without and with the test tone playing behind it.
#
#   bench/slide_show.sh
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --build build --target slide_show_bench test_slides >/dev/null
tone=build/tests/media/tone.mp3
build/bench/slide_show_bench $( [ -f "$tone" ] && echo "$tone" ) 2>/dev/null
