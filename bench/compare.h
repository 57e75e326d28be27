// Benchmarks that stand beside a peer. A benchmark is named "<case>/<who>", who being "ours" or the peer's name;
// scripts/bench takes those that share a case together and prints ours / best peer.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/noise.h"

namespace bench {

// Registers a benchmark that calls `work` once an iteration.
template <class Work>
void add(const std::string &name, const char *who, Work work) {
    benchmark::RegisterBenchmark((name + "/" + who).c_str(), [work = std::move(work)](benchmark::State &state) mutable {
        for (auto _ : state) {
            work();
            benchmark::ClobberMemory();
        }
    });
}

// Bytes of a fixed pseudo-random sequence: the same picture for ours and for the peers.
inline std::vector<uint8_t> noise(size_t bytes, uint32_t seed = 1) {
    std::vector<uint8_t> data(bytes);
    std::generate(data.begin(), data.end(), test::Noise{seed});
    return data;
}

// Runs a registration function when the program starts: `static const bench::Registration r{add_my_cases};`
struct Registration {
    explicit Registration(void (*add_cases)()) { add_cases(); }
};

}  // namespace bench
