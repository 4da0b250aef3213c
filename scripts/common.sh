# What the scripts of this folder share. To be sourced; works from any directory.
# shellcheck shell=bash
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

fail() {
    printf '%s: %s\n' "$0" "$*" >&2
    exit 1
}

# quietly COMMAND...
# Shows what the command printed only if it fails.
quietly() {
    local output status=0
    output=$("$@" 2>&1 </dev/null) || status=$?
    [ "$status" = 0 ] || printf '%s\n' "$output" >&2
    return "$status"
}

# configure PRESET
configure() {
    (cd "$root" && quietly cmake --preset "$1") || fail "can not configure build/$1"
}

# build PRESET [TARGET...]
# Configures and builds in build/PRESET. Says nothing if all is up to date.
build() {
    local preset=$1
    shift
    local folder=$root/build/$preset
    local targets=("${@:-all}")
    configure "$preset"
    if [[ $(ninja -C "$folder" -n "${targets[@]}" 2>&1) != *"no work to do"* ]]; then
        echo "Building in $folder"
        ninja -C "$folder" "${targets[@]}" </dev/null || fail "can not build in $folder"
    fi
}

# run_tests PRESET JOBS [CTEST OPTION...]
run_tests() {
    local preset=$1 jobs=$2
    shift 2
    ctest --test-dir "$root/build/$preset" -j "$jobs" --output-on-failure "$@" </dev/null
}

# A folder for this run, and the processes that this run started: both are gone at its end.
scratch=
own_processes=()

clean_up() {
    local process
    for process in "${own_processes[@]}"; do
        kill "$process" 2>/dev/null || true
    done
    for process in "${own_processes[@]}"; do
        wait "$process" 2>/dev/null || true
    done
    [ -z "$scratch" ] || rm -rf "$scratch"
}

# Makes $scratch, and the runtime folder that Qt asks for where the session has none.
prepare_scratch() {
    trap clean_up EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
    scratch=$(mktemp -d)
    if [ ! -O "${XDG_RUNTIME_DIR:-}" ]; then
        mkdir -m 700 "$scratch/runtime"
        export XDG_RUNTIME_DIR=$scratch/runtime
    fi
}

# run_to_end COMMAND...
# In the background, since a signal would otherwise be taken only after the command's end.
run_to_end() {
    local process status=0
    "$@" &
    process=$!
    own_processes+=("$process")
    wait "$process" || status=$?
    return "$status"
}

has_display() {
    [ -n "${DISPLAY:-}" ] && timeout 5 xdpyinfo >/dev/null 2>&1
}

# use_virtual_display [WIDTHxHEIGHT]
# Starts a display that nobody sees and points $DISPLAY to it. Only this user has the key to it.
use_virtual_display() {
    local size=${1:-1600x1200} key number report
    key=$(mcookie)
    export XAUTHORITY=$scratch/xauthority
    quietly xauth -f "$XAUTHORITY" add :0 . "$key"
    exec {report}< <(exec Xvfb -displayfd 1 -screen 0 "${size}x24" -nolisten tcp -noreset \
        -auth "$XAUTHORITY" 2>"$scratch/display.log")
    own_processes+=("$!")
    read -r -t 30 -u "$report" number || fail "no virtual display: $(cat "$scratch/display.log")"
    quietly xauth -f "$XAUTHORITY" add ":$number" . "$key"
    export DISPLAY=:$number QT_QPA_PLATFORM=xcb QT_XCB_GL_INTEGRATION=none
    unset WAYLAND_DISPLAY
}
