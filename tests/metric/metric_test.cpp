#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <set>
#include <string>

#include "metric/metric_kernels.h"
#include "metric/reference.h"
#include "support/first_difference.h"
#include "support/guarded_buffer.h"
#include "support/kernel_fixture.h"
#include "support/random.h"

namespace test {
namespace {

using namespace std::string_literals;

class Metric : public WithKernelSet {
protected:
    static const qorv::MetricKernels &kernels() { return *qorv::active.metric; }
};
INSTANTIATE_FOR_SETS(Metric, runnable_metric_sets());

// A block that fills a guarded buffer from its first row to its last one, with nothing after the last sample.
struct Block {
    Block(int w, int h, int samples_between_rows, SampleType type, Flush flush)
        : stride(samples_between_rows),
          sample(type),
          buffer(static_cast<size_t>(((h - 1) * std::abs(stride) + w) * type.bytes), flush),
          first(buffer.data() + (stride < 0 ? (h - 1) * -stride * type.bytes : 0)) {}

    void fill(const std::function<int32_t(const Block &, size_t position)> &content) {
        const auto width = static_cast<size_t>(std::abs(stride)), bytes = static_cast<size_t>(sample.bytes);
        const size_t samples = buffer.size() / bytes, last_row = (samples - 1) / width;
        buffer.make_writable();
        for (size_t i = 0; i < samples; i++) {
            const size_t row = stride < 0 ? last_row - i / width : i / width;
            const int32_t value = content(*this, row * 1024 + i % width);
            std::memcpy(buffer.data() + i * bytes, &value, bytes);  // the low bytes, on the machines that are built for
        }
        buffer.make_read_only();
    }

    int32_t stride;
    SampleType sample;
    GuardedBuffer buffer;
    uint8_t *first;
};

// What both blocks hold. The limits of 16-bit lanes lie at residuals of 1023, 4095 and 32767 and at their sums.
struct Content {
    const char *name;
    std::function<int32_t(const Block &, size_t position)> a, b;
};

int32_t anything(const Block &block, size_t) {
    return random_numbers().between(block.sample.min, block.sample.max);
}

auto all(int32_t value) {
    return [value](const Block &block, size_t) { return std::clamp(value, block.sample.min, block.sample.max); };
}

auto at_most(int32_t limit, uint32_t one_in = 0) {  // but for one in so many, which is anything
    return [=](const Block &block, size_t position) {
        if (one_in != 0 && random_numbers().below(one_in) == 0) return anything(block, position);
        return all(random_numbers().between(-limit, limit))(block, position);
    };
}

int32_t same_bits(const Block &, size_t position) {
    return static_cast<int32_t>(position * 0x9E3779B1u >> 8);
}

const Content kContents[] = {
    {"random", anything, anything},
    {"the same bits", same_bits, same_bits},
    {"min against max", all(INT32_MIN), all(INT32_MAX)},
    {"max against min", all(INT32_MAX), all(INT32_MIN)},
    {"all 1024", all(1024), all(0)},
    {"all -1024", all(-1024), all(0)},
    {"all 4096", all(4096), all(0)},
    {"all -4096", all(-4096), all(0)},
    {"12 bits", at_most(4095), at_most(2)},
    {"around 2^15", [](const Block &b, size_t) { return b.sample.max - random_numbers().between(0, 3); }, at_most(2)},
    {"some large", at_most(255, 100), at_most(500)},
    {"one large", at_most(200, 3000), at_most(200, 3000)},
};

// Runs `check(a, b, description)` on every content, every sign of strides and both ends of the guarded memory.
template <class Check>
void for_all_blocks(int w, int h, SampleType type_a, SampleType type_b, const Check &check) {
    const int strides[][2] = {{w, w + 3}, {w + 13, -w}, {-w - 1, w + 2}};
    for (const auto &[stride_a, stride_b] : strides) {
        for (Flush flush : kBothFlushes) {
            Block a(w, h, stride_a, type_a, flush), b(w, h, stride_b, type_b, flush);
            for (const Content &content : kContents) {
                a.fill(content.a), b.fill(content.b);
                check(a, b, content.name);
            }
        }
    }
}

constexpr int kWidths[] = {1, 2, 3, 4, 5, 7, 8, 10, 11, 12, 15, 16, 17, 24, 28, 31, 32, 33, 40, 63, 64, 65, 100, 131};
constexpr int kHeights[] = {1, 2, 3, 4, 5, 7, 8, 13, 64, 67};

template <class Member, class Check>
void for_all_sizes(const Member &member, const Check &check) {
    if (member.w != 0) return check(member.w, member.h);
    for (int w : kWidths) check(w, kHeights[static_cast<size_t>(w) % std::size(kHeights)]);
    for (int h : kHeights) check(16 + h % 2, h);
}

TEST_P(Metric, CostsEqualThePlainLoops) {
    for (const Cost &cost : costs()) {
        const int tile = cost.name.starts_with("satd") ? 4 : 1;
        for_all_sizes(cost, [&](int w, int h) {
            const auto readable = [&](int size) { return (size + tile - 1) / tile * tile; };
            for_all_blocks(readable(w), readable(h), cost.a, cost.b, [&](const Block &a, const Block &b, auto content) {
                ASSERT_EQ(cost.run(w, h, a.first, b.first, a.stride, b.stride),
                          cost.expected(w, h, a.first, b.first, a.stride, b.stride))
                    << cost.name << ' ' << w << 'x' << h << ", " << content << ", strides " << a.stride << ' '
                    << b.stride;
            });
        });
    }
}

TEST_P(Metric, EmptyAreasAreNotTouched) {
    for (const auto &[w, h] : {std::pair{16, 0}, {16, -5}, {0, 16}, {-3, 4}, {0, 0}}) {
        for (const Cost &cost : costs()) {
            if (cost.w == 0) {
                EXPECT_EQ(cost.run(w, h, nullptr, nullptr, 16, 16), 0u) << cost.name;
            }
        }
        for (const Diff &diff : diffs()) {
            if (diff.w == 0) diff.run(w, h, nullptr, nullptr, 16, 16, 16, nullptr);
        }
    }
}

// Rows are counted upwards in memory, and as wide as the stride: columns from the width on lie between them.
std::string difference_in_rows(const std::vector<uint8_t> &expected, const Block &got) {
    const auto samples = [](const uint8_t *p, size_t bytes) {
        return std::span(reinterpret_cast<const int16_t *>(p), bytes / 2);
    };
    return first_difference<int16_t>(samples(expected.data(), expected.size()),
                                     samples(got.buffer.data(), got.buffer.size()),
                                     static_cast<size_t>(std::abs(got.stride)));
}

TEST_P(Metric, DiffsEqualThePlainLoopsAndStayInTheirRows) {
    for (const Diff &diff : diffs()) {
        for_all_sizes(diff, [&](int w, int h) {
            for_all_blocks(w, h, diff.a, diff.b, [&](const Block &a, const Block &b, auto content) {
                const int stride = a.stride < 0 ? -w - 2 : w + (b.stride < 0 ? 0 : 5);
                Block out(w, h, stride, kSampleType<int16_t>, a.stride % 2 == 0 ? Flush::kEnd : Flush::kBegin);
                std::vector<uint8_t> expected = out.buffer.bytes();
                diff.expected(w, h, a.first, b.first, a.stride, b.stride, stride,
                              reinterpret_cast<int16_t *>(expected.data() + (out.first - out.buffer.data())));
                diff.run(w, h, a.first, b.first, a.stride, b.stride, stride, reinterpret_cast<int16_t *>(out.first));
                ASSERT_EQ(difference_in_rows(expected, out), "")
                    << diff.name << ' ' << w << 'x' << h << ", " << content << ", stride " << stride;
                ASSERT_TRUE(out.buffer.slack_intact()) << diff.name << ' ' << w << 'x' << h;
            });
        });
    }
}

// The output over any rows of the inputs, or its rows over one another alone.
TEST_P(Metric, OverlappingDiffsRunInOrder) {
    Random random;
    constexpr int kHalf = 1 << 15;
    for (const Diff &diff : diffs()) {
        for (int round = 0; round < (diff.w == 0 ? 200 : 12); round++) {
            const int w = diff.w != 0 ? diff.w : random.between(1, 70),
                      h = diff.h != 0 ? diff.h : random.between(1, 40);
            const auto stride = [&](int bytes) {
                const int most = std::min(w + 5, (kHalf / 2 - 2 * w) / h / bytes);
                return random.between(-most, most);
            };
            const int strides[] = {stride(diff.a.bytes), stride(diff.b.bytes), stride(2)};
            const auto place = [&] { return kHalf + 2 * random.between(-w, w); };
            const int out_row = random.between(0, 1) * random.between(0, h) * strides[0] * diff.a.bytes / 2 * 2;
            const int at[] = {place(), place(), place() + out_row + round % 2 * 2 * kHalf};
            std::vector<uint8_t> area(4 * kHalf);
            std::generate(area.begin(), area.end(), [&] { return static_cast<uint8_t>(random()); });
            std::vector<uint8_t> expected = area;
            const auto call = [&](const auto &function, std::vector<uint8_t> &memory) {
                function(w, h, memory.data() + at[0], memory.data() + at[1], strides[0], strides[1], strides[2],
                         reinterpret_cast<int16_t *>(memory.data() + at[2]));
            };
            call(diff.expected, expected);
            call(diff.run, area);
            ASSERT_EQ(first_difference<uint8_t>(expected, area, area.size()), "")
                << diff.name << ' ' << w << 'x' << h << ", at " << ::testing::PrintToString(at) << ", strides "
                << ::testing::PrintToString(strides);
        }
    }
}

// Rows 2^30 samples apart: offsets beyond 2 and 4 GiB.
TEST_P(Metric, RowsMayLieFarApart) {
    constexpr int32_t kStride = 1 << 30;
    constexpr size_t kBytes = (size_t{7} * kStride + 4096) * 2;
    void *map = mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (map == MAP_FAILED) GTEST_SKIP() << "no address space";
    auto *base = static_cast<uint8_t *>(map);
    Random random;
    for (size_t y = 0; y < 15; y++) {
        for (size_t x = 0; x < 512; x++) base[y * kStride + x] = static_cast<uint8_t>(random());
    }
    const auto with_size = [](const auto &member, const auto &check) {
        if (member.h <= 8) check(member.w != 0 ? member.w : 24, member.h != 0 ? member.h : 8);
    };
    for (const Cost &cost : costs()) {
        with_size(cost, [&](int w, int h) {
            EXPECT_EQ(cost.run(w, h, base, base + 256, kStride, kStride),
                      cost.expected(w, h, base, base + 256, kStride, kStride))
                << cost.name;
        });
    }
    auto *out = reinterpret_cast<int16_t *>(base + 1024);
    for (const Diff &diff : diffs()) {
        with_size(diff, [&](int w, int h) {
            diff.run(w, h, base, base + 256, kStride, kStride, kStride, out);
            diff.expected(w, h, base, base + 256, kStride, kStride, kStride, out + 256);
            for (ptrdiff_t y = 0; y < h; y++) {
                const int16_t *row = out + y * kStride;
                ASSERT_EQ(std::memcmp(row, row + 256, static_cast<size_t>(2 * w)), 0) << diff.name << " row " << y;
            }
        });
    }
    munmap(map, kBytes);
}

// Each row in a page of its own, at its beginning or its end, and no access to the pages between them.
TEST_P(Metric, NothingBetweenRowsIsRead) {
    constexpr int kRows = 5, kPage = 1 << 14;  // the largest of any page
    constexpr size_t kBytes = size_t{2} * kRows * kPage;
    auto *base =
        static_cast<uint8_t *>(mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(base, MAP_FAILED);
    std::generate(base, base + kBytes, [] { return static_cast<uint8_t>(random_numbers()()); });
    for (int row = 0; row < kRows; row++) mprotect(base + (2 * row + 1) * kPage, kPage, PROT_NONE);
    const auto for_all_places = [&](const auto &member, const auto &check) {
        if (member.w != 0) return;
        for (int w = 1; w <= 70; w++) {
            uint8_t *end = base + kPage - w * member.a.bytes;
            check(w, 2 * kPage / member.a.bytes, base, end);
            check(w, 2 * kPage / member.a.bytes, end, base);
        }
    };
    for (const Cost &cost : costs()) {
        if (cost.name.starts_with("satd")) continue;  // whole tiles are read
        for_all_places(cost, [&](int w, int stride, const uint8_t *a, const uint8_t *b) {
            EXPECT_EQ(cost.run(w, kRows, a, b, stride, stride), cost.expected(w, kRows, a, b, stride, stride))
                << cost.name << ' ' << w;
        });
    }
    for (const Diff &diff : diffs()) {
        for_all_places(diff, [&](int w, int stride, const uint8_t *a, const uint8_t *b) {
            std::vector<int16_t> out(static_cast<size_t>(w * kRows)), expected(out);
            diff.run(w, kRows, a, b, stride, stride, w, out.data());
            diff.expected(w, kRows, a, b, stride, stride, w, expected.data());
            EXPECT_EQ(out, expected) << diff.name << ' ' << w;
        });
    }
    munmap(base, kBytes);
}

TEST_P(Metric, HadamardEqualsTheMatrix) {
    Random random;
    const auto check = [](const std::vector<int16_t> &values) {
        GuardedBuffer buffer(32);
        std::copy(values.begin(), values.end(), buffer.as<int16_t>());
        buffer.make_read_only();
        EXPECT_EQ(kernels().hadamard4x4(buffer.as<int16_t>()), hadamard({values.begin(), values.end()}, 4) >> 1)
            << ::testing::PrintToString(values);
    };
    for (int limit : {1, 255, 4095, 4097, 32767}) {
        for (int i = 0; i < 200; i++) {
            std::vector<int16_t> values(16);
            for (int16_t &v : values) v = static_cast<int16_t>(i % 2 == 0 ? random.between(-limit, limit) : limit);
            if (i % 4 == 3) values[random.below(16)] = static_cast<int16_t>(-limit - 1);
            check(values);
        }
    }
    check(std::vector<int16_t>(16, INT16_MIN));
}

// Each pattern puts all of a residual's energy into one coefficient: the largest that there is for an amplitude, in
// every place of the transform. Amplitudes around those at which 16-bit lanes are left, for each kind of sample.
TEST_P(Metric, EveryCoefficientHoldsItsLargestValue) {
    for (const Cost &cost : costs()) {
        if (!cost.name.starts_with("satd") || cost.w == 0) continue;
        const auto size = static_cast<unsigned>(cost.w);
        for (int amplitude : {255, 256, 1022, 1023, 1024, 4094, 4095, 4096, 16383, 32767}) {
            // B stays in the middle of its range if A cannot go below 0.
            const int level = cost.a.min < 0 ? 0 : std::min((cost.a.max + 1) / 2, cost.b.max);
            if (amplitude > cost.a.max - level) continue;
            for (unsigned pattern = 0; pattern < size * size; pattern++) {
                Block a(cost.w, cost.w, cost.w, cost.a, Flush::kEnd), b(cost.w, cost.w, cost.w, cost.b, Flush::kEnd);
                a.fill([&](const Block &, size_t position) {
                    const auto index = static_cast<unsigned>(position / 1024 * size + position % 1024);
                    return level + (std::popcount(index & pattern) % 2 != 0 ? -amplitude : amplitude);
                });
                b.fill(all(level));
                const auto coefficient = size * size * static_cast<unsigned>(amplitude);
                ASSERT_EQ(cost.run(cost.w, cost.w, a.first, b.first, cost.w, cost.w),
                          size == 4 ? coefficient >> 1 : (coefficient + 2) >> 2)
                    << cost.name << " pattern " << pattern << ", amplitude " << amplitude;
            }
        }
    }
}

TEST_P(Metric, EveryDifferenceOf16BitSamples) {
    int16_t a[16], b[16];
    for (int d = -65535; d <= 65535; d++) {
        const int high = (d + 65535) / 2 - 32768, low = high - d;
        std::fill(std::begin(a), std::end(a), static_cast<int16_t>(high));
        std::fill(std::begin(b), std::end(b), static_cast<int16_t>(low));
        const auto term = static_cast<uint64_t>(magnitude(d));
        ASSERT_EQ(kernels().sad4x4_16(a, b, 4, 4), static_cast<uint32_t>(16 * term)) << d;
        ASSERT_EQ(kernels().ssd_16(8, 2, a, b, 8, 8), static_cast<uint32_t>(16 * term * term)) << d;
    }
}

// One difference, from the least to the largest, in each place of an otherwise equal area, with the largest differences
// that there are around it: counted once, wherever strips overlap and halves are joined, and nothing else is.
TEST_P(Metric, ADifferenceCountsOnceInEveryPlace) {
    constexpr int kWidest = 67, kRows = 5, kStride = kWidest + 9;
    constexpr int kAreaWidths[] = {1,  2,  3,  4,  5,  7,  8,  9,  11, 12, 13, 15,
                                   16, 17, 20, 23, 24, 25, 31, 33, 47, 49, 65, 67};
    for (const Cost &cost : costs()) {
        if (cost.w != 0) continue;
        const int tile = cost.name.starts_with("satd") ? 4 : 1;
        std::vector<uint8_t> memory_a, memory_b;
        const auto put = [&](std::vector<uint8_t> &memory, SampleType type, int at, int32_t value) {
            const int32_t held = std::clamp(value, type.min, type.max);
            std::memcpy(&memory[static_cast<size_t>(at * type.bytes)], &held, static_cast<size_t>(type.bytes));
        };
        for (const int w : kAreaWidths) {
            const int h = 1 + w % kRows, counted_w = (w + tile - 1) / tile * tile,
                      counted_h = (h + tile - 1) / tile * tile;
            memory_a.assign(2 * kStride * 2 * kRows, 0), memory_b = memory_a;
            for (int at = 0; at < kStride * 2 * kRows; at++) {
                const bool inside = at % kStride < counted_w && at / kStride < counted_h;
                put(memory_a, cost.a, at, inside ? 0 : INT32_MAX);
                put(memory_b, cost.b, at, inside ? 0 : INT32_MIN);
            }
            const auto expect_equal = [&](int x, int y, int32_t value) {
                ASSERT_EQ(cost.run(w, h, memory_a.data(), memory_b.data(), kStride, kStride),
                          cost.expected(w, h, memory_a.data(), memory_b.data(), kStride, kStride))
                    << cost.name << ' ' << w << 'x' << h << ", " << value << " at " << x << ", " << y;
            };
            for (int y = 0; y < h; y++) {
                for (int x = 0; x < w; x++) {
                    const int at = y * kStride + x;
                    for (const int32_t value : {1, 181, 23170, INT32_MAX}) {
                        put(memory_a, cost.a, at, value);
                        put(memory_b, cost.b, at, value == INT32_MAX ? INT32_MIN : 0);
                        ASSERT_NO_FATAL_FAILURE(expect_equal(x, y, value));
                    }
                    put(memory_a, cost.a, at, 0), put(memory_b, cost.b, at, 0);
                }
            }
        }
    }
}

// Sums beyond 2^32, and accumulators that must be emptied on the way.
TEST_P(Metric, LargeAreasWrap) {
    constexpr int kSide = 333;
    std::vector<uint8_t> bytes(2 * (kSide + 3) * (kSide + 3), 255);
    std::vector<int16_t> low(bytes.size() / 2, INT16_MIN), high(low.size(), INT16_MAX);
    std::fill(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(bytes.size() / 2), uint8_t{0});
    for (const Cost &cost : costs()) {
        if (cost.w != 0) continue;
        const void *a = cost.a.bytes == 1 ? static_cast<void *>(bytes.data()) : low.data();
        const void *b = cost.a.bytes == 1 ? static_cast<void *>(&bytes[bytes.size() / 2]) : high.data();
        EXPECT_EQ(cost.run(kSide, kSide, a, b, kSide + 3, kSide + 3),
                  cost.expected(kSide, kSide, a, b, kSide + 3, kSide + 3))
            << cost.name;
    }
}

// Tests run the kernels by the table of a set; that a call from outside reaches them is seen here.
TEST_P(Metric, ExportedMembersAreTheirKernels) {
    constexpr size_t kSamples = 64 * 64;
    std::vector<int16_t> a(kSamples), b(kSamples);
    std::generate(a.begin(), a.end(), [] { return random_numbers()() & 0x0F0F; });
    std::generate(b.begin(), b.end(), [] { return random_numbers()() & 0x0F0F; });
    const auto sizes = [](const auto &member) {
        return std::pair{member.w != 0 ? member.w : 20, member.h != 0 ? member.h : 24};
    };
    for (const Cost &cost : costs()) {
        const auto [w, h] = sizes(cost);
        EXPECT_EQ(cost.exported(w, h, a.data(), b.data(), 64, 64), cost.expected(w, h, a.data(), b.data(), 64, 64))
            << cost.name;
    }
    for (const Diff &diff : diffs()) {
        const auto [w, h] = sizes(diff);
        std::vector<int16_t> out(kSamples), expected(kSamples);
        diff.exported(w, h, a.data(), b.data(), 64, 64, 64, out.data());
        diff.expected(w, h, a.data(), b.data(), 64, 64, 64, expected.data());
        EXPECT_EQ(first_difference<int16_t>(expected, out, 64), "") << diff.name;
    }
}

// The members in the order of their table.
const char *const kSlots[] = {
#define QORV_AREA(name, T) #name,
#define QORV_SAD(w, h, suffix, A, B) "sad" #w "x" #h #suffix,
#define QORV_DIFF(w, h, suffix, A, B) "diff" #w "x" #h #suffix,
#define QORV_SATD(w, h, suffix, A, B) "satd" #w "x" #h #suffix,
    QORV_AREA_COSTS(QORV_AREA) QORV_AREA_DIFFS(QORV_AREA) "hadamard4x4",
    QORV_SAD_BLOCKS(QORV_SAD) QORV_DIFF_BLOCKS(QORV_DIFF) QORV_SATD_BLOCKS(QORV_SATD)};

// No member is missing from a table, or is another set's.
TEST_P(Metric, EverySlotIsItsSetsOwn) {
    using Slots = std::array<void *, std::size(kSlots)>;
    const auto slots = std::bit_cast<Slots>(*GetParam().metric);
    EXPECT_EQ(slots.size(), costs().size() + diffs().size() + 1);
    const std::set<std::string> alike = {"neon", "dotprod"};
    for (const qorv::KernelSet &set : runnable_metric_sets()) {
        const auto others = std::bit_cast<Slots>(*set.metric);
        const bool same_set = set.metric == GetParam().metric;
        for (size_t i = 0; i < slots.size(); i++) {
            const bool shared = alike.contains(set.name) && alike.contains(GetParam().name) && kSlots[i] != "ssd"s;
            EXPECT_NE(slots[i], nullptr) << kSlots[i];
            EXPECT_EQ(slots[i] == others[i], same_set || shared) << set.name << ' ' << kSlots[i];
        }
    }
}

// Values worked out by hand, as a hold on the plain loops themselves.
TEST_P(Metric, KnownValues) {
    const std::vector<uint8_t> black(64 * 64, 0), white(64 * 64, 255), grey(64, 20);
    EXPECT_EQ(kernels().sad64x64(white.data(), black.data(), 64, 64), 1044480u);
    EXPECT_EQ(kernels().ssd(64, 64, black.data(), white.data(), 64, 64), 266342400u);
    const std::vector<int16_t> negative(64, -10);
    EXPECT_EQ(kernels().sad8x8_bi(negative.data(), grey.data(), 8, 8), 1920u);

    const int16_t low[4] = {INT16_MIN, 0, 0, 0}, high[4] = {INT16_MAX, 0, 0, 0}, zero[4] = {};
    EXPECT_EQ(kernels().sad2x2_16(low, high, 2, 2), 65537u);
    EXPECT_EQ(kernels().sad2x2_16(high, low, 2, 2), 65533u);
    EXPECT_EQ(kernels().sad2x2_16(zero, high, 2, 2), 32767u);

    int16_t residual[64] = {1};
    EXPECT_EQ(kernels().hadamard4x4(residual), 8u);
    EXPECT_EQ(kernels().satd8x8_bi(residual, black.data(), 8, 64), 16u);
    residual[1] = -1;
    EXPECT_EQ(kernels().hadamard4x4(residual), 8u);
    std::fill(std::begin(residual), std::end(residual), int16_t{1});
    EXPECT_EQ(kernels().hadamard4x4(residual), 8u);
    EXPECT_EQ(kernels().satd8x8_bi(residual, black.data(), 8, 64), 16u);
    EXPECT_EQ(kernels().satd(6, 4, white.data(), black.data(), 64, 64), 2u * 8 * 255);

    int16_t out[4];
    const int16_t minimum[4] = {INT16_MIN}, one[4] = {1};
    kernels().diff2x2_16(minimum, one, 2, 2, 2, out);
    EXPECT_EQ(out[0], INT16_MAX);
}

}  // namespace
}  // namespace test
