// Stands in for Google Benchmark where instructions are counted instead of time being taken: every benchmark runs its
// body twice, once so that what it sets up is there, then between the marks of bench/marks.h.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "bench/marks.h"

namespace benchmark {

template <class T>
[[gnu::always_inline]] inline void DoNotOptimize(const T &value) {
    asm volatile("" : : "g"(&value) : "memory");
}
template <class T>
[[gnu::always_inline]] inline void DoNotOptimize(T &value) {
    asm volatile("" : "+m"(value) : : "memory");
}
[[gnu::always_inline]] inline void ClobberMemory() {
    asm volatile("" : : : "memory");
}

class State {
public:
    // `for (auto _ : state)`: the value is never used.
    struct [[maybe_unused]] Nothing {};
    struct Iterator {
        int round;
        bool operator!=(const Iterator &end) const {
            if (round == 1) marks::begin_trace();
            return round != end.round;
        }
        Iterator &operator++() {
            if (round == 1) marks::end();
            round++;
            return *this;
        }
        Nothing operator*() const { return {}; }
    };
    Iterator begin() { return {0}; }
    Iterator end() { return {2}; }
};

struct Benchmark {
    std::string name;
    std::function<void(State &)> run;
    Benchmark *UseRealTime() { return this; }
};

Benchmark *RegisterBenchmark(const char *name, std::function<void(State &)> run);
void AddCustomContext(const std::string &key, const std::string &value);

}  // namespace benchmark
