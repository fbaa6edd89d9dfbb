#!/usr/bin/env bash
# Writes the .meta file of each file and folder of the package that has none. The identity comes from the path, so that
# it is the same wherever it is made; a file that was moved keeps the .meta file it has.
set -euo pipefail
package=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$package"

find . -mindepth 1 \( -name '*~' -o -name '.*' \) -prune -o ! -name '*.meta' -print | sort | while read -r path; do
    [ ! -e "$path.meta" ] || continue
    guid=$(printf 'com.zarvik.orvella/%s' "${path#./}" | md5sum | cut -c1-32)
    printf 'fileFormatVersion: 2\nguid: %s\n' "$guid" >"$path.meta"
    [ ! -d "$path" ] || printf 'folderAsset: yes\n' >>"$path.meta"
    echo "$path.meta"
done
