#!/usr/bin/env bash
# bench/office.sh: turning a Word document of 200 pages into a PDF beside LibreOffice alone, in turn. Prints one JSON
# object: seconds, of RUNS (5) the median, and their ratio. BUILD is the folder of the build.
set -euo pipefail

runs=${RUNS:-5}
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$here/build/bench}
command -v soffice >/dev/null || {
    echo "Quillo: the reference is missing: apt-get install libreoffice-writer-nogui" >&2
    exit 1
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

[[ -n ${BUILD:-} ]] || "$here/tools/build.sh" bench office_bench >&2
bench=$build/bench/Platform/Conversion/Office/office_bench

# A paragraph of six lines, often enough for its pages, with a heading now and then.
awk 'BEGIN {
    print "<!DOCTYPE html><meta charset=\"utf-8\">"
    for (i = 1; i <= 1650; ++i) {
        if (i % 40 == 1) printf "<h1>Chapter %d</h1>\n", i / 40 + 1
        printf "<p>"
        for (j = 0; j < 6; ++j) printf "Sentence %d of the report tells what was seen on the way down the river. ", i
        print "</p>"
    }
}' >"$work/report.html"
plain() { soffice "-env:UserInstallation=file://$work/profile" --headless "$@" >/dev/null 2>&1; }
plain --convert-to "docx:MS Word 2007 XML" --outdir "$work" "$work/report.html"

# seconds COMMAND…
seconds() {
    local begin=$EPOCHREALTIME
    "$@" >&2
    awk -v b="$begin" -v e="$EPOCHREALTIME" 'BEGIN { print e - b }'
}
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

for ((i = 0; i < runs; i++)); do
    seconds "$bench" "$work/report.docx" "$work/ours.pdf" >>"$work/ours"
    seconds plain --convert-to pdf --outdir "$work" "$work/report.docx" >>"$work/reference"
done
awk -v o="$(median <"$work/ours")" -v r="$(median <"$work/reference")" \
    -v p="$(pdfinfo "$work/ours.pdf" | awk '$1 == "Pages:" { print $2 }')" 'BEGIN {
    printf "{\"job\": \"convert-docx\", \"pages\": %d, \"seconds\": %.2f, \"reference\": \"soffice --convert-to pdf\", " \
           "\"reference_seconds\": %.2f, \"ratio\": %.2f, \"aim\": \"ratio <= 1.1\", \"to_aim\": %.2f}\n",
           p, o, r, o / r, o / r - 1.1 }'
