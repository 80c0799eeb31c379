#!/usr/bin/env bash
# Usage: tools/check-layers.sh
# Only the platform folder that wraps a library includes its headers, so that the library can be replaced there. The
# tests of that folder may include them too. Ours are included by their plain names.
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
only_in 'src/Platform/PDF/Writer|tests/Platform/PDF' 'qpdf/'
only_in '(src|tests|bench|fuzz)/Platform/Services' 'tesseract/|leptonica/'
only_in '(src|tests|bench|fuzz)/(Platform/PDF|MathRender|MathBundle)' 'hb[-.]|ft2build|freetype'

# A path would lead past the folders that the build lets a room see.
if git grep --untracked -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"[^"]*/' -- '*.h' '*.cpp'; then
    echo "Include our own headers by their plain names."
    broken=1
fi
exit "$broken"
