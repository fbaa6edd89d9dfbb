#!/usr/bin/env bash
# with-display.sh COMMAND...: runs a command with an X server of its own, so that nobody else moves its pointer or takes
# its keyboard. Returns the command's exit code.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

start_display
forward "$@"
