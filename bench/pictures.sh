#!/usr/bin/env bash
# bench/pictures.sh: a page of a JPEG of 12 megapixels beside img2pdf, in turn. Prints one JSON object: the median of RUNS
# (9) in milliseconds, the memory, and whether the picture's bytes are those of the file. Needs the packages imagemagick,
# python3-img2pdf and poppler-utils.
set -euo pipefail

runs=${RUNS:-9}
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$here/build/bench}
reference=(/usr/bin/python3 -m img2pdf)
"${reference[@]}" --version >/dev/null || {
    echo "Quillo: the reference is missing: apt-get install python3-img2pdf" >&2
    exit 1
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

[[ -n ${BUILD:-} ]] || "$here/tools/build.sh" bench quillo >&2
quillo=$build/src/App/quillo
export QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=$work
chmod 700 "$work"
convert -size 1000x750 plasma: -scale '4000x3000!' -attenuate 0.3 +noise Gaussian -quality 92 "$work/photo.jpg"

# milliseconds COMMAND…
milliseconds() {
    local begin=$EPOCHREALTIME
    "$@" >"$work/output" 2>&1 || {
        cat "$work/output" >&2
        exit 1
    }
    awk -v b="$begin" -v e="$EPOCHREALTIME" 'BEGIN { print (e - b) * 1000 }'
}
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

for ((i = 0; i < runs; i++)); do
    rm -f "$work"/*.pdf
    milliseconds "$quillo" --converter picture "$work/photo.jpg" "$work/ours.pdf" >>"$work/ours"
    milliseconds "${reference[@]}" "$work/photo.jpg" -o "$work/reference.pdf" >>"$work/reference"
done
pdfimages -all "$work/ours.pdf" "$work/image"
same=false
cmp -s "$work/image-000.jpg" "$work/photo.jpg" && same=true
rm "$work/ours.pdf"
memory=$(/usr/bin/time -f %M "$quillo" --converter picture "$work/photo.jpg" "$work/ours.pdf" 2>&1)
awk -v o="$(median <"$work/ours")" -v r="$(median <"$work/reference")" -v m="$memory" -v s=$same 'BEGIN {
    printf "{\"job\": \"picture\", \"milliseconds\": %.0f, \"reference\": \"img2pdf\", \"reference_milliseconds\": %.0f, " \
           "\"ratio\": %.2f, \"same_bytes\": %s, \"megabytes\": %.0f, \"aim\": \"ratio <= 1.2\", \"to_aim\": %.2f}\n",
           o, r, o / r, s, m / 1024, o / r - 1.2 }'
