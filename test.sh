#!/usr/bin/env bash
# Usage: ./test.sh [CTEST-ARGUMENT…]      for instance ./test.sh -R PDFPage
# Installs what is missing (Debian 12), builds everything with warnings as errors and runs every test, without a display.
set -euo pipefail

cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")"

tools/install-packages.sh build test
tools/build.sh dev
export QT_QPA_PLATFORM=offscreen
# One more than there are cores: tests wait too, for timers and for other programs.
exec ctest --preset dev --parallel $(($(nproc) + 1)) "$@"
