#!/usr/bin/env bash
# Usage: tools/build.sh PRESET [TARGET…]
# Configures where needed and builds. Prints nothing when all is up to date.
set -euo pipefail

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
preset=$1
shift
# Another checkout of the same sources finds what this one compiled.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
# What the compiler cache must overlook to work with precompiled headers at all.
export CCACHE_SLOPPINESS=pch_defines,time_macros
folder=build/$preset

if [[ ! -f $folder/build.ninja || CMakePresets.json -nt $folder/build.ninja ]]; then
    log=$(mktemp)
    trap 'rm -f "$log"' EXIT
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log" >&2
        echo "Quillo: the $preset build could not be configured." >&2
        exit 1
    fi
    # CMake leaves the file alone when nothing in it changes.
    touch "$folder/build.ninja"
fi

pending=$(ninja -C "$folder" -n "$@" 2>&1 || true)
if [[ $pending != *"ninja: no work to do."* ]]; then
    cmake --build "$folder" --target "${@:-all}"
fi
