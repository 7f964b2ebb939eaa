#!/usr/bin/env bash
# A reduced model with dense matrices, made orthogonal by the library and held against two other
# solvers (examples/craig_bampton).
set -euo pipefail

build=$(dirname "$(dirname "$1")")
output=$2
rm -rf "$output"
mkdir -p "$output"

if nm -D "$build/qdlflex/libqdlflex.so" | grep __asan_init >/dev/null; then
  echo "skipped: a program without sanitizers can't load a library that has them"
  exit 77
fi
exec bash examples/craig_bampton/run.sh "$build" "$output"
