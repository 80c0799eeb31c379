#!/usr/bin/env bash
# bench/compare.sh FILE.pdf: how long Quillo's jobs on a file take beside other programs' in the same run.
# Prints one JSON object a line: the median of RUNS (5) whole processes in milliseconds, ours and the reference's in
# turn, their ratio, and the aim with how far it is from being met (a negative "to_aim" is met).
set -euo pipefail

runs=${RUNS:-5}
file=${1:?usage: bench/compare.sh FILE.pdf}
file=$(realpath "$file")
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$here/build/bench}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$here/tools/install-packages.sh" build test >&2
if ! "$here/tools/build.sh" bench >"$work/log" 2>&1; then
    tail -n 30 "$work/log" >&2
    exit 1
fi
jobs=$build/bench/Platform/PDF/pdf_jobs

# milliseconds COMMAND…: the wall time of one run; the command must succeed.
milliseconds() {
    local begin=$EPOCHREALTIME end
    "$@" >/dev/null 2>"$work/errors" || {
        echo "failed: $*" >&2
        cat "$work/errors" >&2
        exit 1
    }
    end=$EPOCHREALTIME
    awk -v b="$begin" -v e="$end" 'BEGIN { printf "%.2f\n", (e - b) * 1000 }'
}

median() { sort -n | awk '{ v[NR] = $1 } END { print NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

# compare JOB AIM REFERENCE-NAME OURS… -- REFERENCE…: AIM is the largest ratio wanted.
compare() {
    local job=$1 aim=$2 name=$3
    shift 3
    local ours=()
    while [ "$1" != -- ]; do
        ours+=("$1")
        shift
    done
    shift
    : >"$work/ours"
    : >"$work/reference"
    for ((i = 0; i < runs; i++)); do
        milliseconds "${ours[@]}" >>"$work/ours"
        milliseconds "$@" >>"$work/reference"
    done
    awk -v job="$job" -v aim="$aim" -v name="$name" -v o="$(median <"$work/ours")" -v r="$(median <"$work/reference")" \
        'BEGIN { printf "{\"job\": \"%s\", \"ours_ms\": %.1f, \"reference\": \"%s\", \"reference_ms\": %.1f, " \
                        "\"ratio\": %.3f, \"aim\": \"ratio <= %s\", \"to_aim\": %.3f}\n", job, o, name, r, o / r, aim, o / r - aim }'
}

# sizes JOB: how large what the last comparison wrote is beside what the reference wrote.
sizes() {
    awk -v job="$1" -v o="$(stat -c %s "$work/out.pdf")" -v r="$(stat -c %s "$work/reference.pdf")" 'BEGIN {
        printf "{\"job\": \"%s-size\", \"bytes\": %d, \"reference_bytes\": %d, \"ratio\": %.3f, " \
               "\"aim\": \"ratio <= 1.05\", \"to_aim\": %.3f}\n", job, o, r, o / r, o / r - 1.05 }'
}

pages=$(qpdf --show-npages "$file" 2>/dev/null || mutool show "$file" pages | grep -c '^page')
spread=$(for ((i = 0; i < 50; i++)); do echo $((i * pages / 50 + 1)); done | paste -sd,)
# The picture goes to a plain format and nowhere: what is compared is drawing, not packing.
mutool_draw=(mutool draw -q -r 144 -F pam -o /dev/null)

compare draw-first 1.1 "mutool draw" "$jobs" draw-first "$file" -- "${mutool_draw[@]}" "$file" 1
if [ "$pages" -ge 50 ]; then
    compare draw-spread 0.7 "mutool draw" "$jobs" draw-spread "$file" -- "${mutool_draw[@]}" "$file" "$spread"
fi
# On two threads, as the program reads a document; the reference has one.
mutool_text=(mutool draw -q -F text -o /dev/null)
compare text 0.6 "mutool draw -F text" "$jobs" text "$file" -- "${mutool_text[@]}" "$file"
if [ "$pages" -ge 50 ]; then
    compare text-spread 0.5 "mutool draw -F text" "$jobs" text-spread "$file" -- "${mutool_text[@]}" "$file" "$spread"
fi
compare save-annotation 0.04 "qpdf in out" "$jobs" save-annotation "$file" "$work/out.pdf" -- qpdf "$file" "$work/reference.pdf"
awk -v before="$(stat -c %s "$file")" -v after="$(stat -c %s "$work/out.pdf")" 'BEGIN {
    printf "{\"job\": \"save-annotation-growth\", \"bytes\": %d, \"aim\": \"< 20000 bytes\", \"to_aim\": %d}\n",
           after - before, after - before - 20000 }'
if [ "$pages" -ge 2 ]; then
    compare save-move 0.2 "qpdf in out" "$jobs" save-move "$file" "$work/out.pdf" -- qpdf "$file" "$work/reference.pdf"
    one=("$file" --pages . $((pages / 2 + 1)) -- "$work/reference.pdf")
    compare extract 1.0 "qpdf --pages" "$jobs" extract "$file" "$work/out.pdf" -- qpdf "${one[@]}"
    sizes extract
    compare split-half 1.0 "qpdf --pages" "$jobs" split-half "$file" "$work/out.pdf" -- \
        qpdf "$file" --pages . 1-$((pages / 2)) -- "$work/reference.pdf"
    sizes split-half
    compare merge-two 1.0 "qpdf --empty --pages" "$jobs" merge-two "$file" "$work/out.pdf" -- \
        qpdf --empty --pages "$file" "$file" -- "$work/reference.pdf"
    compare save-delete 1.1 "qpdf in out" "$jobs" save-delete "$file" "$work/out.pdf" -- qpdf "$file" "$work/reference.pdf"
    awk -v o="$(stat -c %s "$work/out.pdf")" -v r="$(stat -c %s "$file")" 'BEGIN {
        printf "{\"job\": \"rewrite-size\", \"bytes\": %d, \"ratio\": %.3f, \"aim\": \"ratio <= 1.05\", \"to_aim\": %.3f}\n", o, o / r, o / r - 1.05 }'
fi

compare encrypt 1.0 "qpdf --encrypt" "$jobs" encrypt "$file" "$work/out.pdf" -- \
    qpdf --encrypt secret secret 256 -- "$file" "$work/reference.pdf"
sizes encrypt

# Pages as pictures, by two threads and by two processes, of a file of its own.
pictured=$((pages < 200 ? pages : 200))
qpdf "$file" --pages . "1-$pictured" -- "$work/pictured.pdf"
pictures_by_two() {
    pdftoppm -jpeg -r 108 -l $((pictured / 2)) "$work/pictured.pdf" "$work/picture" &
    pdftoppm -jpeg -r 108 -f $((pictured / 2 + 1)) -l "$pictured" "$work/pictured.pdf" "$work/picture"
    wait
}
compressing=$build/bench/Document/compress_bench
if [ "$pages" -ge 2 ]; then
    compare compress 0.7 "2 x pdftoppm -jpeg -r 108" "$compressing" "$work/pictured.pdf" "$work/out.pdf" -- pictures_by_two
    cat "$work"/picture*.jpg >"$work/reference.pdf"
    sizes compress
fi
"$compressing" "$file"

# Process start to the first sharp page in a window, beside drawing that page: 300 ms more is the aim.
start=$build/bench/App/start_bench
: >"$work/reference"
for ((i = 0; i < runs; i++)); do
    milliseconds "${mutool_draw[@]}" "$file" 1 >>"$work/reference"
done
started=$(QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$start" "$file" "$runs" 2>"$work/errors" |
    sed -n 's/.*first page sharp \([0-9.]*\) ms.*/\1/p')
[[ -n $started ]] || { cat "$work/errors" >&2 && exit 1; }
awk -v o="$started" -v r="$(median <"$work/reference")" 'BEGIN {
    printf "{\"job\": \"start\", \"ours_ms\": %.1f, \"reference\": \"mutool draw\", \"reference_ms\": %.1f, " \
           "\"ratio\": %.3f, \"aim\": \"reference + 300 ms\", \"to_aim\": %.1f}\n", o, r, o / r, o - r - 300 }'
scroll=$build/bench/Platform/Viewer/scroll_bench
if [ -x "$scroll" ]; then
    QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$scroll" "$file" 2>/dev/null
fi
QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$build/bench/PDFView/annotate_bench" 2>/dev/null
"$build/bench/AI/search_bench" "$file" 2>/dev/null
QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} "$build/bench/Views/sidebar_bench" "$file" 2>/dev/null
