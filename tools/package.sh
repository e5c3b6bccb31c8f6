#!/usr/bin/env bash
# Builds what others install, into build/packages/: a Debian package, and the runnable folder as a portable archive.
#   tools/package.sh
set -euo pipefail
cd "$(dirname "$0")/.."
tools/setup.sh package
target=$PWD/build/packages
mkdir -p "$target"

version=$(dpkg-parsechangelog -S Version)
architecture=$(dpkg --print-architecture)
log=$target/package.log
: >"$log"

quietly() {
    if ! "$@" >>"$log" 2>&1; then
        tail -n 40 "$log" >&2
        echo "package: failed: $* (all of it is in $log)" >&2
        exit 1
    fi
}

# dpkg-buildpackage writes beside the source tree and wants it clean: it works on a copy.
echo "== Debian package"
# Always in the same place, so that the compiler's cache knows the files again.
work=$target/work
rm -rf "$work"
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/vexa-$version"
git ls-files -z | xargs -0 cp --parents --no-dereference -t "$work/vexa-$version"
(cd "$work/vexa-$version" && DEB_BUILD_OPTIONS="parallel=$(nproc) nocheck noautodbgsym" quietly dpkg-buildpackage -b -us -uc)
cp "$work"/vexa_"${version}_$architecture".deb "$target"
quietly lintian --fail-on error,warning "$target/vexa_${version}_$architecture.deb"

echo "== portable archive"
quietly cmake --preset release
quietly cmake --build --preset release --target Vexa vexa-scene
portable=$work/portable
quietly cmake --install build/release --prefix "$portable" --strip
install -s build/release/tools/vexa-scene "$portable/Vexa"
cp README.md LICENSE art/DejaVu-licence.txt "$portable/Vexa"
archive=$target/vexa-$version-linux-$architecture.tar.xz
tar -C "$portable" --owner=0 --group=0 --numeric-owner -cJf "$archive" Vexa

ls -l "$target"/vexa_"${version}_$architecture".deb "$archive"
