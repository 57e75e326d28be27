// What the benchmarks of block metrics and their peers have in common: 64 calls an iteration, block A staying where it
// is, block B moving about as in a motion search.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "compare.h"

namespace bench::metric {

constexpr int kStride = 1984;  // samples, as of a padded picture 1920 wide
constexpr int kRows = 96;
constexpr int kCalls = 64;

// Content of 8 bits, or of 10 in words.
template <class T>
struct Planes {
    Planes() : a_(kBytes + 64), b_(kBytes + 64) {
        fill(a_, 1);
        fill(b_, 2);
    }
    const T *a() const { return aligned(a_); }
    const T *b() const { return aligned(b_); }

private:
    static constexpr size_t kBytes = kStride * kRows * sizeof(T);
    // The content begins at the boundary, so that it is the same wherever memory is.
    static void fill(std::vector<uint8_t> &plane, uint32_t seed) {
        std::vector<uint8_t> content = noise(kBytes, seed);
        for (size_t i = 1; sizeof(T) == 2 && i < kBytes; i += 2) content[i] &= 3;
        memcpy(const_cast<T *>(aligned(plane)), content.data(), kBytes);
    }
    static const T *aligned(const std::vector<uint8_t> &plane) {
        const auto address = reinterpret_cast<uintptr_t>(plane.data());
        return reinterpret_cast<const T *>(plane.data() + (64 - address % 64) % 64);
    }
    std::vector<uint8_t> a_, b_;
};

template <class T>
const Planes<T> &planes() {
    static const Planes<T> instance;
    return instance;
}

// Where block B is in each call: 16 columns by 4 rows of positions, or one column where a peer wants alignment.
template <class T>
std::vector<const T *> positions(bool same_column) {
    std::vector<const T *> all;
    for (int i = 0; i < kCalls; i++) {
        all.push_back(planes<T>().b() + (same_column ? i % 32 * kStride : i % 16 + i / 16 * kStride));
    }
    return all;
}

// Everyone is called as an encoder does it, through a pointer in a table.
template <class F>
F *in_table(F *function) {
    asm("" : "+r"(function));
    return function;
}

// Whether a result is that of whoever came first: a peer with another one does other work and is left out. Those of
// hadamard4x4 and of sad16x16_bi are stand-ins.
inline bool same_result(const std::string &name, const char *who, uint32_t result) {
    static std::map<std::string, uint32_t> results;
    if (name == "hadamard4x4" || name == "sad16x16_bi") return true;
    if (results.emplace(name, result).first->second == result) return true;
    fprintf(stderr, "metric/%s: %s gives another result\n", name.c_str(), who);
    return false;
}

// `call(a, b)` returns a cost.
template <class A, class B, class Call>
void add_cost(const std::string &name, const char *who, Call call) {
    const bool same_column = name.rfind("ssd", 0) == 0;
    const auto work = [call, a = planes<A>().a(), all = positions<B>(same_column)] {
        const auto local = call;
        uint32_t sum = 0;
        for (const B *b : all) sum += static_cast<uint32_t>(local(a, b));
        return sum;
    };
    if (!same_result(name, who, work()) && std::string(who) != "ours") return;
    add("metric/" + name, who, [work] {
        uint32_t sum = work();
        benchmark::DoNotOptimize(sum);
    });
}

template <class A, class B, class Call>
void add_diff(const std::string &name, const char *who, Call call) {
    add("metric/" + name, who, [call, a = planes<A>().a(), all = positions<B>(false)] {
        alignas(64) static int16_t out[64 * 64];
        const auto local = call;
        for (const B *b : all) local(a, b, out);
    });
}

}  // namespace bench::metric
