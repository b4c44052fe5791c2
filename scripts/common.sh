# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# Shared by the scripts of this folder; sourced, never run.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)"

readonly TENSORFLOW_VERSION=2.21.0
tensorflow_dir="${XDG_CACHE_HOME:-$HOME/.cache}/zav/tensorflow-$TENSORFLOW_VERSION"

# Standard output belongs to the program; everything that the scripts say goes to standard error.
say() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; }
fail() {
    say "$*"
    exit 1
}

# configure_build <preset> [cmake argument...]: configures build/<preset>, at once when nothing changed.
configure_build() {
    local preset="$1"
    local folder="$root/build/$preset"
    shift
    if [ -f "$folder/build.ninja" ] && grep -qx "ZAV_TENSORFLOW_DIR:PATH=$tensorflow_dir" "$folder/CMakeCache.txt"; then
        return
    fi
    local launcher=()
    # A cache takes a unit with precompiled headers only when told that their time stamps and macros need no look.
    if command -v ccache >/dev/null; then
        launcher=("-DCMAKE_CXX_COMPILER_LAUNCHER=env;CCACHE_SLOPPINESS=pch_defines,time_macros;ccache")
    fi
    (cd "$root" && cmake --preset "$preset" "-DZAV_TENSORFLOW_DIR=$tensorflow_dir" "${launcher[@]}" "$@") >&2
}
