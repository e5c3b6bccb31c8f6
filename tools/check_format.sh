#!/usr/bin/env bash
# Whether every C++ file is as clang-format writes it; "--fix" writes them so.
set -euo pipefail
cd "$(dirname "$0")/.."
mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
find src tests bench tools -name '*.h' -print0 -o -name '*.cpp' -print0 | xargs -0 clang-format "${mode[@]}"
