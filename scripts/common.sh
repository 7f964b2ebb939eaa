# Sourced by the scripts of this folder; leaves the caller in the root of the repository.
set -euo pipefail
export LC_ALL=C.UTF-8

cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
jobs=$(nproc)

if [ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ] && command -v ccache >/dev/null; then
  export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
  # Build folders share what they compile alike; the second is what precompiled headers want.
  export CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
fi

say() {
  printf '\n== %s\n' "$*"
}

fail() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# build PRESET [TARGET...]: configures and builds into build/PRESET, everything without a target.
# QDLFLEX_WERROR=ON makes warnings errors.
build() {
  local preset=$1
  shift
  say "configure and build: preset $preset, folder build/$preset"
  cmake --preset "$preset" -DQDLFLEX_WERROR="${QDLFLEX_WERROR:-OFF}"
  cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"}
}
