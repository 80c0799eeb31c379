#!/usr/bin/env bash
# Usage: tools/count-lines.sh [--check]
# Prints for each folder of src how many lines of code it has, how many its tests have, and what part of it that is, in
# percent; blank lines and comments don't count. The aims: 40 in all, 60 in a folder. With --check a missed one fails.
# Needs cloc.
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

cloc --quiet --csv --by-file --include-lang='C++,C/C++ Header' src tests |
    awk -F, -v checks="${1:-}" -v most=40 -v most_of_folder=60 '
        function row(name, sources, tests, aim,    percent) {
            percent = sources > 0 ? 100 * tests / sources : 0
            printf "%-22s %7d %7d %4.0f%%%s\n", name, sources, tests, percent, (percent > aim ? "  (aim: " aim ")" : "")
            return percent > aim
        }
        # language, path, blank, comment, code
        $2 ~ /^(src|tests)\// {
            depth = split($2, parts, "/")
            folder = depth > 2 ? parts[2] : "(all folders)"
            if ((folder == "Platform" || folder == "Views") && depth > 3)
                folder = folder "/" parts[3]
            lines[parts[1], folder] += $5
            total[parts[1]] += $5
            folders[folder]
        }
        END {
            printf "%-22s %7s %7s\n", "", "source", "tests"
            count = 0
            for (folder in folders)
                names[++count] = folder
            for (i = 1; i <= count; ++i)
                for (j = i + 1; j <= count; ++j)
                    if (names[j] < names[i]) {
                        name = names[i]
                        names[i] = names[j]
                        names[j] = name
                    }
            for (i = 1; i <= count; ++i)
                missed += row(names[i], lines["src", names[i]], lines["tests", names[i]], most_of_folder)
            missed += row("all", total["src"], total["tests"], most)
            exit(checks == "--check" && missed > 0)
        }'
