#!/usr/bin/env bash
# Builds the example engine against the installed package, as a user of it would, and looks at the picture that it
# writes.
#   check.sh BUILD_FOLDER EXAMPLE COMPILER
set -euo pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$1" --prefix "$folder/installed" >/dev/null
cmake -S "$2" -B "$folder/build" -DCMAKE_PREFIX_PATH="$folder/installed" -DCMAKE_CXX_COMPILER="$3" >/dev/null
cmake --build "$folder/build" >/dev/null

export XDG_DATA_HOME="$folder/data" XDG_CACHE_HOME="$folder/cache"
"$folder/build/engine" 'data:text/html,<body style="background: rgb(10, 200, 30)">' "$folder/page.ppm"

# Every pixel of the picture is that of the page.
header='P6 640 480 255'
[ "$(head -n 1 "$folder/page.ppm")" = "$header" ] || { echo "The picture begins otherwise." >&2; exit 1; }
pixels=$(tail -c +$((${#header} + 2)) "$folder/page.ppm" | od -An -v -tx1 -w3 | sort | uniq -c)
[ "$(echo $pixels)" = "$((640 * 480)) 0a c8 1e" ] || { echo "The picture has other pixels: $pixels" >&2; exit 1; }
