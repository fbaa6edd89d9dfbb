#!/usr/bin/env bash
# Fuzzes the library: see --help.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# Each target with the inputs that a short run tries: some seconds each, for the exports and what pages send more.
declare -A short_runs=(
    [bitmap-sizes]=10000 [cookie-json]=2000 [header-lines]=20000 [pdf-urls]=400 [url-mapping]=1000
    [agent-messages]=400 [page-messages]=400 [exports]=100
)
# Those that need a browser engine with pages run alone, the others two at a time.
alone=(agent-messages page-messages exports)
all_targets=(bitmap-sizes cookie-json header-lines pdf-urls url-mapping "${alone[@]}")

usage() {
    cat <<EOF
Usage: scripts/fuzz.sh [OPTION...] [TARGET...]

Builds what is fuzzed and feeds it with inputs that libFuzzer makes from those in tests/fuzz/corpus, each TARGET (default:
all) for a while:

  ${all_targets[*]}

  --sanitizer NAME   address (with undefined behaviour, the default) or thread
  --seconds N        how long each target runs (default: 600)
  --short            a number of inputs for each target instead, the same ones in every run
  --seed N           what the inputs are made from (default: 1 for a short run, otherwise a new one, which is printed)
  --print FILE       shows an input of the target 'exports' as calls in C
  --minimize FILE    makes an input that fails smaller, for as long as --seconds says, and names the new file
  --help             shows this

Inputs that reached new code are kept in build/fuzz/SANITIZER/TARGET/inputs and used again; inputs that failed are in
'findings' beside it. To see one fail again:

  build/linux-asan/fuzz-TARGET FILE

The exit code is 0 if nothing was found, 1 if something was, 2 if the options are wrong.
EOF
}

wrong() {
    usage >&2
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 2
}

sanitizer=address
seconds=600
short=
seed=
minimize=
print=
targets=()
while [ $# -gt 0 ]; do
    case "$1" in
        -h | --help) usage; exit ;;
        --short) short=1 ;;
        --sanitizer | --seconds | --seed | --minimize | --print)
            [ $# -gt 1 ] || wrong "$1 needs a value"
            declare "${1#--}=$2"
            shift
            ;;
        *)
            [ -n "${short_runs[$1]:-}" ] || wrong "there is no target or option '$1'"
            targets+=("$1")
            ;;
    esac
    shift
done
case "$sanitizer" in
    address) preset=linux-asan ;;
    thread) preset=linux-tsan ;;
    *) wrong "there is no sanitizer '$sanitizer'" ;;
esac
[[ "$seconds" =~ ^[1-9][0-9]*$ ]] || wrong "'$seconds' is no number of seconds"
[[ "$seed" =~ ^[0-9]*$ ]] || wrong "'$seed' is no seed"
for file in "$minimize" "$print"; do
    [ -z "$file" ] || [ -f "$file" ] || wrong "there is no file $file"
done
[ -z "$print" ] || targets=(exports)
if [ -n "$minimize" ] && [ ${#targets[@]} -eq 0 ]; then
    # build/fuzz/SANITIZER/TARGET/findings/FILE
    targets=("$(basename "$(dirname "$(dirname "$(realpath "$minimize")")")")")
    [ -n "${short_runs[${targets[0]}]:-}" ] || wrong "which target is $minimize of?"
fi
[ -z "$minimize" ] || [ ${#targets[@]} -eq 1 ] || wrong "--minimize is for one target"
[ ${#targets[@]} -gt 0 ] || targets=("${all_targets[@]}")

program() {
    printf '%s' "$root/build/$preset/fuzz-$1"
}

# show_finding TARGET LOG says what a target has found, by its log.
show_finding() {
    local file
    grep -E '^==== Does not hold|^SUMMARY|ERROR: libFuzzer|runtime error' "$2" | sort -u | head -n 5
    file=$(sed -nE 's/.*Test unit written to (.*)$/\1/p' "$2" | tail -n 1)
    if [ -n "$file" ]; then
        say "  input:  ${file#"$root/"}"
        [ "$1" != exports ] || print_sequence "$file" | sed 's/^/    /'
    fi
    say "  output: ${2#"$root/"}"
}

print_sequence() {
    ZARVIK_PRINT_SEQUENCE=1 "$(program exports)" "$1" 2>/dev/null
}

# fuzz TARGET runs one target; 1 if it found something.
fuzz() {
    local target="$1" folder="$root/build/fuzz/$sanitizer/$1" options status=0 started=$SECONDS
    local log="$folder/output.log" inputs="$folder/inputs"
    if [ -n "$short" ]; then
        # Inputs of earlier runs would make it another run.
        inputs="$folder/short"
        rm -rf "$inputs"
        options=(-seed="${seed:-1}" -runs="${short_runs[$target]}")
    else
        options=(-seed="$seed" -max_total_time="$seconds")
    fi
    mkdir -p "$inputs" "$folder/findings"
    "$(program "$target")" "${options[@]}" -artifact_prefix="$folder/findings/" "$inputs" \
        "$root/tests/fuzz/corpus/$target" >"$log" 2>&1 || status=$?
    if [ "$status" -eq 0 ]; then
        say "$target: nothing found with $(sed -nE 's/^Done ([0-9]+) runs.*/\1/p' "$log") inputs" \
            "in $((SECONDS - started)) s"
    else
        say "$target: FOUND something after $((SECONDS - started)) s"
        show_finding "$target" "$log"
        return 1
    fi
}

minimize() {
    local smaller="$minimize.smaller" log
    log="$root/build/fuzz/$sanitizer/$1/minimize.log"
    mkdir -p "$(dirname "$log")"
    rm -f "$smaller"
    # Each attempt has a bound, and so have all together. The exit code only says how they ended.
    timeout "$seconds" "$(program "$1")" -minimize_crash=1 -max_total_time=60 -exact_artifact_path="$smaller" \
        "$minimize" >"$log" 2>&1 || true
    [ -f "$smaller" ] || fail "it did not become smaller, or does not fail every time: see ${log#"$root/"}"
    say "$(stat -c %s "$minimize") bytes became $(stat -c %s "$smaller"): $smaller"
    [ "$1" != exports ] || print_sequence "$smaller"
}

say "Building ..."
build "$preset" "${targets[@]/#/fuzz-}"
if [ -n "$print" ]; then
    print_sequence "$print"
    exit
fi
# GLib's own allocator hides from the sanitizers what becomes of its small objects.
export G_SLICE=always-malloc
start_display
if [ -n "$minimize" ]; then
    minimize "${targets[0]}"
    exit
fi
if [ -z "$short" ]; then
    [ -n "$seed" ] || seed=$((RANDOM * 32768 + RANDOM + 1))
    say "Seed: $seed"
fi

found=0
running=0
for target in "${targets[@]}"; do
    if [[ " ${alone[*]} " == *" $target "* ]]; then
        while [ "$running" -gt 0 ]; do
            wait -n || found=1
            running=$((running - 1))
        done
        fuzz "$target" || found=1
        continue
    fi
    if [ "$running" -eq 2 ]; then
        wait -n || found=1
        running=$((running - 1))
    fi
    fuzz "$target" &
    running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
    wait -n || found=1
    running=$((running - 1))
done
exit "$found"
