#!/usr/bin/env bash
# Plays a scene on a virtual display for some seconds and takes a screenshot:
#   tools/play_headless.sh PROGRAM SCREENSHOT.png [SCENE.vxa]
set -euo pipefail
PLAY_SECONDS=${PLAY_SECONDS:-4}
START_LIMIT_SECONDS=60

if [ -z "${VEXA_HEADLESS_CHILD:-}" ]; then
    exec env VEXA_HEADLESS_CHILD=1 xvfb-run -a -s "-screen 0 1280x900x24" "$0" "$@"
fi

program=$1 screenshot=$2
shift 2
"$program" "$@" &
pid=$!
trap 'kill -9 $pid 2>/dev/null || true' EXIT

window=
for _ in $(seq $((START_LIMIT_SECONDS * 5))); do
    window=$(xdotool search --onlyvisible --name 'Vexa' 2>/dev/null | head -n 1) || true
    [ -n "$window" ] && break
    kill -0 $pid 2>/dev/null || { echo "run: the program ended before it showed its window" >&2; exit 1; }
    sleep 0.2
done
[ -n "$window" ] || { echo "run: no window within $START_LIMIT_SECONDS s" >&2; exit 1; }

sleep 1.5
xdotool mousemove --window "$window" 40 40 key --window "$window" space
sleep "$PLAY_SECONDS"
import -window root -silent "$screenshot"
kill -TERM $pid
trap - EXIT
wait $pid
echo "No display: played the scene on a virtual one; screenshot written to $screenshot"
