#!/usr/bin/env bash
# Usage: tools/format.sh [--check]
# Formats all our C++ sources, or only says which are not formatted.
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
arguments=(-i)
[[ ${1:-} == --check ]] && arguments=(--dry-run --Werror)
git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp' | sort -u | while read -r file; do
    [[ -f $file ]] && printf '%s\0' "$file"
done | xargs -0 -r -n 32 -P "$(nproc)" clang-format-14 "${arguments[@]}"
