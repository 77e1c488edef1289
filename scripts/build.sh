#!/usr/bin/env bash
# Configures and builds one build tree. Usage: scripts/build.sh DIR [cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build}
shift || true
cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" > "$dir.configure.log" 2>&1 || {
  cat "$dir.configure.log"; exit 1; }
ninja -C "$dir"
