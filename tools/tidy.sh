#!/usr/bin/env bash
# Usage: tools/tidy.sh [COMMIT]
# Runs clang-tidy over what changed since COMMIT, in the working tree too. The dev preset must be built. Without COMMIT:
# - on a branch, since it left main (origin/main, or main where there is none);
# - on main itself, since ten commits ago, or over everything when there are fewer.
# A change of .clang-tidy checks everything.
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
database=build/dev/compile_commands.json

first_changed_after() {
    local main fork
    for main in origin/main main; do
        fork=$(git merge-base HEAD "$main" 2>/dev/null) || continue
        if [[ $fork != "$(git rev-parse HEAD)" ]]; then
            echo "$fork"
            return
        fi
    done
    git rev-parse --verify --quiet 'HEAD~10^{commit}' || true
}

since=${1:-$(first_changed_after)}
if [[ -n $since ]] && git diff --quiet "$since" -- .clang-tidy; then
    mapfile -t changed < <(
        # A file that was only moved is what it was.
        git diff -M100% --name-only --diff-filter=dr "$since" -- '*.h' '*.cpp'
        git ls-files --others --exclude-standard -- '*.h' '*.cpp'
    )
    echo "clang-tidy over what changed since $since:"
else
    mapfile -t changed < <(git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp')
    echo "clang-tidy over everything:"
fi

# A header is checked through the source file of its name, or else through the first one that includes it.
sources_of() {
    local file beside
    for file in "$@"; do
        beside=${file%.*}.cpp
        if [[ -f $beside ]]; then
            echo "$beside"
        else
            git grep --untracked -lF "#include \"${file##*/}\"" -- '*.cpp' | head -n 1 || true
        fi
    done | sort -u
}

built=()
while read -r file; do
    grep -qF "\"file\": \"$PWD/$file\"" "$database" && built+=("$file")
done < <(sources_of "${changed[@]}")
echo "  ${#built[@]} source files"
((${#built[@]} == 0)) && exit 0

# QPDF's JSON.hh does not compile as C++20 with clang on this standard library: a defaulted destructor asks too early how
# large the class is. The analysis reads a copy of it that only declares that destructor.
patched=build/tidy
mkdir -p "$patched/qpdf"
sed 's/virtual ~JSON_array() = default;/virtual ~JSON_array();/' /usr/include/qpdf/JSON.hh >"$patched/qpdf/JSON.hh"

# The analysis reads each file without the precompiled headers, which are of another compiler; so it also sees to it that a
# file includes what it uses.
sed -E 's| -Winvalid-pch||g; s| -include [^ ]*/cmake_pch\.hxx||g' "$database" >"$patched/compile_commands.json"

# Only the count of suppressed warnings goes; errors of the tool stay visible.
printf '%s\0' "${built[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 --quiet -p "$patched" --extra-arg-before="-isystem$PWD/$patched" \
        2> >(grep -v 'warnings\? generated\.$' >&2)
