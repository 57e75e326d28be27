// One pixel at a time: what the formulas and layouts come to where a vector has a single lane. In plain numbers, wide
// enough for every intermediate result.
#pragma once

#include <stdint.h>

namespace qorv::QORV_ISA {

using U8 = int;
using U16 = int;
using I16 = int;
using Wide = int;
using Wide32 = int;

constexpr int clamped(int x, int low, int high) {
    return x < low ? low : x > high ? high : x;
}

template <int A, int B>
constexpr int weighted(int a, int b) {
    return A * a + B * b;
}
template <int A, int B, int C>
constexpr int weighted(int a, int b, int c) {
    return A * a + B * b + C * c;
}
constexpr int high_bytes(int w) {
    return w >> 8;
}
template <int C>
constexpr int high_bytes(int v) {
    return C * v >> 8;
}
constexpr int high_bytes_rounded(int w) {
    return (w + 128) >> 8;
}
template <int C>
constexpr int high_bytes_rounded(int v) {
    return (C * v + 128) >> 8;
}
constexpr int narrow_rounded(int w) {
    return clamped((w + 128) >> 8, -128, 127);
}
constexpr int add_difference(int y, int a, int b) {
    return clamped(y + a - b, 0, 255);
}
constexpr int signed_words(int v) {
    return v - 32768;
}
template <int Bits>
constexpr int shift(int a) {
    return a >> Bits;
}
constexpr int narrow(int a) {
    return clamped(a, 0, 65535);
}
constexpr int min(int a, int b) {
    return a < b ? a : b;
}
constexpr int low_bytes(int a, int) {
    return a & 0xFF;
}
template <class>
constexpr int splat(int value) {
    return value;
}

}  // namespace qorv::QORV_ISA
