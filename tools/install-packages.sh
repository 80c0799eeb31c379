#!/usr/bin/env bash
# Usage: tools/install-packages.sh GROUP…
# Installs the Debian packages of the given groups of tools/packages.txt that are missing. Looks up nothing but the local
# package database when all are there. Where packages come from elsewhere, QUILLO_NO_INSTALL=1 skips all of this.
set -euo pipefail

[[ ${QUILLO_NO_INSTALL:-} == 1 ]] && exit 0

list=$(dirname -- "${BASH_SOURCE[0]}")/packages.txt

fail() {
    echo "Quillo: $*" >&2
    exit 1
}

# Prints those of the arguments of which no alternative is installed, one a line.
missing_of() {
    {
        # shellcheck disable=SC2046 # package names
        dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' $(printf '%s\n' "$@" | tr '|' ' ') 2>/dev/null ||
            true
        printf 'wanted %s\n' "$@"
    } | awk '$1 == "installed" { there[$2] = 1 }
             $1 == "wanted" { n = split($2, names, "|"); found = 0
                              for (i = 1; i <= n; ++i) found = found || there[names[i]]
                              if (!found) print $2 }'
}

is_debian_12() {
    [[ -r /etc/os-release ]] && (
        # shellcheck source=/dev/null
        . /etc/os-release
        [[ ${ID:-} == debian && ${VERSION_ID:-} == 12 ]]
    )
}

wanted=()
while read -r package group _; do
    [[ -z $package || $package == \#* ]] && continue
    [[ " $* " == *" $group "* ]] && wanted+=("$package")
done <"$list"
((${#wanted[@]} > 0)) || fail "tools/packages.txt has no group named $*."

mapfile -t missing < <(missing_of "${wanted[@]}")
((${#missing[@]} == 0)) && exit 0

if ! command -v apt-get >/dev/null || ! is_debian_12; then
    fail "packages can be installed on Debian 12 only; install what corresponds to these yourself and set" \
        "QUILLO_NO_INSTALL=1: ${missing[*]}."
fi

as_root=()
if ((EUID != 0)); then
    command -v sudo >/dev/null ||
        fail "these packages are missing, and installing them needs root or sudo: ${missing[*]}."
    # Without a terminal sudo cannot ask for a password.
    as_root=(sudo)
    [[ -t 0 ]] || as_root+=(-n)
    "${as_root[@]}" true 2>/dev/null ||
        fail "these packages are missing, and sudo refuses to install them: ${missing[*]}."
fi

apt_get() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300 "$@" >&2 </dev/null
}

echo "Quillo: installing ${missing[*]}" >&2
# Out-of-date lists may still do, so only the installation itself decides.
apt_get update || true
chosen=()
for entry in "${missing[@]}"; do
    for name in ${entry//|/ }; do
        [[ $entry != *"|"* ]] || apt-get -s --no-remove --no-install-recommends install "$name" &>/dev/null || continue
        chosen+=("$name")
        break
    done
done
apt_get -y --no-install-recommends install "${chosen[@]}" || true

mapfile -t missing < <(missing_of "${missing[@]}")
((${#missing[@]} == 0)) || fail "these packages could not be installed: ${missing[*]}."
