#!/usr/bin/env bash
# Builds the fuzzers with clang and runs them: tests/fuzz/run.sh [--built] [SECONDS each] [NAME...]
# With --built only those run that stand in build/fuzz. What they find is left in build/fuzz/found/.
# Exit status 77 (skipped) where there is no clang with libFuzzer, or nothing built.
set -euo pipefail
cd "$(dirname "$0")/../.."
build=yes
if [ "${1:-}" = --built ]; then
    build=
    shift
fi
seconds=${1:-60}
shift || true
names=("$@")
[ ${#names[@]} -gt 0 ] || names=(parse guest settings polygon image font scene language)

build_them() {
    local probe
    probe=$(mktemp -d)
    echo 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }' >"$probe/a.cpp"
    if ! clang++ -fsanitize=fuzzer "$probe/a.cpp" -o "$probe/a" 2>/dev/null; then
        rm -r "$probe"
        echo "fuzz: skipped, there is no clang++ with libFuzzer (Debian: clang, libclang-rt-dev)"
        exit 77
    fi
    rm -r "$probe"
    cmake --preset fuzz >/dev/null
    cmake --build --preset fuzz --target "${names[@]/#/fuzz_}"
}

keep_built() {
    local built=() name
    for name in "${names[@]}"; do
        if [ -x "build/fuzz/tests/fuzz/fuzz_$name" ]; then built+=("$name"); fi
    done
    if [ ${#built[@]} -eq 0 ]; then
        echo "fuzz: skipped, no fuzzer is built"
        exit 77
    fi
    names=("${built[@]}")
}

if [ -n "$build" ]; then build_them; else keep_built; fi

if [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
TMPDIR=$(mktemp -d)
export TMPDIR
trap 'rm -r "$TMPDIR"' EXIT
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
