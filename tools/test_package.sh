#!/usr/bin/env bash
# Installs the package of tools/package.sh into a clean Debian 12 in a folder of its own, starts it there as an ordinary
# user on a virtual display, and purges it again. Needs root, debootstrap and the package archive; takes some minutes.
#   tools/test_package.sh [PACKAGE.deb]
set -euo pipefail
cd "$(dirname "$0")/.."
package=$(realpath "${1:-$(ls -t build/packages/vexa_*.deb | head -n 1)}")
command -v debootstrap >/dev/null || { echo "test_package: install debootstrap" >&2; exit 2; }
root=$(mktemp -d)
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf "$root"' EXIT
mirror=$(sed -n 's/^deb [^h]*\(http[^ ]*\).*/\1/p; s/^URIs: *\([^ ]*\).*/\1/p' /etc/apt/sources.list /etc/apt/sources.list.d/* \
    2>/dev/null | head -n 1)
log=$PWD/build/packages/test_package.log

inside() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }

echo "== a clean system"
debootstrap --variant=minbase --include=adduser bookworm "$root" "${mirror:-http://deb.debian.org/debian}" >"$log" 2>&1
cp /etc/apt/sources.list "$root/etc/apt/" 2>/dev/null || true
cp -r /etc/apt/sources.list.d /etc/apt/apt.conf.d /etc/apt/trusted.gpg.d "$root/etc/apt/" 2>/dev/null || true
cp /etc/resolv.conf /etc/hosts "$root/etc/" 2>/dev/null || true
mount -t proc proc "$root/proc" 2>/dev/null || true
inside apt-get update -qq >>"$log" 2>&1
inside apt-get install -y -qq --no-install-recommends xvfb xauth xdotool >>"$log" 2>&1
inside useradd -m child
inside sh -c 'dpkg -l | sort' >"$root/before"

echo "== install"
cp "$package" "$root/vexa.deb"
inside apt-get install -y -qq --no-install-recommends /vexa.deb >>"$log" 2>&1

echo "== start as an ordinary user"
cat >"$root/start.sh" <<'INNER'
set -e
cd ~
vexa stack.vxa >~/output 2>&1 &
pid=$!
for _ in $(seq 150); do
    window=$(xdotool search --onlyvisible --name Vexa 2>/dev/null | head -n 1) && [ -n "$window" ] && break
    sleep 0.2
done
[ -n "$window" ] || { cat ~/output; exit 1; }
sleep 2
kill -TERM $pid
wait $pid
grep "^workdir = $HOME/.local/share/vexa/" ~/output
ls ~/.local/share/vexa/config.cfg ~/.local/share/vexa/Scenes/_ONEXITSAVE.vxa
vexa-scene /usr/share/vexa/Scenes/stack.vxa --steps 100 --hash
INNER
inside su child -c "xvfb-run -a sh /start.sh"

echo "== purge"
inside apt-get purge -y -qq vexa >>"$log" 2>&1
left=$(find "$root/usr" "$root/etc" "$root/var" -iname '*vexa*' ! -path '*/apt/*' ! -path '*/dpkg/*' ! -path '*/log/*')
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }
echo "test_package: installed, started and purged without a trace"
