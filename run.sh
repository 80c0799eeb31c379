#!/usr/bin/env bash
# Usage: ./run.sh [FILE…]
# Installs what is missing (Debian 12), builds Quillo and opens it, with the given files or with its landing window.
set -euo pipefail

root=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")

if [[ -z ${DISPLAY:-} && -z ${WAYLAND_DISPLAY:-} ]]; then
    echo "Quillo: there is no display; run this in a desktop session, where DISPLAY or WAYLAND_DISPLAY is set." >&2
    exit 1
fi

"$root/tools/install-packages.sh" build
"$root/tools/build.sh" release quillo
exec "$root/build/release/src/App/quillo" "$@"
