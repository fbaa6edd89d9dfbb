#!/usr/bin/env bash
# Installs the Debian packages that are missing. Returns at once when there are none.
#   setup-linux.sh [windows|bench]     windows: also what the Windows build and its tests need
#                                      bench: also the other browsers of the benchmark
# ZARVIK_SKIP_SETUP=1 takes the machine as it is, for systems without apt.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# A word after the colon is a command that makes the package unnecessary, whoever installed it.
packages=(
    # build
    clang-19 lld-19 libclang-rt-19-dev clang-format-19 clang-tidy-19
    cmake:cmake ninja-build:ninja pkg-config:pkg-config nodejs:node npm:npm ca-certificates
    # the Windows Runtime slice
    libwebkit2gtk-4.1-dev libgstreamer1.0-dev mingw-w64-common nlohmann-json3-dev
    # the engine and its player
    libepoxy-dev libegl-dev libgles-dev libglfw3-dev libcli11-dev libpng-dev
    # the tests
    libgtest-dev libcpp-httplib-dev libssl-dev libxtst-dev chromium:chromium
    # the benchmark
    libjpeg62-turbo-dev
    # running pages without a screen
    xvfb:Xvfb xauth:xauth libegl1 libgl1-mesa-dri fonts-dejavu-core bubblewrap:bwrap xdg-dbus-proxy:xdg-dbus-proxy
)
case "${1:-}" in
    windows) packages+=(wine wine64 wine64-tools libgl1) ;;
    bench) packages+=(
        chromium-headless-shell:chromium-headless-shell
        qt6-webengine-dev qml6-module-qtwebengine qml6-module-qtqml-workerscript) ;;
esac

missing_packages() {
    local installed entry package
    installed=$(dpkg-query -W -f '${Package}=${db:Status-Status}\n' 2>/dev/null || true)
    for entry in "${packages[@]}"; do
        package=${entry%%:*}
        [ "$entry" = "$package" ] || ! command -v "${entry#*:}" >/dev/null || continue
        [[ $'\n'"$installed"$'\n' == *$'\n'"$package=installed"$'\n'* ]] || printf '%s\n' "$package"
    done
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

install_packages() {
    as_root apt-get update
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
}

[ "${ZARVIK_SKIP_SETUP:-}" != 1 ] || exit 0
mapfile -t missing < <(missing_packages)
[ ${#missing[@]} -gt 0 ] || exit 0

by_hand="Install these Debian packages, or what your system calls them, then set ZARVIK_SKIP_SETUP=1: ${missing[*]}"
command -v apt-get >/dev/null || fail "there is no apt on this system. $by_hand"
[ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null || fail "installing packages needs root or sudo. $by_hand"
say "Installing ${#missing[@]} packages with apt (up to 5 minutes): ${missing[*]}"
[ "$(id -u)" -eq 0 ] || sudo -v || fail "sudo was refused. $by_hand"
quietly setup-linux install_packages "${missing[@]}" || fail "apt could not install them. $by_hand"
