#!/usr/bin/env bash
# Usage: tools/check-layers.sh
# Two rules about includes:
# - A room, one folder of src, includes headers of the rooms that its CMakeLists.txt names and of no others, also where the
#   compiler would find them because a room that it names uses them in turn.
# - Only the room that wraps a library includes that library's headers, so that it can be replaced there. The tests of that
#   room may include them too. Ours are included by their plain names.
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
broken=0

# only_in FOLDERS LIBRARY-HEADERS: both are extended regular expressions.
only_in() {
    local found
    found=$(git grep --untracked -nE "^[[:space:]]*#[[:space:]]*include[[:space:]]*[<\"]($2)" -- '*.h' '*.cpp' |
        grep -vE "^($1)/" || true)
    if [[ -n $found ]]; then
        echo "$found"
        echo "These headers may be included below ($1) only."
        broken=1
    fi
}

only_in 'src/Platform/PDF/Engine' 'mupdf/'
only_in 'src/Platform/(Conversion/Pages|PDF/Writer)|tests/Platform/PDF' 'qpdf/'
only_in '(src|tests|bench|fuzz)/Platform/Conversion' 'tesseract/|leptonica/|libheif/'
only_in '(src|tests|bench|fuzz)/(Platform/PDF|MathRender|MathBundle)' 'hb[-.]|ft2build|freetype'

# A path would lead past the folders that the build lets a room see.
if git grep --untracked -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"[^"]*/' -- '*.h' '*.cpp'; then
    echo "Include our own headers by their plain names."
    broken=1
fi

# The rooms and their arrows are read from quillo_library(<target> …) and quillo_room(<target> …): each word of a call that
# is a target is an arrow, and one to a library goes to its OPEN_ROOMS as well. Rooms inside of a library see the public
# types of the library's own folder above them.
{
    git ls-files --cached --others --exclude-standard -- 'src/*CMakeLists.txt' | while read -r list; do
        [[ -f $list ]] && sed "s|^|L ${list%/CMakeLists.txt} |; s/#.*//; s/[()]/ & /g" "$list"
    done
    git ls-files --cached --others --exclude-standard -- 'src/*.h' | while read -r header; do
        [[ -f $header ]] && echo "H ${header%/*} ${header##*/}"
    done
    git grep --untracked -E '^#include "' -- 'src/*.h' 'src/*.cpp' |
        sed -E 's|^(.*)/([^/:]+):#include "([^"]*/)?([^"]+)".*|I \1 \2 \4|'
} | awk '
    $1 == "L" {
        for (i = 3; i <= NF; ++i) {
            if ($i ~ /^quillo_(library|room)$/) {
                inCall = 1; naming = 1; isOpen = 0; isRoom = $i == "quillo_room"
            } else if (inCall && $i == ")") {
                inCall = 0
            } else if (inCall && $i != "(") {
                if ($i ~ /^[A-Z_]+$/)
                    isOpen = $i == "OPEN_ROOMS"
                if (naming) {
                    target = $i; folderOf[target] = $2; naming = 0
                    kind[$2] = isRoom ? "room" : "library"
                } else {
                    words[$2] = words[$2] " " $i
                    if (isOpen)
                        open[target] = open[target] " " $i
                }
            }
        }
    }
    $1 == "H" { home[$3] = $2 }
    $1 == "I" && ($4 in home) && home[$4] != $2 { ++count; user[count] = $2; file[count] = $2 "/" $3; header[count] = $4 }
    END {
        folderOf["quillo_base"] = "src/Base"
        for (folder in kind) {
            named = words[folder] " quillo_base"
            n = split(named, names, " ")
            for (i = 1; i <= n; ++i)
                named = named open[names[i]]
            n = split(named, names, " ")
            for (i = 1; i <= n; ++i)
                if (names[i] in folderOf)
                    may[folder, folderOf[names[i]]] = 1
            if (kind[folder] == "room")
                for (above = folder; sub(/\/[^\/]*$/, "", above) && above != "src";)
                    may[folder, above] = 1
        }
        for (i = 1; i <= count; ++i) {
            to = home[header[i]]
            if ((user[i] in kind) && (to in kind || to == "src/Base") && !((user[i], to) in may)) {
                print file[i] " includes " header[i] " of " to ", which " user[i] "/CMakeLists.txt does not name."
                broken = 1
            }
        }
        exit broken
    }' || broken=1
exit "$broken"
