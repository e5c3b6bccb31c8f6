#!/usr/bin/env bash
# Installs the package of tools/package.sh into a clean Debian 12 in a folder of its own, starts it there as an ordinary
# user on a virtual display, and purges it again; then the portable archive runs from a folder of that user.
# Needs root, debootstrap and the package archive; takes some minutes.
#   [CLEAN_SYSTEM=FOLDER] tools/test_package.sh [PACKAGE.deb [ARCHIVE.tar.xz]]
# CLEAN_SYSTEM is what debootstrap has made before, of which a copy is taken.
set -euo pipefail
cd "$(dirname "$0")/.."
package=$(realpath "${1:-$(ls -t build/packages/vexa_*.deb | head -n 1)}")
archive=$(realpath "${2:-$(ls -t build/packages/vexa-*.tar.xz | head -n 1)}")
command -v debootstrap >/dev/null || { echo "test_package: install debootstrap" >&2; exit 2; }
root=$(mktemp -d)
chmod 755 "$root" # the ordinary user's too
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf "$root"' EXIT
mirror=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null |
    sed -n 's/^deb [^h]*\(http[^ ]*\).*/\1/p; s/^URIs: *\([^ ]*\).*/\1/p' | head -n 1) || true
log=$PWD/build/packages/test_package.log

clean=(chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive)
inside() { "${clean[@]}" "$@"; }
# Without a network, or a display of this system would answer in the place of the clean one's.
as_child() { unshare --net "${clean[@]}" su child -c "$1"; }
quietly() {
    if ! "$@" >>"$log" 2>&1; then
        tail -n 30 "$log" >&2
        echo "test_package: failed: $* (all of it is in $log)" >&2
        exit 1
    fi
}

echo "== a clean system"
: >"$log"
if [ -n "${CLEAN_SYSTEM:-}" ]; then
    cp -a "$CLEAN_SYSTEM/." "$root"
else
    quietly debootstrap --variant=minbase --include=adduser,ca-certificates bookworm "$root" \
        "${mirror:-http://deb.debian.org/debian}"
fi
cp /etc/apt/sources.list "$root/etc/apt/" 2>/dev/null || true
cp -r /etc/apt/sources.list.d /etc/apt/trusted.gpg.d "$root/etc/apt/" 2>/dev/null || true
cp /etc/resolv.conf /etc/hosts "$root/etc/" 2>/dev/null || true
mount -t proc proc "$root/proc" 2>/dev/null || true
quietly inside apt-get update -qq
quietly inside apt-get install -y -qq --no-install-recommends xvfb xauth xdotool xz-utils
inside useradd -m child

echo "== install"
cp "$package" "$root/vexa.deb"
quietly inside apt-get install -y -qq --no-install-recommends /vexa.deb

# start.sh PROGRAM FOLDER: starts the program, looks for its window, ends it, and finds what it saved in the folder.
cat >"$root/start.sh" <<'INNER'
set -e
cd ~
"$1" stack.vxa >~/output 2>&1 &
pid=$!
for _ in $(seq 150); do
    window=$(xdotool search --onlyvisible --name Vexa 2>/dev/null | head -n 1) && [ -n "$window" ] && break
    sleep 0.2
done
[ -n "$window" ] || { cat ~/output; exit 1; }
sleep 2
kill -TERM $pid
wait $pid
grep "^workdir = $2/" ~/output
ls "$2/config.cfg" "$2/Scenes/_ONEXITSAVE.vxa"
INNER

echo "== start as an ordinary user"
as_child "xvfb-run -a sh /start.sh vexa /home/child/.local/share/vexa"
as_child "vexa-scene /usr/share/vexa/Scenes/stack.vxa --steps 100 --hash"

echo "== purge"
quietly inside apt-get purge -y -qq vexa
left=$(find "$root/usr" "$root/etc" "$root/var" -iname '*vexa*' ! -path '*/apt/*' ! -path '*/log/*')
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }

echo "== the portable archive, from a folder of the user"
as_child "mkdir '/home/child/my games'"
as_child "tar -xJf - -C '/home/child/my games'" <"$archive"
as_child "xvfb-run -a sh /start.sh '/home/child/my games/Vexa/Vexa' '/home/child/my games/Vexa'"
echo "test_package: installed, started and purged without a trace; the archive runs where it is unpacked"
