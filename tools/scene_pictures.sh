#!/usr/bin/env bash
# Makes the small picture beside each shipped scene, which dialogs and the gallery show:
#   tools/scene_pictures.sh FOLDER [SCENE...]
# FOLDER is that of a built program; without names, all of Scenes/. Each scene is shown as it opens, on a virtual
# display, in a copy of the folder. Needs xvfb, xdotool and imagemagick.
set -euo pipefail
SIZE=160x120
WINDOW='[640, 480]'
NO_TOOLS='App.AppGUI.windows = "Tools closed - - Control closed - -";'  # or the view keeps clear of them
START_LIMIT_SECONDS=60
SETTLE_SECONDS=2  # the view glides to the scene and clouds come into it

if [ -z "${VEXA_PICTURES_CHILD:-}" ]; then
    exec env VEXA_PICTURES_CHILD=1 xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
fi

root=$(cd "$(dirname "$0")/.." && pwd)
program=$(cd "$1" && pwd)
shift
[ $# -gt 0 ] || set -- "$root"/Scenes/[!_]*.vxa
copy=$(mktemp -d)
pid=
trap '[ -z "$pid" ] || kill -9 $pid 2>/dev/null || true; rm -rf "$copy"' EXIT

for scene in "$@"; do
    rm -rf "$copy" && cp -r "$program" "$copy" && rm -f "$copy"/config*.cfg
    cp "$scene" "$copy/Scenes/"
    echo "System.resolution = $WINDOW; GUI.opaqueness = 0.0; $NO_TOOLS" >> "$copy/autoexec.cfg"
    (cd "$copy" && exec ./Vexa "Scenes/$(basename "$scene")") > /dev/null 2>&1 &
    pid=$!
    window=
    for _ in $(seq $((START_LIMIT_SECONDS * 5))); do
        window=$(xdotool search --onlyvisible --name 'Vexa' 2>/dev/null | head -n 1) || true
        [ -n "$window" ] && break
        sleep 0.2
    done
    [ -n "$window" ] || { echo "no window within $START_LIMIT_SECONDS s" >&2; exit 1; }
    for _ in $(seq $START_LIMIT_SECONDS); do  # until something has been drawn
        import -window "$window" -silent "$copy/shot.png"
        [ "$(convert "$copy/shot.png" -format '%[fx:mean > 0.1]' info:)" = 1 ] && break
        sleep 1
    done
    sleep "$SETTLE_SECONDS"
    picture=${scene%.vxa}.png
    import -window "$window" -silent "$copy/shot.png"
    convert "$copy/shot.png" -filter Lanczos -resize "$SIZE!" -strip "$picture"
    kill -TERM $pid && wait $pid || true
    pid=
    echo "$picture"
done
