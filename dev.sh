#!/usr/bin/env bash
# Sets up a Debian machine for zvlocfmt, builds it and runs one job:
#   ./dev.sh demo    release build, then a tour of zvfmt
#   ./dev.sh test    debug, ASan+UBSan and TSan builds, the whole test suite, short fuzz runs
#   ./dev.sh bench   release build, then the benchmarks (C++ three times each, ratios of the best runs; then Python beside Babel and pandas)
#   ./dev.sh fuzz [SECONDS]  every fuzz target for SECONDS each (default 60), from its seed corpus
#   ./dev.sh coverage  clang source-based coverage of the suite: lines and branches of src/ and host/
#   ./dev.sh stats   lines of product and of tests (non-blank, non-comment) and their ratio
set -euo pipefail
cd "$(dirname "$0")"

job="${1:-demo}"
JOBS="${JOBS:-2}"

packages=(cmake ninja-build g++ clang libclang-rt-14-dev libicu-dev libgtest-dev libgmock-dev
          libbenchmark-dev nlohmann-json3-dev llvm-14 pkgconf python3-dev python3-numpy python3-pandas
          pybind11-dev python3-pytest python3-babel python3-dask python3-distributed)

install_missing() {
    local missing=()
    for p in "${packages[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    if ((${#missing[@]})); then
        local sudo=""
        if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
        echo "== installing: ${missing[*]}"
        $sudo apt-get update -qq
        DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
    fi
}

build() {
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1" -j "$JOBS" "${@:2}"
}

# Every target for $1 seconds; new inputs go to build/fuzz/corpus/NAME, seeds come from fuzz/corpus/NAME.
fuzz_all() {
    build fuzz
    local seconds="$1" target name
    for target in build/fuzz/fuzz_*; do
        [ -f "$target" ] && [ -x "$target" ] || continue
        name=$(basename "$target")
        mkdir -p "build/fuzz/corpus/$name" "fuzz/corpus/$name"
        echo "== $name for ${seconds}s"
        "$target" "build/fuzz/corpus/$name" "fuzz/corpus/$name" -max_total_time="$seconds" \
            -artifact_prefix="build/fuzz/$name-" -print_final_stats=0 2>&1 | tail -n 3
    done
}

# Non-blank, non-comment lines of the C, C++ and Python files under the given folders; generated
# tables (*.inc) are left out.
count_lines() {
    local dirs=()
    for d in "$@"; do [ -d "$d" ] && dirs+=("$d"); done
    find "${dirs[@]}" -type f \( -name '*.c' -o -name '*.cpp' -o -name '*.h' -o -name '*.hpp' -o -name '*.py' \) \
        | sort | xargs -r awk -f tools/dev/count_lines.awk
}

stats() {
    local product tests
    product=$(count_lines src host include tools bench python examples)
    tests=$(count_lines tests fuzz)
    printf 'product %6d lines  (src host include tools bench python examples)\n' "$product"
    printf 'tests   %6d lines  (tests fuzz)\n' "$tests"
    awk -v t="$tests" -v p="$product" 'BEGIN { printf "ratio   %6.1f%%  (tests / product; at most 35%%)\n", 100 * t / p }'
}

coverage() {
    build coverage
    local dir=build/coverage
    rm -rf "$dir/profiles" && mkdir -p "$dir/profiles"
    LLVM_PROFILE_FILE="$PWD/$dir/profiles/%p-%m.profraw" ctest --test-dir "$dir" -j "$JOBS" --output-on-failure
    llvm-profdata-14 merge -sparse -o "$dir/suite.profdata" "$dir"/profiles/*.profraw
    local objects=() first=""
    for exe in "$dir"/test_* "$dir"/zvfmt; do
        [ -x "$exe" ] || continue
        if [ -z "$first" ]; then first="$exe"; else objects+=(-object "$exe"); fi
    done
    for area in src host; do
        echo "== coverage of $area/"
        llvm-cov-14 report "$first" "${objects[@]}" -instr-profile="$dir/suite.profdata" \
            -ignore-filename-regex='\.inc$' "$PWD/$area/" | tail -n 1 |
            awk '{ printf "lines %s  branches %s\n", $10, $13 }'
    done
}

if [ "$job" = stats ]; then stats; exit 0; fi
install_missing
case "$job" in
    demo)
        build release --target zvfmt
        ./build/release/zvfmt demo
        ;;
    test)
        build dev
        ctest --preset dev -j "$JOBS"
        build asan
        ctest --preset asan -j "$JOBS"
        # The host's tests, its threads among them, under ThreadSanitizer.
        build tsan --target test_host
        ctest --preset tsan -j "$JOBS"
        fuzz_all "${FUZZ_SECONDS:-10}"
        echo "== all tests passed"
        ;;
    bench)
        build release --target zvbench --target zvpython
        # Three runs of each; the ratios take each side's best.
        ./build/release/zvbench --benchmark_repetitions=3 "${@:2}"
        echo "== the Python module beside Babel and pandas"
        PYTHONPATH="$PWD/build/release/python" /usr/bin/python3 bench/python_bench.py
        ;;
    coverage)
        coverage
        ;;
    fuzz)
        fuzz_all "${2:-60}"
        ;;
    *)
        echo "usage: ./dev.sh demo|test|bench|coverage|fuzz [SECONDS]|stats" >&2
        exit 2
        ;;
esac
