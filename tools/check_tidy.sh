#!/usr/bin/env bash
# Whether clang-tidy has nothing to say (.clang-tidy) about what has changed: since origin/main, or, where that is all
# there is, in the last commit. A changed header is read with the .cpp file of its name. Ends with 77 ("skipped") where
# the tool or the build is missing.
#   tools/check_tidy.sh [BUILD]         of build/release
#   tools/check_tidy.sh BUILD --all     every file: a quarter of an hour
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
MOST=40  # files; a change of more is read in part, since it takes some seconds each

skip() {
    echo "skipped: $1"
    exit 77
}
command -v clang-tidy >/dev/null || skip "no clang-tidy"
[ -f "$build/compile_commands.json" ] || skip "no $build/compile_commands.json"

list_changed() {
    local base
    base=$(git merge-base HEAD origin/main 2>/dev/null || true)
    [ -n "$base" ] && [ "$base" != "$(git rev-parse HEAD)" ] || base=HEAD~1
    git rev-parse -q --verify "$base" >/dev/null || skip "no commit to compare with"
    { git diff --name-only --diff-filter=d "$base"; git ls-files --others --exclude-standard; } |
        grep -E '^(src|tests|bench|tools)/.*\.(h|cpp)$' | sed 's/\.h$/.cpp/' | sort -u || true
}

if [ "${2:-}" = --all ]; then
    MOST=10000
    list() { git ls-files 'src/*.cpp' 'tests/*.cpp' 'bench/*.cpp' 'tools/*.cpp'; }
else
    git rev-parse --git-dir >/dev/null 2>&1 || skip "no repository"
    list() { list_changed; }
fi
# Only what the build knows how to compile.
mapfile -t files < <(list | while read -r file; do
    if grep -qF "/$file\"" "$build/compile_commands.json"; then echo "$file"; fi
done)
[ ${#files[@]} -le "$MOST" ] || echo "${#files[@]} files have changed; the first $MOST are read"
[ ${#files[@]} -gt 0 ] || { echo "nothing has changed"; exit 0; }
printf '%s\0' "${files[@]:0:$MOST}" | xargs -0 -P 2 -n 1 clang-tidy -p "$build" --quiet 2>/dev/null
