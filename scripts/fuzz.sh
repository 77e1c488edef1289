#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan + UBSan) and runs each for a
# number of executions. Not part of CI.
#   scripts/fuzz.sh [RUNS] [TARGET...]     default: 1000000 runs of every target
#   FUZZ_SECONDS=N scripts/fuzz.sh ...     also stop each target after N seconds
# Corpora grow under build-fuzz/corpus/<target>; findings (crash-*, leak-*,
# timeout-*) are written to build-fuzz/findings/<target>/. Seeds come from
# fuzz/seeds/<target>/ and, for the data and whole-run targets, examples/.
# Needs clang and libfuzzer-14-dev: scripts/setup.sh --fuzz installs them.
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-1000000}
shift || true
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(fuzz_csv fuzz_settings fuzz_run)

dir=build-fuzz
# -O1 with line tables only: quick to build, fast enough to fuzz, and
# sanitizer reports still name file and line.
CC=clang CXX=clang++ cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS="-O1 -gline-tables-only" \
  -DBSN_FUZZ=ON -DBSN_BENCH=OFF \
  > "$dir.configure.log" 2>&1 || { cat "$dir.configure.log"; exit 1; }
ninja -C "$dir" "${targets[@]}"

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
for t in "${targets[@]}"; do
  corpus="$dir/corpus/$t" findings="$dir/findings/$t"
  mkdir -p "$corpus" "$findings"
  seeds=()
  [ -d "fuzz/seeds/$t" ] && seeds+=("fuzz/seeds/$t")
  echo "== $t: $runs runs"
  "$dir/$t" -runs="$runs" -max_total_time="${FUZZ_SECONDS:-0}" -max_len=4096 -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$findings/" "$corpus" "${seeds[@]}" 2>&1 | tail -n 25
done
