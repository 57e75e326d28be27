// Walks every member over widths, heights, arrangements, places in memory and overlaps, and prints where a call takes
// more than twice the time of its neighbour:
//   cliff <ratio> <ns> <ns of the neighbour> <direction> | <member> | <arrangement> | <size> | <neighbour>
// once for every member, arrangement and direction: the worst. Then, of rows apart and 8 rows, the ns of every width:
//   times <member> | <arrangement> | <ns> ...
// A regular expression as the argument chooses members.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <regex>
#include <string>

#include "family_calls.h"

namespace {

using calls::Arrangement;
using calls::Member;
using calls::Shape;

constexpr int kWidths = 130, kHeights = 8, kOffsets[] = {0, 1};
constexpr double kCliff = 2;
// Below, a call is little more than the jump to it.
constexpr double kShortest = 30;  // ns

double now() {
    using namespace std::chrono;
    return duration<double, std::nano>(steady_clock::now().time_since_epoch()).count();
}

// The least time of a call, of so many batches of at least 300 ns.
double least_time(const calls::Call &call, int batches) {
    call();
    int calls = 1;
    double least = 1e12;
    for (int i = 0; i < batches;) {
        const double start = now();
        for (int k = 0; k < calls; k++) call();
        const double batch = now() - start;
        if (batch < 300 && calls < 64) {
            calls *= 2;
            continue;
        }
        least = std::min(least, batch / calls);
        i++;
    }
    return least;
}

struct Key {
    Arrangement arrangement;
    int offset, w, h;
    auto operator<=>(const Key &) const = default;
    Shape shape() const { return {w, h, arrangement, offset}; }
};

std::string text(const Key &key) {
    return std::to_string(key.w) + "x" + std::to_string(key.h) + (key.offset != 0 ? " off by one" : "") + ", " +
           calls::name_of(key.arrangement);
}

class Walk {
public:
    explicit Walk(const Member &member) : member_(member) {}

    void run() {
        for (const Arrangement arrangement : member_.arrangements) {
            for (const int offset : kOffsets) {
                for (int h = offset == 0 ? 1 : kHeights; h <= kHeights; h++) {
                    for (int w = 1; w <= kWidths; w++) {
                        const Key key{arrangement, offset, w, h};
                        times_[key] = least_time(member_.prepare(key.shape()), 3);
                    }
                }
            }
        }
        for (const Arrangement arrangement : member_.arrangements) {
            search(arrangement, "wider", [](Key key) { return key.w++, key; });
            search(arrangement, "narrower", [](Key key) { return key.w--, key; });
            search(arrangement, "higher", [](Key key) { return key.h++, key; });
            search(arrangement, "on a boundary", [](Key key) { return key.offset = 0, key; });
            search(arrangement, "apart", [](Key key) { return key.arrangement = Arrangement::kApart, key; });
            print_times(arrangement);
        }
    }

private:
    // Cliffs by ratio, the highest first; what a second look does not bear out is a neighbour's load.
    template <class Neighbour>
    void search(Arrangement arrangement, const char *direction, Neighbour neighbour) {
        std::multimap<double, Key, std::greater<>> found;
        for (const auto &[key, time] : times_) {
            const auto other = times_.find(neighbour(key));
            if (key.arrangement != arrangement || other == times_.end() || time < kShortest) continue;
            // From 1 column to 2 the work doubles by itself; towards fewer columns up to 8 it may grow as the columns
            // do.
            const double natural = key.w > other->first.w ? static_cast<double>(key.w) / other->first.w : 1;
            if (time > kCliff * natural * other->second) found.emplace(time / other->second, key);
        }
        int looks = 0;
        for (const auto &[ratio, key] : found) {
            const Key other = neighbour(key);
            const double time = least_time(member_.prepare(key.shape()), 30);
            const double beside = least_time(member_.prepare(other.shape()), 30);
            if (time > kCliff * beside) {
                printf("cliff %.2f %.0f %.0f %s | %s | %s | %s | %s | %zu\n", time / beside, time, beside, direction,
                       member_.name.c_str(), calls::name_of(arrangement), text(key).c_str(), text(other).c_str(),
                       found.size());
                return;
            }
            if (++looks == 10) return;
        }
    }

    void print_times(Arrangement arrangement) const {
        printf("times %s | %s |", member_.name.c_str(), calls::name_of(arrangement));
        for (int w = 1; w <= kWidths; w++) printf(" %.1f", times_.at({arrangement, 0, w, kHeights}));
        printf("\n");
    }

    const Member &member_;
    std::map<Key, double> times_;
};

}  // namespace

int main(int argc, char **argv) {
    const std::regex wanted(argc > 1 ? argv[1] : ".");
    for (const Member &member : calls::members()) {
        if (!std::regex_search(member.name, wanted)) continue;
        Walk(member).run();
        fflush(stdout);
    }
}
