#!/usr/bin/env bash
# Installs what is missing, builds the program and starts it:
#   ./run.sh [scene.vxa]
# Without a display the scene is played on a virtual one for some seconds, and a screenshot is written.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

scene=()
if [ $# -gt 0 ]; then
    # The program looks for a bare name in Scenes/; a file that exists here is passed by its full path.
    if [ -f "$1" ]; then scene=("$(realpath "$1")"); else scene=("$@"); fi
fi

"$here/tools/setup.sh" run
cd "$here"
log=$here/build/release/build.log
mkdir -p build/release
echo "Building (the first time takes a few minutes)..."
if ! { cmake --preset release && cmake --build --preset release --target Vexa vexa_folder vexa-scene; } \
    >"$log" 2>&1; then
    tail -n 30 "$log" >&2
    echo "run: the build failed; all of it is in $log" >&2
    exit 1
fi

program=$here/build/release/Vexa/Vexa
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec "$program" "${scene[@]}"
fi
exec "$here/tools/play_headless.sh" "$program" "$here/build/release/screenshot.png" "${scene[@]}"
