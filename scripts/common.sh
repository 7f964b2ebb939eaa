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

# build PRESET: configures and builds into build/PRESET. QDLFLEX_WERROR=ON makes warnings errors.
build() {
  say "configure and build: preset $1, folder build/$1"
  cmake --preset "$1" -DQDLFLEX_WERROR="${QDLFLEX_WERROR:-OFF}"
  cmake --build --preset "$1" -j "$jobs"
}
