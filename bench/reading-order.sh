#!/usr/bin/env bash
# bench/reading-order.sh FILE.pdf…: in which order the words of each page are read, beside two other programs.
# For each page that isn't read as mutool reads it, one JSON object a line: "kept" is the share of mutool's pairs of
# neighbouring words that are neighbours in ours, "ours" the share of ours that are neighbours in mutool's; "judge" tells
# how much of pdftotext's pairs each of the two has, and "worse" is true where ours has less. Then one line for the file.
set -euo pipefail

[[ $# -ge 1 ]] || { echo "usage: bench/reading-order.sh FILE.pdf…" >&2 && exit 2; }
here=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD:-$here/build/bench}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$here/tools/build.sh" bench pdf_jobs >&2
for file in "$@"; do
    "$build/bench/Platform/PDF/pdf_jobs" text "$file" "$work/ours" || continue
    mutool draw -q -F text -o "$work/mutool" "$file" 2>/dev/null
    pdftotext "$file" "$work/judge" 2>/dev/null
    # Dots of leaders and hyphens at line ends are put differently and say nothing about the order.
    awk -v name="$(basename "$file")" '
        BEGIN { RS = "\f" }
        FNR == 1 { ++program }
        {
            gsub(/[.·_]( ?[.·_])+/, " ")
            gsub(/(-|\302\255|\342\200\220) *\n+/, "")
            gsub(/[\302][\240]/, " ")
            count = split($0, words, /[ \t\n]+/)
            if (FNR > pages)
                pages = FNR
            last = ""
            for (i = 1; i <= count; ++i) {
                if (words[i] == "")
                    continue
                if (last != "") {
                    ++pairs[program, FNR, last " " words[i]]
                    ++total[program, FNR]
                    page[program, FNR] = page[program, FNR] "\n" last " " words[i]
                }
                last = words[i]
            }
        }
        function share(of, by, number,    list, n, i, seen, found) { # of the pairs of one program, those that another has
            n = split(page[of, number], list, "\n")
            for (i = 2; i <= n; ++i)
                if (++seen[list[i]] <= pairs[by, number, list[i]])
                    ++found
            return total[of, number] ? found / total[of, number] : 1
        }
        END {
            for (i = 1; i <= pages; ++i) {
                if (!total[2, i])
                    continue
                ++compared
                kept = share(2, 1, i)
                sum += kept
                if (kept > 0.999)
                    continue
                ++differing
                mine = share(3, 1, i)
                theirs = share(3, 2, i)
                isWorse = mine < theirs
                worse += isWorse
                printf "{\"file\": \"%s\", \"page\": %d, \"kept\": %.3f, \"ours\": %.3f, " \
                       "\"judge\": {\"ours\": %.3f, \"mutool\": %.3f}, \"worse\": %s}\n",
                       name, i, kept, share(1, 2, i), mine, theirs, isWorse ? "true" : "false"
            }
            printf "{\"file\": \"%s\", \"pages\": %d, \"differing\": %d, \"worse\": %d, \"kept\": %.4f}\n",
                   name, compared, differing, worse, compared ? sum / compared : 1
        }' "$work/ours" "$work/mutool" "$work/judge"
done
