#!/usr/bin/env bash
# The stored files are kept for ever: none is changed or removed, and each new one is listed.
set -euo pipefail
cd tests/golden
sha256sum --check --strict --quiet SHA256SUMS
diff <(printf '%s\n' *.qdl) <(cut -d' ' -f3 SHA256SUMS)
