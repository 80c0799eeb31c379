#!/usr/bin/env bash
# bench/math.sh [FOLDER]: formulas a second on one core, beside KaTeX's renderToString in the same run. FOLDER is where
# `npm install katex` was run; without it only our own figures are printed, one JSON object a line.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$here/build/bench}
formulas=$here/bench/Views/formulas.txt

"$here/tools/build.sh" bench formula_bench >&2
ours=$("$build/bench/Views/formula_bench" "$formulas")
echo "$ours"
[[ $# -ge 1 ]] || exit 0

reference=$(cd "$1" && node -e '
const katex = require("katex");
const formulas = require("fs").readFileSync(process.argv[1], "utf8").split("\n").filter(Boolean);
const round = () => formulas.forEach(f => katex.renderToString(f, {displayMode: true, output: "html", throwOnError: false}));
for (let i = 0; i < 200; i++) round();
const start = process.cpuUsage();
let done = 0;
const spent = () => { const used = process.cpuUsage(start); return (used.user + used.system) / 1e6; };
do { round(); done += formulas.length; } while (spent() < 2);
console.log(Math.round(done / spent()));
' "$formulas")
rate=$(sed -n 's/.*"job":"formula-to-tree".*"per_second":\([0-9]*\).*/\1/p' <<<"$ours")
awk -v o="$rate" -v r="$reference" 'BEGIN {
    printf "{\"job\": \"formula-to-tree\", \"ours_per_second\": %d, \"reference\": \"KaTeX renderToString\", " \
           "\"reference_per_second\": %d, \"ratio\": %.2f, \"aim\": \"ratio >= 5\", \"to_aim\": %.2f}\n", o, r, o / r, 5 - o / r }'
