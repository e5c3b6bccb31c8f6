#!/usr/bin/env bash
# Builds the fuzzers with clang and runs them: tests/fuzz/run.sh [SECONDS each] [NAME...]
# What they find is left in build/fuzz/found/. Exit status 77 (skipped) where there is no clang with libFuzzer.
set -euo pipefail
cd "$(dirname "$0")/../.."
seconds=${1:-60}
shift || true
names=("$@")
[ ${#names[@]} -gt 0 ] || names=(parse guest settings polygon image font scene language)

probe=$(mktemp -d)
trap 'rm -rf "$probe"' EXIT
echo 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }' >"$probe/a.cpp"
if ! clang++ -fsanitize=fuzzer "$probe/a.cpp" -o "$probe/a" 2>/dev/null; then
    echo "fuzz: skipped, there is no clang++ with libFuzzer"
    exit 77
fi

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${names[@]/#/fuzz_}"

status=0
for name in "${names[@]}"; do
    case $name in
        parse | guest | settings) seeds=script ;;
        *) seeds=$name ;;
    esac
    mkdir -p "build/fuzz/corpus/$name" "build/fuzz/found"
    echo "== $name, $seconds s"
    ASAN_OPTIONS=detect_leaks=0 "build/fuzz/tests/fuzz/fuzz_$name" "build/fuzz/corpus/$name" "tests/fuzz/seeds/$seeds" \
        -max_total_time="$seconds" -max_len=4096 -timeout=25 -rss_limit_mb=3000 -print_final_stats=1 \
        -artifact_prefix="build/fuzz/found/$name-" >"build/fuzz/$name.log" 2>&1 || status=1
    grep -E 'does not hold|ERROR|SUMMARY|runtime error|Test unit written|number_of_executed|average_exec_per_sec' \
        "build/fuzz/$name.log" || tail -5 "build/fuzz/$name.log"
done
exit $status
