#!/usr/bin/env bash
# Reduces the bracket of examples/calculix to a Craig-Bampton set, lets the library make its modes
# orthogonal, and compares the frequencies with those of scipy and of the solver.
#
#   run.sh BUILD_DIR OUT_DIR
#
# Uses the library of BUILD_DIR and leaves its files in OUT_DIR. CFLAGS goes to the compiler.
# Ends with 77 when ccx or scipy is missing (Debian packages calculix-ccx and python3-scipy).
set -euo pipefail

# shellcheck source=examples/prepare.sh
. "$(dirname "${BASH_SOURCE[0]}")/../prepare.sh"
interface_nodes=8
normal_modes=40

# The packages belong to the system's interpreter, which need not be the first on the path.
python=
for candidate in python3 /usr/bin/python3; do
  if "$candidate" -c 'import scipy.sparse' 2>/dev/null; then
    python=$candidate
    break
  fi
done
if [ -z "$python" ] || ! command -v ccx >/dev/null; then
  echo "skipped: examples/craig_bampton needs the Debian packages calculix-ccx and python3-scipy"
  exit 77
fi

cp "$examples"/calculix/bracket-matrices.inp "$output"
for file in bracket-mesh.inp bracket.dat; do
  gzip -dc "$examples/calculix/solved/$file.gz" > "$output/$file"
done
cd "$output"

echo "The solver stores stiffness and mass matrix"
# Its exit code says nothing: it is 0 after an error too.
OMP_NUM_THREADS=1 ccx bracket-matrices > ccx.log 2>&1 || true
if ! grep -q 'Job finished' ccx.log || grep -q '\*ERROR' ccx.log; then
  echo "run.sh: the solver failed:" >&2
  tail -n 30 ccx.log >&2
  exit 1
fi

echo "Reduction"
"$python" "$here/reduce.py" bracket-mesh.inp bracket-matrices reduced.txt \
  "$interface_nodes" "$normal_modes"

echo "Write, read back, compare"
compile craig_bampton
rm -f bracket.qdl
./craig_bampton reduced.txt bracket.qdl bracket.dat
