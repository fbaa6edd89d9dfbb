# shellcheck shell=bash
# Sourced by the other scripts: messages, logged commands, a private X server. Sets `root` to the checkout.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
logs="$root/build/logs"

say() {
    printf '%s\n' "$*"
}

fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# quietly NAME COMMAND... runs a command with its output in build/logs/NAME.log, and shows the end of that only when
# the command fails. No pipe: some tools die when the reader stops.
quietly() {
    local log="$logs/$1.log"
    shift
    mkdir -p "$logs"
    "$@" >"$log" 2>&1 && return
    local status=$?
    tail -n 40 "$log" >&2
    printf 'The whole output is in %s\n' "$log" >&2
    return "$status"
}

# build PRESET [TARGET...] configures when the presets are newer and builds what is out of date.
build() {
    local preset="$1" targets=()
    shift
    if [ "$root/CMakePresets.json" -nt "$root/build/$preset/build.ninja" ]; then
        quietly "configure-$preset" cmake -S "$root" --preset "$preset" || return
    fi
    [ $# -eq 0 ] || targets=(--target "$@")
    quietly "build-$preset" cmake --build "$root/build/$preset" "${targets[@]}"
}

# start_display gives this script an X server of its own and exports DISPLAY and XAUTHORITY. It ends with the script.
start_display() {
    local cookie number
    export NO_AT_BRIDGE=1  # there is no accessibility bus on a private display
    display_folder=$(mktemp -d)
    cookie=$(mcookie)
    export XAUTHORITY="$display_folder/authority"
    mkfifo "$display_folder/number"
    # The server takes any cookie of the file; clients look theirs up by the number, known only afterwards.
    xauth -q -f "$XAUTHORITY" add :0 . "$cookie" 2>/dev/null
    # Without a reset, during which nobody could connect, when the last client leaves.
    Xvfb -displayfd 6 -screen 0 1920x1080x24 +extension GLX -nolisten tcp -noreset -auth "$XAUTHORITY" \
        6>"$display_folder/number" >"$display_folder/log" 2>&1 &
    display_server=$!
    trap stop_display EXIT
    if ! read -r -t 30 number <"$display_folder/number"; then
        cat "$display_folder/log" >&2
        fail "the X server (Xvfb) did not start"
    fi
    export DISPLAY=":$number"
    xauth -q -f "$XAUTHORITY" add "$DISPLAY" . "$cookie"
}

stop_display() {
    kill "$display_server" 2>/dev/null || true
    wait "$display_server" 2>/dev/null || true
    rm -rf "$display_folder"
}

# forward COMMAND... runs a command that gets this script's input and the signals that end this script, and returns
# its exit code.
forward() {
    local child status
    "$@" <&0 &
    child=$!
    trap 'kill -TERM "$child" 2>/dev/null || true' HUP INT TERM
    # A signal interrupts the wait; the child then still has to end.
    while status=0; wait "$child" || status=$?; kill -0 "$child" 2>/dev/null; do :; done
    trap - HUP INT TERM
    return "$status"
}

# Web pages run in a sandbox that is made of user namespaces; without them every page fails to load.
warn_without_sandbox() {
    [ "${WEBVIEW_SANDBOX:-}" != off ] || return 0
    bwrap --unshare-pid --unshare-ipc --unshare-uts --ro-bind / / true 2>/dev/null ||
        say "Warning: this machine allows no user namespaces, so the sandbox of web pages cannot start and no page" \
            "will load. Allow them, or set WEBVIEW_SANDBOX=off to run pages with all rights of this user." >&2
}
