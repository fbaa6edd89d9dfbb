#!/usr/bin/env bash
# Usage: check.sh slice|platform COMPILER OPTION...
#
# Compiles snippets.cpp with these options and fails if a verdict on one of its snippets is not the one that the name
# of the snippet's macro announces. `slice` means the headers of this repository, `platform` the real C++/WinRT's.
set -euo pipefail

side=$1
shift
compile=("$@" -w -ferror-limit=0)
folder=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source=$folder/snippets.cpp
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "WRONG: $1" >&2
    exit 1
}

# The headers, which all compilations share, are compiled once. Without their times, since a compiler with a cache may
# answer with what it made of the same text at another time.
"${compile[@]}" -x c++-header -Xclang -fno-pch-timestamp -o "$work/platform.h.pch" "$folder/../../src/platform.h"

# accepts MACRO... tells whether the source compiles with these macros defined. $work/output has what was said.
accepts() {
    "${compile[@]}" -include-pch "$work/platform.h.pch" -c -o "$work/snippets.o" "${@/#/-D}" "$source" \
        >"$work/output" 2>&1
}

macros() { sed -nE "s/^#ifdef (($1)_[a-z0-9_]+)\$/\1/p" "$source"; }
mapfile -t refused < <(macros refused)
mapfile -t absent < <(macros absent)
[ "$(macros 'refused|absent' | sort -u | wc -l)" -eq "$(grep -cE '^ *# *(if|elif)' "$source")" ] ||
    fail "a macro is repeated, or its name says neither refused_... nor absent_..."

if [ "$side" = platform ]; then
    allowed=("${absent[@]}")
else
    allowed=()
    refused+=("${absent[@]}")
fi
if ! accepts "${allowed[@]}"; then
    cat "$work/output" >&2
    fail "what must be allowed is refused"
fi

# All at once, since a compilation takes long and the compiler goes on after an error. A snippet is refused if an
# error, or the place that an error in a header stems from, lies in its lines.
! accepts "${refused[@]}" || fail "nothing is refused"
without_error() {
    awk -v wanted="${refused[*]}" '
        BEGIN { split(wanted, names, " "); for (i in names) is_wanted[names[i]] = 1 }
        FNR == NR {
            if (match($0, /snippets\.cpp:[0-9]+:[0-9]+: (error|note: in instantiation|note: while)/)) {
                split(substr($0, RSTART), part, ":")
                faulty[part[2]] = 1
            }
            next
        }
        /^#ifdef / { name = is_wanted[$2] ? $2 : ""; found = 0 }
        name && faulty[FNR] { found = 1 }
        /^#(else|endif)/ { if (name && !found) print name; name = "" }
    ' "$work/output" "$source"
}
mapfile -t doubtful < <(without_error)

# An error can hide another one, so the last word has a compilation of the snippet alone.
wrong=0
for macro in "${doubtful[@]}"; do
    if accepts "$macro"; then
        echo "WRONG: $macro is allowed" >&2
        wrong=$((wrong + 1))
    fi
done
echo "${#refused[@]} refusals expected, $wrong missing, ${#doubtful[@]} looked at alone"
[ "$wrong" -eq 0 ]
