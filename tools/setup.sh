#!/usr/bin/env bash
# Installs the Debian packages that are missing, and nothing else.
#   tools/setup.sh run    what building and running the program needs
#   tools/setup.sh package  that, and what building the Debian package needs
#   tools/setup.sh all    that, and what tests, checks and benchmarks need (the default)
set -euo pipefail

RUN_PACKAGES=(g++ cmake ninja-build ccache pkg-config libsdl1.2-compat-dev libsdl-image1.2-dev libpng-dev libglew-dev
    libgl-dev libglu1-mesa-dev libgl1-mesa-dri libboost-dev libboost-filesystem-dev libgtest-dev
    xvfb xauth xdotool imagemagick)
TEST_PACKAGES=(libbenchmark-dev libbox2d-dev libchipmunk-dev clang-format clang-tidy python3 python3-pil librsvg2-bin
    fonts-dejavu-core fonts-open-sans desktop-file-utils appstream libxml2-utils man-db)
PACKAGE_PACKAGES=(dpkg-dev debhelper fakeroot lintian xz-utils)

packages=("${RUN_PACKAGES[@]}")
case "${1:-all}" in
    all) packages+=("${TEST_PACKAGES[@]}") ;;
    package) packages+=("${PACKAGE_PACKAGES[@]}") ;;
esac

is_installed() {
    dpkg-query -W -f '${Status}\n' "$1" 2>/dev/null | grep -q '^install ok installed'
}

missing=()
for package in "${packages[@]}"; do
    is_installed "$package" || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then exit 0; fi

cannot() {
    echo "setup: cannot install: $1" >&2
    echo "setup: please install these Debian packages by hand: ${missing[*]}" >&2
    exit 1
}

command -v apt-get >/dev/null || cannot "this system has no apt-get"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || cannot "not root, and there is no sudo"
    as_root=(sudo)
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
log=$(mktemp)
install_missing() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
        "${missing[@]}" >"$log" 2>&1
}
# A package list that is too old to fetch from is renewed once.
if ! install_missing; then
    "${as_root[@]}" apt-get update -qq >>"$log" 2>&1 || true
    if ! install_missing; then
        tail -n 15 "$log" >&2
        cannot "apt-get failed (the lines above are its own)"
    fi
fi
rm -f "$log"
