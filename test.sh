#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test and check:
# unit tests under sanitizers ("checked"), end-to-end tests and checks of the tree in "release".
set -euo pipefail
cd "$(dirname "$0")"
tools/setup.sh all

quietly() {
    local log=build/$1.log
    shift
    mkdir -p build
    if ! "$@" >"$log" 2>&1; then
        tail -n 40 "$log"
        echo "test: failed: $* (all of it is in $log)"
        exit 1
    fi
}

echo "== building checked (address and undefined-behaviour sanitizers)"
quietly checked-configure cmake --preset checked
quietly checked-build cmake --build --preset checked --target unit_tests
echo "== building release"
quietly release-configure cmake --preset release
quietly release-build cmake --build --preset release --target all vexa-bench

status=0
echo "== unit tests, checked"
ctest --preset checked -L unit -j2 --timeout 600 || status=1
echo "== end-to-end tests and checks, release"
ctest --preset release -L 'end_to_end|check|scene' -j2 --timeout 600 || status=1
exit $status
