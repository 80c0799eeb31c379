#!/usr/bin/env bash
# bench/recognition.sh: recognizing a scan of 20 pages (300 dots per inch, light noise, every third page turned by one
# degree) beside ocrmypdf with two jobs, in turn. Prints one JSON object a line: pages a minute, of RUNS (3) the median,
# and the share of the known words that were read; then, of 100 pages, what a frame takes while they are scrolled
# through, and the memory. Needs the packages ocrmypdf and tesseract-ocr-eng.
set -euo pipefail

runs=${RUNS:-3}
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$here/build/bench}
command -v ocrmypdf >/dev/null || {
    echo "Quillo: the reference is missing: apt-get install ocrmypdf" >&2
    exit 1
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$here/tools/build.sh" bench recognition_bench >&2
bench=$build/bench/Document/recognition_bench
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
"$bench" make "$work/scan.pdf" "$work/text.txt"

# seconds COMMAND…
seconds() {
    local begin=$EPOCHREALTIME
    "$@" >/dev/null 2>"$work/errors" || {
        cat "$work/errors" >&2
        exit 1
    }
    awk -v b="$begin" -v e="$EPOCHREALTIME" 'BEGIN { print e - b }'
}
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

for ((i = 0; i < runs; i++)); do
    seconds "$bench" apply "$work/scan.pdf" "$work/ours.pdf" >>"$work/ours"
    seconds ocrmypdf --jobs 2 --output-type pdf "$work/scan.pdf" "$work/reference.pdf" >>"$work/reference"
done
awk -v o="$(median <"$work/ours")" -v r="$(median <"$work/reference")" 'BEGIN {
    printf "{\"job\": \"recognize\", \"pages_per_minute\": %.1f, \"reference\": \"ocrmypdf --jobs 2\", " \
           "\"reference_pages_per_minute\": %.1f, \"ratio\": %.2f, \"aim\": \"ratio >= 1.2\", \"to_aim\": %.2f}\n",
           1200 / o, 1200 / r, r / o, 1.2 - r / o }'
awk -v o="$("$bench" accuracy "$work/text.txt" "$work/ours.pdf")" -v r="$("$bench" accuracy "$work/text.txt" "$work/reference.pdf")" \
    'BEGIN { printf "{\"job\": \"recognize-accuracy\", \"words\": %.4f, \"reference_words\": %.4f, \"aim\": \">= reference\", \"to_aim\": %.4f}\n", o, r, r - o }'
PAGES=100 "$bench" make "$work/long.pdf" "$work/long.txt"
"$bench" scroll "$work/long.pdf"
