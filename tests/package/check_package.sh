#!/usr/bin/env bash
# The installed package, as a user meets it:
#  - a module-only build (-DZV_HOST=OFF) configures with none of the host's, tests' or tools'
#    dependencies to be found, builds and installs;
#  - libzvlocfmt.so carries its version and soname and exports the four entry points only;
#  - examples/c builds against the install with find_package (static module) and with
#    pkg-config (shared module); both print what examples/README.md shows, and every line
#    agrees with zvfmt on the reference host;
#  - the install of the full build gives zvlocfmt::host to find_package and zvlocfmt-host
#    to pkg-config, and a program on it runs.
# Usage: check_package.sh SOURCE_DIR FULL_BUILD_DIR WORK_DIR ZVFMT GENERATOR C_COMPILER CXX_COMPILER
set -euo pipefail
src=$1 full=$2 work=$3 zvfmt=$4 generator=$5 cc=$6 cxx=$7

fail() { echo "FAIL: $*" >&2; exit 1; }
rm -rf "$work" && mkdir -p "$work"
cd "$work"
quiet() { "$@" >"$work/last.log" 2>&1 || { cat "$work/last.log" >&2; fail "$*"; }; }

# ---- module only ------------------------------------------------------------
nodeps=()
for p in ICU GTest nlohmann_json benchmark pybind11 Python Python3; do
    nodeps+=("-DCMAKE_DISABLE_FIND_PACKAGE_$p=ON")
done
quiet cmake -S "$src" -B core -G "$generator" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
    -DZV_HOST=OFF "${nodeps[@]}"
quiet cmake --build core -j2
quiet cmake --install core --prefix "$work/core-prefix"
lib=$(find "$work/core-prefix" -name 'libzvlocfmt.so' -printf '%h')
[ -n "$lib" ] || fail "libzvlocfmt.so not installed"

(cd "$work/core-prefix" && find . -path ./lib -prune -o -type f -print | sort) > headers.txt
[ "$(cat headers.txt)" = "./include/zvlocfmt/zvlocfmt.h" ] || fail "module-only install holds: $(cat headers.txt)"
[ -f "$lib/libzvlocfmt.a" ] || fail "libzvlocfmt.a not installed"
so=$(readlink -f "$lib/libzvlocfmt.so")
version=$(sed -n 's/^project(zvlocfmt VERSION \([0-9.]*\).*/\1/p' "$src/CMakeLists.txt")
[ "$(basename "$so")" = "libzvlocfmt.so.$version" ] || fail "shared library is $(basename "$so")"
soname=$(readelf -d "$so" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$soname" = "libzvlocfmt.so.${version%%.*}" ] || fail "soname: $soname"
exports=$(nm -D --defined-only "$so" | awk '{print $NF}' | sort | tr '\n' ' ')
[ "$exports" = "zvextent zvextver zvlocfmt zvvercn1 " ] || fail "libzvlocfmt.so exports: $exports"

# ---- the example, both ways -------------------------------------------------
quiet cmake -S "$src/examples/c" -B by-cmake -G "$generator" -DCMAKE_C_COMPILER="$cc" \
    -DCMAKE_PREFIX_PATH="$work/core-prefix" -DCMAKE_C_FLAGS="-Wall -Wextra -Werror -pedantic"
quiet cmake --build by-cmake
export PKG_CONFIG_PATH="$lib/pkgconfig"
# shellcheck disable=SC2046
quiet "$cc" -std=c11 -Wall -Wextra -Werror -pedantic -o by-pkg-config "$src/examples/c/zvlocfmt_example.c" \
    $(pkg-config --cflags --libs zvlocfmt) -Wl,-rpath,"$lib"
libs=$(ldd by-pkg-config)
grep -q "libzvlocfmt.so.${version%%.*} => $lib/" <<< "$libs" || fail "pkg-config build is not on the installed .so"

sed -n '/^<!-- example output -->/,/^```$/p' "$src/examples/README.md" | sed '1,2d;$d' > expected.txt
[ -s expected.txt ] || fail "no example output in examples/README.md"
for program in by-cmake/zvlocfmt_example ./by-pkg-config; do
    "$program" > got.txt || fail "$program exited with $?"
    diff -u expected.txt got.txt >&2 || fail "$program differs from examples/README.md"
done

# Each line again on the reference host: "NAME[W[.D]] VALUE -> [TEXT]" or "@NAME[W[.D]] [TEXT] -> VALUE".
while IFS= read -r line; do
    spec=${line%% *} rest=${line#* }
    input=$(sed 's/^ *//; s/ *-> .*//' <<< "$rest") output=${line#* -> }
    if [[ $spec == @* ]]; then
        want=$("$zvfmt" "$spec" -- "${input:1:${#input}-2}")
    else
        want="[$("$zvfmt" "$spec" -- "$input")]"
    fi
    [ "$want" = "$output" ] || fail "$spec $input: example host $output, reference host $want"
done < expected.txt

# ---- the full install: the reference host ------------------------------------
quiet cmake --install "$full" --prefix "$work/full-prefix"
flib=$(find "$work/full-prefix" -name 'zvlocfmt-host.pc' -printf '%h')
[ -n "$flib" ] || fail "zvlocfmt-host.pc not installed"
[ -x "$work/full-prefix/bin/zvfmt" ] || fail "zvfmt not installed"
mkdir host-user
cp "$src/tests/package/host_user.cpp" host-user/
cat > host-user/CMakeLists.txt <<'EOF'
cmake_minimum_required(VERSION 3.25)
project(host_user LANGUAGES CXX)
find_package(zvlocfmt 6.1 CONFIG REQUIRED)
add_executable(host_user host_user.cpp)
target_compile_features(host_user PRIVATE cxx_std_20)
target_link_libraries(host_user PRIVATE zvlocfmt::host)
EOF
quiet cmake -S host-user -B host-user/build -G "$generator" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_PREFIX_PATH="$work/full-prefix"
quiet cmake --build host-user/build
export PKG_CONFIG_PATH="$flib"
# shellcheck disable=SC2046
quiet "$cxx" -std=c++20 -o host-user/by-pkg-config "$src/tests/package/host_user.cpp" \
    $(pkg-config --cflags --libs zvlocfmt-host) -Wl,-rpath,"$(dirname "$flib")"
want="[$("$zvfmt" NLDATE20 -l de_DE -- 23440)]"
for program in host-user/build/host_user host-user/by-pkg-config; do
    got=$("$program") || fail "$program exited with $?"
    [ "$got" = "$want" ] || fail "$program printed $got, zvfmt $want"
done

# A later major version is refused.
sed -i 's/zvlocfmt 6.1 CONFIG/zvlocfmt 7 CONFIG/' host-user/CMakeLists.txt
if cmake -S host-user -B host-user/v7 -G "$generator" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_PREFIX_PATH="$work/full-prefix" >"$work/last.log" 2>&1; then
    fail "find_package(zvlocfmt 7) was satisfied by $version"
fi
echo "package: ok"
