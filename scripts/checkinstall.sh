#!/usr/bin/env bash
# Installs a build tree into a temporary prefix, builds the embedding example
# against the installed package (through find_package and through
# pkg-config), runs it, and checks its numbers against the command-line
# host's run of the same analyses on the same data.
# Usage: scripts/checkinstall.sh BUILD_DIR [BSN_HOST]   (host: BUILD_DIR/bsn)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:?usage: scripts/checkinstall.sh BUILD_DIR [BSN_HOST]}
host=${2:-$build/bsn}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
fail() { echo "checkinstall: $*" >&2; exit 1; }
logged() {  # runs a command quietly, showing its output only when it fails
  local log=$work/step.log
  "$@" > "$log" 2>&1 || { cat "$log" >&2; fail "failed: $*"; }
}

logged cmake --install "$build" --prefix "$prefix"

# The example sees nothing of the source tree but its own folder.
logged cmake -S examples/embed -B "$work/cmake" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH="$prefix"
grep -q "^bsn_DIR:PATH=$prefix/" "$work/cmake/CMakeCache.txt" || fail "find_package(bsn) did not use the installed package"
logged ninja -C "$work/cmake"
"$work/cmake/embedhost" > "$work/example.txt" 2> "$work/progress.txt" || fail "the example failed"
grep -q "progress: 100%" "$work/progress.txt" || fail "the example reported no progress"

pc=$(find "$prefix" -name bsn.pc)
[ -n "$pc" ] || fail "bsn.pc was not installed"
export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$pc")
read -r -a pcflags <<< "$(pkg-config --cflags --libs bsn)"
logged c++ -std=c++20 -O1 examples/embed/embedhost.cpp "${pcflags[@]}" -o "$work/embedhost-pc"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir bsn) "$work/embedhost-pc" > "$work/example-pc.txt" 2> /dev/null \
  || fail "the example built through pkg-config failed"
diff -u "$work/example.txt" "$work/example-pc.txt" || fail "the two builds of the example disagree"

# Every installed header compiles on its own include path: nothing includes
# a file that was not installed.
includedir=$(pkg-config --variable=includedir bsn)
(cd "$includedir" && find . -name '*.h' | sort | sed 's|^\./\(.*\)|#include "\1"|') > "$work/allheaders.cpp"
logged c++ -std=c++20 -fsyntax-only "${pcflags[@]}" "$work/allheaders.cpp"

for analysis in normal related; do
  "$host" run "examples/embed/$analysis.json" examples/embed/data.csv --json "$work/$analysis.json" -q > /dev/null \
    || fail "the command-line host failed on examples/embed/$analysis.json"
done

python3 - "$work/example.txt" "$work/normal.json" "$work/related.json" <<'PY'
import json, sys

# The example prints one table per analysis: a title line, a header line
# and one row per test variable or pair (name, then seven numbers at six
# significant digits, "." for missing).
sections = []
for line in open(sys.argv[1]):
    if not line.startswith(" "):
        sections.append([])
    elif line.split()[0] not in ("variable", "warning:", "error:", "settings"):
        sections[-1].append(line.split())
    elif line.split()[0] != "variable":
        sys.exit("checkinstall: the example reported: " + line.strip())

getters = ["GetBayesFactors", "GetLogBayesFactors", "GetModeValues", "GetPostMeanValues", "GetVarianceValues",
           "GetLowerLimits", "GetUpperLimits"]
if len(sections) != len(sys.argv) - 2:
    sys.exit(f"checkinstall: the example printed {len(sections)} analyses, expected {len(sys.argv) - 2}")
failures = checked = 0
for rows, path in zip(sections, sys.argv[2:]):
    results = json.load(open(path))["results"]
    expected_rows = len(results["GetVarIndices"])
    if len(rows) != expected_rows:
        sys.exit(f"checkinstall: {len(rows)} rows printed for {path}, the host has {expected_rows}")
    for i, row in enumerate(rows):
        for getter, printed in zip(getters, row[-7:]):
            value = results[getter][i]
            want = "." if value is None else "%.6g" % value
            checked += 1
            if printed != want:
                failures += 1
                print(f"checkinstall: {' '.join(row[:-7])} {getter}: example {printed}, host {want}")
if failures:
    sys.exit(f"checkinstall: {failures} of {checked} numbers differ")
print(f"checkinstall: the installed example agrees with the host on all {checked} numbers")
PY
