#!/bin/bash
# Walks a generated tree of 100,000 files in 1,000 directories with
# `quilldex-cli scan` and with `find DIR -type f`, and prints both times and
# their ratio (ours / find). Usage: bench/scan_tree.sh [BUILD_DIR]
set -euo pipefail
build=${1:-build}
cli=$(realpath "$build/app/quilldex-cli")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Application directory with the delivered catalog.
mkdir -p "$work/home"
cp "$build/data/qd.mdb" "$work/home/qd.mdb"

# 1,000 directories (the root, 9 below it, 110 below each of those), 100
# files in each: 100,000 files.
tree="$work/tree"
python3 - "$tree" <<'PY'
import os, sys
root = sys.argv[1]
def files(d):
    os.makedirs(d, exist_ok=True)
    for n in range(100):
        open(os.path.join(d, f"img{n:03d}.jpg"), "wb").close()
files(root)
for a in range(9):
    files(os.path.join(root, f"d{a}"))
    for b in range(110):
        files(os.path.join(root, f"d{a}", f"e{b:03d}"))
PY
# Each side runs 9 times, alternating, output to /dev/null; the best wall
# time and the best processor time (user + system) of each are kept, so that
# other load on the machine counts as little as it can.
python3 - "$cli" "$work/home" "$tree" "$work/empty" <<'PY'
import os, subprocess, sys, time
cli, home, tree, empty = sys.argv[1:5]
os.makedirs(empty, exist_ok=True)
ours = [cli, "--home", home, "scan", tree]
ref = ["find", tree, "-type", "f"]
start = [cli, "--home", home, "scan", empty]

def run(cmd):
    t0 = time.perf_counter()
    p = subprocess.Popen(cmd, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(p.pid, 0)
    wall = time.perf_counter() - t0
    if status != 0:
        sys.exit(f"{cmd[0]} failed")
    return wall, usage.ru_utime + usage.ru_stime

def count(cmd):
    out = subprocess.run(cmd, capture_output=True, text=True).stdout
    return len(out.splitlines())

best = {"ours": [9e9, 9e9], "find": [9e9, 9e9], "start": [9e9, 9e9]}
for _ in range(9):
    for name, cmd in (("ours", ours), ("find", ref), ("start", start)):
        w, c = run(cmd)
        best[name][0] = min(best[name][0], w)
        best[name][1] = min(best[name][1], c)
dirs = sum(1 for _ in os.walk(tree))
print(f"tree: {count(ref)} files in {dirs} directories")
print(f"quilldex-cli scan: {best['ours'][0]:.3f} s wall, {best['ours'][1]:.3f} s cpu ({count(ours)} paths)")
print(f"find -type f:      {best['find'][0]:.3f} s wall, {best['find'][1]:.3f} s cpu")
print(f"  of which the program's start (scan of an empty directory): "
      f"{best['start'][0]:.3f} s wall, {best['start'][1]:.3f} s cpu")
print(f"ratio ours/find: {best['ours'][0] / best['find'][0]:.2f} wall, "
      f"{best['ours'][1] / best['find'][1]:.2f} cpu")
PY
