#!/usr/bin/env bash
# Usage: tools/coverage.sh [TEST-PROGRAM…]      for instance tools/coverage.sh document_test
# Prints for each folder of src how much of its lines and branches the tests run, in percent: those of the named programs,
# or all; each file's figures are left in build/coverage/files.csv (see tools/coverage-table.py).
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
tools/install-packages.sh build test measure
tools/build.sh coverage "$@"

folder=build/coverage
export QT_QPA_PLATFORM=offscreen
find "$folder" -name '*.gcda' -delete
result=0
only=()
if (($# > 0)); then
    programs=$(IFS='|' && echo "$*")
    only=(--tests-regex "^($programs)(/|\$)")
fi
ctest --preset coverage --parallel "$(nproc)" "${only[@]}" || result=$?

tools/coverage-table.py "$folder"
exit "$result"
