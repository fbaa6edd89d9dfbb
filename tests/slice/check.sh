#!/usr/bin/env bash
# Usage: check.sh slice|platform COMPILER OPTION...
#
# Compiles snippets.cpp with these options as it stands, and once for each of its macros, and fails if a verdict is
# not the one that the macro's name announces. `slice` means the headers of this repository, `platform` those of the
# real C++/WinRT.
set -euo pipefail

side=$1
shift
compile=("$@" -w)
folder=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source=$folder/snippets.cpp
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The headers, which all compilations share, are compiled once.
header=$folder/../../src/platform.h
"${compile[@]}" -x c++-header -o "$work/platform.h.pch" "$header"

accepts() {
    "${compile[@]}" -include-pch "$work/platform.h.pch" -c -o "$work/snippets.o" "$@" "$source" >"$work/output" 2>&1
}

if ! accepts; then
    cat "$work/output" >&2
    echo "WRONG: what must be allowed is refused" >&2
    exit 1
fi

mapfile -t macros < <(sed -nE 's/^#ifdef ((refused|absent)_[a-z0-9_]+)$/\1/p' "$source")
[ "${#macros[@]}" -gt 0 ]
if [ "$(printf '%s\n' "${macros[@]}" | sort -u | wc -l)" -ne "$(grep -c '^ *# *if' "$source")" ]; then
    echo "WRONG: a macro is repeated or has another form than refused_... and absent_..." >&2
    exit 1
fi

wrong=0
for macro in "${macros[@]}"; do
    expected=refused
    [[ $side == platform && $macro == absent_* ]] && expected=allowed
    verdict=refused
    accepts "-D$macro" && verdict=allowed
    if [ "$verdict" = refused ] && ! grep -q "error:" "$work/output"; then
        verdict="not compiled at all"
    fi
    if [ "$verdict" != "$expected" ]; then
        grep "error:" "$work/output" >&2 || true
        echo "WRONG: $macro is $verdict" >&2
        wrong=$((wrong + 1))
    fi
done
echo "$((${#macros[@]} - wrong)) of ${#macros[@]} verdicts are right"
[ "$wrong" -eq 0 ]
