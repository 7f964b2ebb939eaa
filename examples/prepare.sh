# Sourced by each run.sh with its arguments BUILD_DIR and OUT_DIR: finds the folders and the
# compiler.
# shellcheck shell=bash disable=SC2034

if [ $# -ne 2 ]; then
  echo "usage: run.sh BUILD_DIR OUT_DIR" >&2
  exit 2
fi
build=$(cd "$1" && pwd)
library=$build/qdlflex
mkdir -p "$2"
output=$(cd "$2" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[1]}")" && pwd)
examples=$(dirname "$here")

# compile PROGRAM: from its source beside run.sh, into the current folder.
compile() {
  # shellcheck disable=SC2086
  ${CC:-cc} -std=c99 -O2 -Wall -Wextra ${CFLAGS:-} -I "$examples/../include" "$here/$1.c" -o "$1" \
    -L "$library" -Wl,-rpath,"$library" -lqdlflex -lm
}
