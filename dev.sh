#!/usr/bin/env bash
# Sets up a Debian machine for zvlocfmt, builds it and runs one job:
#   ./dev.sh demo    release build, then a tour of zvfmt
#   ./dev.sh test    debug and ASan+UBSan builds, the whole test suite, short fuzz runs
#   ./dev.sh bench   release build, then the benchmarks
set -euo pipefail
cd "$(dirname "$0")"

job="${1:-demo}"
JOBS="${JOBS:-2}"

packages=(cmake ninja-build g++ clang libclang-rt-14-dev libicu-dev libgtest-dev libgmock-dev
          libbenchmark-dev nlohmann-json3-dev)

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

fuzz_short() {
    build fuzz
    local seconds="${FUZZ_SECONDS:-20}"
    for target in build/fuzz/fuzz_*; do
        [ -x "$target" ] || continue
        echo "== $(basename "$target") for ${seconds}s"
        "$target" -max_total_time="$seconds" -artifact_prefix=build/fuzz/ -print_final_stats=0 2>&1 | tail -n 3
    done
}

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
        fuzz_short
        echo "== all tests passed"
        ;;
    bench)
        build release --target zvbench
        ./build/release/zvbench "${@:2}"
        ;;
    *)
        echo "usage: ./dev.sh demo|test|bench" >&2
        exit 2
        ;;
esac
