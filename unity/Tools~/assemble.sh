#!/usr/bin/env bash
# Usage: assemble.sh OUTPUT
#
# Puts the package and the native libraries that were built together into OUTPUT/com.zarvik.orvella, and into an archive
# beside it that Unity's package manager installs with "Install package from tarball".
set -euo pipefail
[ $# -eq 1 ] || { sed -n '2,5s/^# \?//p' "$0" >&2; exit 2; }
source=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$source/../build
mkdir -p "$1"
output=$(cd "$1" && pwd)
package=$output/com.zarvik.orvella
version=$(sed -n 's/.*"version": "\(.*\)".*/\1/p' "$source/package.json")
libraries=0

rm -rf "$package"
cp -a "$source" "$package"
rm -rf "$package/Tools~"

for processor in arm64 x64; do
    if [ -e "$build/uwp-$processor/ZarvikOrvella.dll" ]; then
        installed=$(mktemp -d)
        cmake --install "$build/uwp-$processor" --prefix "$installed" >/dev/null
        cp -r "$installed/Plugins/WSA" "$package/Plugins/"
        mkdir -p "$package/Licenses~"
        cp -r "$installed/licenses/." "$package/Licenses~/"
        rm -rf "$installed"
        echo "Universal Windows Platform, $processor"
        libraries=$((libraries + 1))
    fi
done
if [ -e "$build/linux/libZarvikOrvella.so" ]; then
    # Debugging information is most of the file.
    strip -g -o "$package/Plugins/Linux/x86_64/libZarvikOrvella.so" "$build/linux/libZarvikOrvella.so"
    cp "$build"/linux/page_process/*.so "$package/Plugins/Linux/x86_64/page_process/"
    mkdir -p "$package/Licenses~/pdf.js"
    cp "$source"/../src/resources/pdf_viewer/{LICENSE*,NOTICE*} "$package/Licenses~/pdf.js/"
    echo "Linux, x86-64"
    libraries=$((libraries + 1))
fi
[ "$libraries" -gt 0 ] || { echo "assemble.sh: no native library is built" >&2; exit 1; }

# Unity warns of a .meta file without its file.
find "$package/Plugins" -name '*.meta' | while read -r meta; do
    [ -e "${meta%.meta}" ] || rm "$meta"
done
tar -C "$output" --transform 's,^com.zarvik.orvella,package,' -czf "$output/com.zarvik.orvella-$version.tgz" \
    com.zarvik.orvella
echo "$output/com.zarvik.orvella-$version.tgz"
