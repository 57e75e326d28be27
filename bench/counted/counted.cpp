// Runs the benchmarks whose name matches the regular expression of the first argument and prints "name <name>" for
// every pair of marks, in their order, and "context <key> <value>".
#include <cstdio>
#include <deque>
#include <regex>

#include "benchmark/benchmark.h"

namespace benchmark {

namespace {

std::deque<Benchmark> &registered() {
    static std::deque<Benchmark> all;
    return all;
}

}  // namespace

Benchmark *RegisterBenchmark(const char *name, std::function<void(State &)> run) {
    return &registered().emplace_back(Benchmark{name, std::move(run)});
}

void AddCustomContext(const std::string &key, const std::string &value) {
    printf("context %s %s\n", key.c_str(), value.c_str());
}

}  // namespace benchmark

int main(int argc, char **argv) {
    const std::regex wanted(argc > 1 ? argv[1] : ".");
    for (const auto &one : benchmark::registered()) {
        if (!std::regex_search(one.name, wanted)) continue;
        benchmark::State state;
        one.run(state);
        printf("name %s\n", one.name.c_str());
    }
}
