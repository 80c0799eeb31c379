#!/usr/bin/env bash
# Usage: tools/coverage.sh [TEST-PROGRAM…]      for instance tools/coverage.sh document_test
# Prints for each folder of src how much of its lines and branches the tests run, in percent: those of the named programs,
# or all. The branches that only an exception takes out of a call don't count. Each file's figures are left in
# build/coverage/files.csv.
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

gcovr --root . --filter src/ --exclude-throw-branches -j "$(nproc)" --csv "$folder/files.csv" "$folder/src"
awk -F, '
    function row(name) {
        printf "%-22s %7d %5.1f%% %7d %5.1f%%\n", name, lines[name], 100 * run[name] / (lines[name] ? lines[name] : 1),
            branches[name], 100 * taken[name] / (branches[name] ? branches[name] : 1)
    }
    function add(name) {
        lines[name] += $2
        run[name] += $3
        branches[name] += $5
        taken[name] += $6
    }
    # file name, lines, lines run, percent, branches, branches taken, percent
    NR == 1 { printf "%-22s %14s %14s\n", "", "lines", "branches"; next }
    {
        depth = split($1, parts, "/")
        folder = parts[2] (depth > 3 && parts[2] ~ /^(Platform|Views)$/ ? "/" parts[3] : "")
        add(folder)
        add("all")
        if (folder != last && last != "")
            row(last)
        last = folder
    }
    END { row(last); row("all") }' "$folder/files.csv"
exit "$result"
