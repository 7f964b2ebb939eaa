#!/usr/bin/env bash
# A reduced model with dense matrices, made orthogonal by the library and held against two other
# solvers (examples/craig_bampton).
set -euo pipefail

build=$(dirname "$(dirname "$1")")
output=$2
rm -rf "$output"
mkdir -p "$output"

# A program without sanitizers can't load a library that has them.
if ldd "$build/qdlflex/libqdlflex.so" | grep -q libasan; then
  export CFLAGS=-fsanitize=address
fi
exec bash examples/craig_bampton/run.sh "$build" "$output"
