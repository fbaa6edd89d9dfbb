#!/usr/bin/env bash
# Runs a Windows program, with Wine: wine.sh PROGRAM [ARGUMENT...]
# Its Windows folder is in the toolchain's cache (ZARVIK_CACHE, default .cache) and made at the first call (10 s).
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cache="${ZARVIK_CACHE:-$root/.cache}"
# Debian's command prefers the 32-bit loader, which we do not need; the 64-bit one is not in its path.
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=$(command -v wine64 wine | head -n 1) || {
    echo "wine.sh: Wine is missing (Debian: wine64)" >&2
    exit 127
}

export WINEPREFIX="$cache/windows/wine" WINEDEBUG="${WINEDEBUG:--all}"
# Nothing of .NET, of a browser or of a desktop is wanted; Wine would offer to download the first two.
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=d${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"

# Two programs may get here first at once. The lock must not pass to Wine's server, which outlives the program.
if [ ! -e "$WINEPREFIX/.made" ]; then
    mkdir -p "$WINEPREFIX"
    # shellcheck disable=SC2016 # The inner shell expands these.
    WINEDEBUG=-all flock --close "$WINEPREFIX.lock" bash -c '
        [ -e "$WINEPREFIX/.made" ] || { "$0" wineboot --init && touch "$WINEPREFIX/.made"; }' "$wine" >&2
fi
exec "$wine" "$@"
