#!/usr/bin/env bash
# The shared library's names against the list of exports and the header, what it needs at run time, and the header on its
# own. Usage: exports_test.sh <library> <source folder> <nm> <readelf> <C compiler> <C++ compiler> <check needs: ON/OFF>
set -u
library=$1 source=$2 nm=$3 readelf=$4 cc=$5 cxx=$6 check_needs=$7
header=$source/include/qorv_skia.h
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
    echo "FAILED: $1"
    failures=$((failures + 1))
}

expect_equal() { # <what> <file> <file>
    diff "$2" "$3" > "$work/difference" || { fail "$1 (< is the first)"; cat "$work/difference"; }
}

grep '^[a-z]' "$source/qorv_skia.exports" | sort > "$work/listed"
# Every name has the version of the interface, which itself stands among the names.
"$nm" -D --defined-only "$library" | awk '$3 !~ /^QORV_1(@@QORV_1)?$/ { print $3 }' | sort > "$work/exported"
# The name of a declaration is the first word that a parenthesis or a bracket follows.
grep -v '^#' "$header" | tr '\n' ' ' | sed -e 's:/\*[^*]*\*\+\([^/*][^*]*\*\+\)*/::g' |
    grep -o 'QORV_API [^;]*;' | sed -E 's/^[^([]*[ *]([a-z0-9_]+)[ ]*[[(].*$/\1/' | sort > "$work/declared"

expect_equal "names listed and exported" <(sed 's/$/@@QORV_1/' "$work/listed" | sort) "$work/exported"
expect_equal "names listed and declared" "$work/listed" "$work/declared"
[ -z "$(uniq -d "$work/listed")" ] || fail "a name is listed twice: $(uniq -d "$work/listed")"

if [ "$check_needs" = ON ]; then
    # The stack protector's guard lies in the dynamic loader on some processors: it is a part of the C library.
    needed=$("$readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -v '^ld-' | tr '\n' ' ')
    case $needed in "libc.so.6 " | "libc.so ") ;; *) fail "the library needs $needed" ;; esac
fi

warnings="-Wall -Wextra -Wpedantic -Werror -fsyntax-only"
"$cc" -std=c11 $warnings -x c "$header" || fail "the header as C11"
"$cxx" -std=c++20 $warnings -x c++ "$header" || fail "the header as C++20"
for standard in 17 20; do
    "$cxx" -std=c++$standard $warnings -Wold-style-cast -fno-exceptions -fno-rtti -I"$source/include" -x c++ \
        "$source/include/qorv_skia.hpp" || fail "the C++ interface as C++$standard"
done
exit $((failures != 0))
