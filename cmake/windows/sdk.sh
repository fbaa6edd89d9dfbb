#!/usr/bin/env bash
# The SDK's compilers, which are Windows programs. What they say is shown only when they fail.
#   sdk.sh metadata NAME.idl NAME.winmd     the description of a component to its metadata
#   sdk.sh resources NAME.rc NAME.res       resources, such as the version of a DLL
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
sdk=$(realpath "${ZARVIK_CACHE:-$here/../../.cache}/windows/sdk/cpp")
version=$(basename "$sdk"/Include/*)
headers="$sdk/Include/$version"
types="$sdk/UnionMetadata/$version"

# The file system is Wine's drive Z.
windows_path() {
    local path
    path=$(realpath "$1")
    printf 'Z:%s' "${path//\//\\}"
}

# A compiler may leave a damaged file behind: the result goes to its place only when it is whole.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
result="$work/$(basename "$3")"

compile() {
    local program="$1"
    shift
    "$here/wine.sh" "$sdk/bin/$version/x64/$program" "$@" >"$work/output" 2>&1 && [ -s "$result" ]
}

case "$1" in
    metadata)
        compile midlrt.exe /winrt /no_cpp /nomidl /I "$(windows_path "$headers/winrt")" \
            /metadata_dir "$(windows_path "$types")" /reference "$(windows_path "$types/Windows.winmd")" \
            /h "$(windows_path "$work/unused.h")" /winmd "$(windows_path "$result")" "$(windows_path "$2")"
        ;;
    resources)
        compile rc.exe /nologo /i "$(windows_path "$headers/um")" /i "$(windows_path "$headers/shared")" \
            /fo "$(windows_path "$result")" "$(windows_path "$2")"
        ;;
    *) false ;;
esac || {
    cat "$work/output" >&2
    exit 1
}
mv "$result" "$3"
