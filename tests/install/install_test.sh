#!/usr/bin/env bash
# Installs the library into a scratch folder, moves it, and builds and runs a user's project from there with CMake, Meson
# and pkg-config, in C and in C++, shared and static; builds the project with the sources as a subproject too.
# Usage: install_test.sh [BUILD-FOLDER], by default build-install; configured if need be.
set -eu
cd "$(dirname "$0")/../.."
build=${1:-build-install}
[ -f "$build/CMakeCache.txt" ] || cmake -S . -B "$build" -G Ninja
cmake --build "$build"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $1"; exit 1; }

needs() { readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'; }

build_with_find_package() {  # build_with_find_package PREFIX LANGUAGE
  local out=$work/found-$2
  cmake -S tests/install -B "$out" -G Ninja -DCONSUMER_LANGUAGE="$2" -DCMAKE_PREFIX_PATH="$1"
  cmake --build "$out"
  "$out/consumer_qorv_skia"
  "$out/consumer_qorv_skia_static"
  needs "$out/consumer_qorv_skia" | grep -qx libqorv_skia.so.1 || fail "the shared library is not what was linked"
  [ "$2" = CXX ] || [ "$(needs "$out/consumer_qorv_skia_static")" = libc.so.6 ] || fail "a C program needs more than libc"
}

build_as_subproject() {
  local out=$work/subproject flags="-O1 -DFLAGS_OF_THE_USER"
  cmake -S tests/install -B "$out" -G Ninja -DCONSUMER_LANGUAGE=CXX -DCONSUMER_SUBPROJECT="$PWD" -DQORV_SCALAR=ON \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="$flags" -DCMAKE_UNITY_BUILD=ON
  cmake --build "$out"
  "$out/consumer_qorv_skia"
  "$out/consumer_qorv_skia_static"
  [ -s "$out/compile_commands.json" ] || fail "no compile commands"
  ! grep '"command"' "$out/compile_commands.json" | grep -v -- " $flags " || fail "other flags than the user's"
}

build_the_readmes_example() {  # with pkg-config's paths, as C and as C++
  local compiler
  awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' README.md >"$work/grey.c"
  for compiler in "cc" "c++ -x c++"; do
    # shellcheck disable=SC2046,SC2086
    $compiler -Wall -Wextra -Werror "$work/grey.c" $(pkg-config --cflags --libs qorv_skia) -o "$work/grey"
    [ "$(LD_LIBRARY_PATH=$(pkg-config --variable=libdir qorv_skia) "$work/grey")" = "R G B 128 128 128" ] ||
      fail "the example of README.md"
  done
}

build_with_pkg_config() {  # build_with_pkg_config COMPILER...
  local libdir
  pkg-config --atleast-version=1.0 qorv_skia && ! pkg-config --atleast-version=2 qorv_skia || fail "pkg-config's version"
  libdir=$(pkg-config --variable=libdir qorv_skia)
  set -- "$@" -Wall -Wextra -Werror -DCONSUMER_VERSION="\"$(pkg-config --modversion qorv_skia)\"" tests/install/consumer.c
  # shellcheck disable=SC2046
  "$@" -o "$work/shared" $(pkg-config --cflags --libs qorv_skia)
  LD_LIBRARY_PATH=$libdir "$work/shared"
  # shellcheck disable=SC2046
  "$@" -o "$work/static" $(pkg-config --cflags qorv_skia) -x none "$libdir/libqorv_skia.a"
  "$work/static"
}

cmake --install "$build" --prefix "$work/before"
mv "$work/before" "$work/prefix"  # an installed tree may be moved
for language in C CXX; do build_with_find_package "$work/prefix" "$language"; done
build_as_subproject

export PKG_CONFIG_PATH; PKG_CONFIG_PATH=$(dirname "$(find "$work/prefix" -name qorv_skia.pc)")
build_with_pkg_config gcc -std=c11 -Wpedantic
build_with_pkg_config g++ -std=c++17 -x c++
build_the_readmes_example
meson setup "$work/meson" tests/install
meson test -C "$work/meson" --print-errorlogs

# For the system's own folders the paths are those that the compiler searches anyway, which pkg-config then leaves out.
DESTDIR=$work/root cmake --install "$build" --prefix /usr
PKG_CONFIG_PATH=$(dirname "$(find "$work/root" -name qorv_skia.pc)")
[ "$(pkg-config --variable=prefix qorv_skia) $(pkg-config --cflags qorv_skia)" = "/usr " ] || fail "pkg-config's paths below /usr"
echo "Installed, moved and used"
