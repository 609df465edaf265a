# shellcheck shell=bash
# What the scripts share; sourced by them.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Runs a command quietly and shows what it said only if it fails. On a terminal one line tells how far it is:
# quietly "what it does" command...
quietly() {
    local title=$1 log line status=0
    shift
    log=$(mktemp)
    if [ -t 2 ]; then
        printf '%s' "$title" >&2
        set +e
        "$@" </dev/null 2>&1 | tee "$log" | while IFS= read -r line; do
            [[ $line =~ ^\[[0-9]+/[0-9]+\] ]] && printf '\r\033[K%s %s' "$title" "${BASH_REMATCH[0]}" >&2
        done
        status=${PIPESTATUS[0]}
        set -e
        printf '\r\033[K' >&2
    else
        "$@" </dev/null >"$log" 2>&1 || status=$?
    fi
    [ "$status" -eq 0 ] || { echo "$title: failed" >&2; cat "$log" >&2; }
    rm -f "$log"
    return "$status"
}

# configure PRESET: a tree that stands is left to the build, which configures anew when a CMake file has changed.
configure() {
    local tree=$root/build/$1
    [ "$tree/build.ninja" -nt "$root/CMakePresets.json" ] || (cd "$root" && quietly "Configuring $1" cmake --preset "$1")
}

# build PRESET [TARGET...]
build() {
    local preset=$1 targets=()
    [ $# -eq 1 ] || targets=(--target "${@:2}")
    (cd "$root" && quietly "Building $preset" cmake --build --preset "$preset" "${targets[@]}")
}
