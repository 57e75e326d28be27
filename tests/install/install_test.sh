#!/usr/bin/env bash
# Installs the library and its Debian packages into scratch folders, builds and runs a user's project from there with
# find_package and with pkg-config, in C and in C++, shared and static, and removes the packages again.
# Usage: install_test.sh [BUILD-FOLDER], by default build-package; configured with the preset "package" if need be.
set -eu
cd "$(dirname "$0")/../.."
build=${1:-build-package}
[ -f "$build/CMakeCache.txt" ] || cmake --preset package -B "$build" -G Ninja
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

build_the_readmes_example() {  # with pkg-config's paths
  awk '/^```c$/ { inside = 1; next } /^```/ { inside = 0 } inside' README.md >"$work/grey.c"
  # shellcheck disable=SC2046
  cc -Wall -Wextra -Werror "$work/grey.c" $(pkg-config --cflags --libs qorv_skia) -o "$work/grey"
  [ "$(LD_LIBRARY_PATH=$(pkg-config --variable=libdir qorv_skia) "$work/grey")" = "R G B 128 128 128" ] ||
    fail "the example of README.md"
}

build_with_pkg_config() {  # build_with_pkg_config PREFIX COMPILER...
  local libdir
  export PKG_CONFIG_PATH; PKG_CONFIG_PATH=$(dirname "$(find "$1" -name qorv_skia.pc)")
  shift
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
build_with_pkg_config "$work/prefix" gcc -std=c11 -Wpedantic
build_with_pkg_config "$work/prefix" g++ -std=c++17 -x c++

(cd "$build" && cpack -B "$work/packages")
# The maintainer scripts run outside the scratch root and refresh the linker's cache, here a stand-in.
mkdir -p "$work/bin" "$work/root/var/lib/dpkg/updates" "$work/root/var/lib/dpkg/info" "$work/root/var/lib/dpkg/triggers"
touch "$work/root/var/lib/dpkg/status"
printf '#!/bin/sh\necho refreshed >>"%s"\n' "$work/cache" >"$work/bin/ldconfig"
chmod +x "$work/bin/ldconfig"
in_scratch_root() {
  PATH=$work/bin:$PATH dpkg --root="$work/root" --force-not-root --force-depends --force-script-chrootless \
    --log=/dev/null "$@"
}
in_scratch_root --install "$work"/packages/libqorv-skia1_*.deb
in_scratch_root --install "$work"/packages/libqorv-skia-dev_*.deb
build_with_pkg_config "$work/root" gcc -std=c11
build_the_readmes_example
in_scratch_root --purge libqorv-skia-dev
[ -z "$(find "$work/root/usr" -name '*.h' -o -name '*.so')" ] || fail "the development package left files"
in_scratch_root --purge libqorv-skia1
left=$(find "$work/root" -path "$work/root/var" -prune -o ! -type d -print)
[ -z "$left" ] || fail "the packages left $left"
[ "$(wc -l <"$work/cache")" -eq 2 ] || fail "the linker's cache was not refreshed at installation and at removal"
echo "Installed, used and removed"
