#!/usr/bin/env bash
# Usage: tools/check-layers.sh
# Only the platform folder that wraps a library includes its headers, so that the library can be replaced there. The
# tests of that folder may include them too.
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
broken=0

# only_in FOLDERS LIBRARY-HEADERS: both are extended regular expressions.
only_in() {
    local found
    found=$(git grep --untracked -nE "^[[:space:]]*#[[:space:]]*include[[:space:]]*[<\"]($2)" -- '*.h' '*.cpp' |
        grep -vE "^(src|tests|bench|fuzz)/($1)/" || true)
    if [[ -n $found ]]; then
        echo "$found"
        echo "These headers may be included below ($1) only."
        broken=1
    fi
}

only_in 'Platform/PDF' 'mupdf/|qpdf/'
only_in 'Platform/Services' 'tesseract/|leptonica/'
only_in 'Platform/PDF|MathRender|MathBundle' 'hb[-.]|ft2build|freetype'
exit "$broken"
