# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# Shared by the scripts of this folder; they source it.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)"

tensorflow_dir="$("$root/scripts/install-runtime" --folder)"

# Standard output is for the program's output; messages of the scripts go to standard error.
say() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; }
fail() {
    say "$*"
    exit 1
}

# configure_build <preset> [cmake argument...]: configures build/<preset>, and returns at once if it is configured.
configure_build() {
    local preset="$1"
    local folder="$root/build/$preset"
    shift
    if [ -f "$folder/build.ninja" ] && grep -qx "ZAV_TENSORFLOW_DIR:PATH=$tensorflow_dir" "$folder/CMakeCache.txt"; then
        return
    fi
    local launcher=()
    # ccache caches a unit with precompiled headers only when told to ignore their time stamps and macros.
    if command -v ccache >/dev/null; then
        launcher=("-DCMAKE_CXX_COMPILER_LAUNCHER=env;CCACHE_SLOPPINESS=pch_defines,time_macros;ccache")
    fi
    (cd "$root" && cmake --preset "$preset" "-DZAV_TENSORFLOW_DIR=$tensorflow_dir" "${launcher[@]}" "$@") >&2
}
