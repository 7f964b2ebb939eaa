#!/usr/bin/env bash
# Solver results in, a QDL file out, and in again.
#
#   run.sh BUILD_DIR OUT_DIR
#
# Uses the command and the library of BUILD_DIR and leaves its files in OUT_DIR.
set -euo pipefail

# shellcheck source=examples/prepare.sh
. "$(dirname "${BASH_SOURCE[0]}")/../prepare.sh"
command=$build/cli/qdlflex

title() { printf '\n=== %s ===\n' "$*"; }

title "A bracket solved with CalculiX (examples/calculix)"
cp "$examples"/calculix/*.inp "$output"
for file in "$examples"/calculix/solved/*.gz; do
  gzip -dc "$file" > "$output/$(basename "$file" .gz)"
done
cd "$output"
ls -l bracket*

title "Import, orthonormalize, compute the inertia invariants"
rm -f bracket.qdl bracket-xdr-double.qdl bracket-native-single.qdl
"$command" import ccx bracket.frd --inp bracket.inp --dat bracket.dat \
  --mass bracket-matrices.mas --dof bracket-matrices.dof \
  --units mm-N-t-s --options full_invar -o bracket.qdl

# The invariants are those of all nodes; the file keeps the nodes that faces use.
title "Compare with what the solver printed (examples/demo/compare_with_solver.c)"
compile compare_with_solver
./compare_with_solver bracket.qdl bracket.dat

title "Write in two forms, open, compare (examples/demo/demo.c)"
compile demo
./demo bracket.qdl bracket-xdr-double.qdl bracket-native-single.qdl

title "qdlflex check bracket.qdl"
"$command" check bracket.qdl

for file in bracket-xdr-double.qdl bracket-native-single.qdl; do
  title "qdlflex info $file"
  "$command" info "$file"
done
