#!/usr/bin/env bash
# Runs clang-tidy over the sources of a finished build, two at a time. In a unity build, which the default is, one look
# at a header serves several sources.
#   lint.sh [BUILD_FOLDER]     default: build/linux-asan
# A source is looked at again only when its object file or the configuration is newer than its last clean result, since
# the build knows which headers a source depends on.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

build="${1:-$root/build/linux-asan}"

# Prints source and result file of every source of ours that needs a look, each ended by a NUL.
outdated() {
    local object source result
    # Of each command its output and its source, which is the last argument.
    sed -nE 's/^ *"command": ".* -o ([^ ]+) -c ([^ ]+)",?$/\1 \2/p' "$build/compile_commands.json" |
        while read -r object source; do
            case "$source" in
                */Unity/unity_*) ;;
                "$root"/build/*) continue ;;
                "$root"/*) ;;
                *) continue ;;
            esac
            result="$build/lint/$object.clean"
            [ "$result" -nt "$build/$object" ] && [ "$result" -nt "$root/.clang-tidy" ] ||
                printf '%s\0%s\0' "$source" "$result"
        done
}

# shellcheck disable=SC2016 # The inner shell expands these.
outdated | xargs -0 -r -n 2 -P 2 bash -c '
    if output=$(clang-tidy-19 -p "$0" --quiet "$1" 2>&1); then
        mkdir -p "$(dirname "$2")" && touch "$2"
    else
        printf "%s\n" "$output"
        exit 1
    fi' "$build"
