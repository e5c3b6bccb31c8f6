#!/usr/bin/env bash
# Whether what the desktop reads of the program is well formed. Ends with 77 ("skipped") where a tool is missing.
set -euo pipefail
cd "$(dirname "$0")"
for tool in desktop-file-validate appstreamcli xmllint man; do
    command -v $tool >/dev/null || { echo "skipped: no $tool"; exit 77; }
done
desktop-file-validate --warn-kde vexa.desktop
appstreamcli validate --no-net --explain ./*.metainfo.xml
xmllint --noout vexa.xml icons/vexa.svg ./*.metainfo.xml
for page in man/*.1; do
    complaints=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
    [ -z "$complaints" ] || { echo "$page: $complaints"; exit 1; }
done
version=$(sed -n 's/^project(Vexa VERSION \([0-9.]*\).*/\1/p' ../CMakeLists.txt)
tells() {
    grep -q "$2" "$1" || { echo "$1 does not tell of version $version"; exit 1; }
}
tells example.vexa.Vexa.metainfo.xml "<release version=\"$version\""
tells man/vexa.1 "\"Vexa beta $version\""
tells man/vexa-scene.1 "\"Vexa beta $version\""
tells ../debian/changelog "^vexa ($version)"
