#!/usr/bin/env bash
# Installs the npm packages of the given folders, as their lock files say. Returns at once for a folder whose lock has
# not changed since.
#   setup-packages.sh FOLDER...
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# The lock that the packages were installed from, kept beside them: they are complete when it is there.
installed() {
    cmp -s "$1/package-lock.json" "$1/node_modules/.installed-lock.json"
}

for folder in "$@"; do
    folder=$(cd "$folder" && pwd)
    ! installed "$folder" || continue
    # Two builds may get here at once.
    mkdir -p "$logs"
    exec 9>"$logs/setup-packages.lock"
    flock 9
    if ! installed "$folder"; then
        command -v npm >/dev/null || fail "the command 'npm' is missing. Install Node.js 18 or newer with npm."
        name=${folder#"$root/"}
        say "Installing the npm packages of $name ..."
        quietly "setup-packages-${name//\//-}" npm ci --prefix "$folder" --ignore-scripts --no-audit --no-fund ||
            fail "the npm packages of $name could not be installed"
        cp "$folder/package-lock.json" "$folder/node_modules/.installed-lock.json"
    fi
    exec 9>&-
done
