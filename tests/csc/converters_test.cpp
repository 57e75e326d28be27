#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>
#include <string>
#include <vector>

#include "csc/csc_kernels.h"
#include "support/csc_reference.h"
#include "support/doing.h"
#include "support/first_difference.h"
#include "support/guarded_buffer.h"
#include "support/kernel_fixture.h"
#include "support/random.h"

namespace test {

namespace {

// Pointers and strides of one call, as offsets into one block of memory.
struct Placement {
    std::vector<int64_t> src, dst;
    std::vector<int32_t> src_stride, dst_stride;
};

struct Call {
    const void *src[4] = {};
    void *dst[4] = {};
    int32_t src_stride[4] = {}, dst_stride[4] = {};
};

Call at(uint8_t *base, const Placement &placement) {
    Call call;
    for (size_t k = 0; k < placement.src.size(); k++) {
        call.src[k] = base + placement.src[k];
        call.src_stride[k] = placement.src_stride[k];
    }
    for (size_t k = 0; k < placement.dst.size(); k++) {
        call.dst[k] = base + placement.dst[k];
        call.dst_stride[k] = placement.dst_stride[k];
    }
    return call;
}

void run(const CscCase &c, const Call &call, int32_t w, int32_t h) {
    // What a converter must not read is poison: the unused argument, the destination's size and colour space.
    c.fn(call.src, w, h, call.src_stride, ~uint64_t{0}, call.dst, -1, -1, call.dst_stride, -1);
}

// Runs ours(call) and reference(call) on the same random memory: every byte must agree, those outside the picture
// included.
template <class Ours, class Reference>
void expect_same_memory(const Placement &placement, size_t bytes, Random &random, Ours ours, Reference reference,
                        const std::string &what) {
    std::vector<uint8_t> memory(bytes), expected;
    for (uint8_t &byte : memory) byte = static_cast<uint8_t>(random());
    expected = memory;
    ours(at(memory.data(), placement));
    reference(at(expected.data(), placement));
    if (memory == expected) return;
    const size_t where =
        static_cast<size_t>(std::mismatch(memory.begin(), memory.end(), expected.begin()).first - memory.begin());
    FAIL() << what << ": byte " << where << " is " << int{memory[where]} << ", not " << int{expected[where]}
           << "; last destination at " << placement.dst.back();
}

std::string text(int32_t w, int32_t h) {
    return std::to_string(w) + "x" + std::to_string(h);
}

void expect_same(const CscCase &c, const Placement &placement, size_t bytes, int32_t w, int32_t h, Random &random) {
    expect_same_memory(
        placement, bytes, random, [&](const Call &call) { run(c, call, w, h); },
        [&](const Call &call) { csc_reference(c, call.src, w, h, call.src_stride, call.dst, call.dst_stride); },
        std::string(c.name) + " " + text(w, h));
}

enum class Channels { kCanonical, kReversed, kUnrelated };
enum class Strides { kTight, kPadded, kNegative };

// Lays pointers out one after the other from `offset` on, and moves it behind them.
void place(const std::vector<CscPointer> &pointers, Channels channels, Strides strides, int32_t w, int32_t h, bool deep,
           int64_t &offset, std::vector<int64_t> &at, std::vector<int32_t> &stride) {
    const auto count = static_cast<int32_t>(pointers.size());
    const bool interleaved = pointers[0].step > 2 && channels != Channels::kUnrelated;
    for (int32_t k = 0; k < count; k++) {
        const int32_t pad = strides == Strides::kTight ? 0 : interleaved ? 5 : 3 + 2 * k;
        const int32_t step = std::max(pointers[static_cast<size_t>(k)].step, 1);
        const int32_t row = deep ? (w * step + pad) / 2 * 2 : w * step + pad;
        const int32_t unit = deep ? 2 : 1;
        const int64_t first = strides == Strides::kNegative ? int64_t{h - 1} * row : 0;
        // In reverse at odd widths alpha comes first, at even ones it stays the last.
        const int32_t last = channels == Channels::kCanonical ? 0 : count == 4 && w % 2 == 0 ? 2 : count - 1;
        const int32_t place_in_pixel = k <= last ? last - k : k;
        // A word pointer advances by stride >> 1 words, so its odd strides need room for one byte more or less a row.
        at.push_back(offset + (interleaved ? place_in_pixel : 0) + first + (strides == Strides::kNegative ? h : 0));
        stride.push_back((strides == Strides::kNegative ? -row : row) / unit);
        if (!interleaved || k == count - 1) offset += int64_t{row} * h + 2 * h + 16;
    }
}

void expect_same_scaled(const CscScalingCase &c, const Placement &placement, size_t bytes, int32_t src_w, int32_t src_h,
                        int32_t dst_w, int32_t dst_h, Random &random) {
    expect_same_memory(
        placement, bytes, random,
        [&](const Call &call) {
            c.fn(call.src, src_w, src_h, call.src_stride, ~uint64_t{0}, call.dst, dst_w, dst_h, call.dst_stride, -1);
        },
        [&](const Call &call) {
            csc_scaling_reference(*c.unscaled, call.src, src_w, src_h, call.src_stride, call.dst, dst_w, dst_h,
                                  call.dst_stride);
        },
        std::string(c.name) + " " + text(src_w, src_h) + " to " + text(dst_w, dst_h));
}

class Converters : public WithKernelSet {};
INSTANTIATE_FOR_KERNEL_SETS(Converters);

TEST(ConverterTable, EveryConverterOfTheListIsChecked) {
    std::map<std::string, qorv_csc_fn> checked;
    for (const CscCase &c : csc_cases()) checked[c.name] = c.fn;
    size_t listed = 0;
#define EXPECT_CHECKED(name, source, colour, dest)       \
    EXPECT_EQ(checked[#name], qorv_csc_##name) << #name; \
    listed++;
    QORV_CSC_CONVERTERS(EXPECT_CHECKED)
#undef EXPECT_CHECKED
    EXPECT_EQ(checked.size(), listed);

    checked.clear();
    for (const CscScalingCase &c : csc_scaling_cases()) checked[c.name] = c.fn;
    listed = 0;
#define EXPECT_CHECKED(name, source, colour, dest)           \
    EXPECT_EQ(checked[#name], qorv_csc_rsz_##name) << #name; \
    listed++;
    QORV_CSC_SCALING_CONVERTERS(EXPECT_CHECKED)
#undef EXPECT_CHECKED
    EXPECT_EQ(checked.size(), listed);
}

TEST_P(Converters, EveryWidthArrangementAndStride) {
    Random random(1);
    std::vector<int32_t> widths(81);
    std::iota(widths.begin(), widths.end(), 0);
    widths.insert(widths.end(), {255, 256, 257, 300, 511, 1021});
    for (const CscCase &c : csc_cases()) {
        for (const int32_t w : widths) {
            for (const Channels channels : {Channels::kCanonical, Channels::kReversed, Channels::kUnrelated}) {
                for (const Strides strides : {Strides::kTight, Strides::kPadded, Strides::kNegative}) {
                    Placement placement;
                    int64_t bytes = 8;
                    // Enough rows for narrow ones to fill more than one strip, now and then.
                    const int32_t h = w > 80 ? 2 : w % 11 == 6 ? 560 / w : 3;
                    place(c.src, channels, strides, w, h, c.deep, bytes, placement.src, placement.src_stride);
                    place(c.dst, channels, strides, w, h, c.deep, bytes, placement.dst, placement.dst_stride);
                    ASSERT_NO_FATAL_FAILURE(expect_same(c, placement, static_cast<size_t>(bytes), w, h, random));
                }
            }
        }
    }
}

// How destinations lie over the sources and over each other.
enum class Over { kInPlace, kOneStride, kAnywhere, kShifted, kOneBuffer };

Placement overlapping(const CscCase &c, Over over, int64_t middle, Random &random) {
    Placement placement;
    const int32_t unit = c.deep ? 2 : 1, reach = over == Over::kShifted ? 900 : 400;
    const auto place_anywhere = [&](size_t count, std::vector<int64_t> &at, std::vector<int32_t> &stride) {
        for (size_t k = 0; k < count; k++) {
            at.push_back(middle + random.between(-reach, reach));
            stride.push_back(random.between(-400, 400) / unit);
        }
    };
    place_anywhere(c.src.size(), placement.src, placement.src_stride);
    place_anywhere(c.dst.size(), placement.dst, placement.dst_stride);
    const int64_t shift = random.between(-40, random() % 2 == 0 ? 40 : 700);
    const int32_t stride = random.between(-150, 150) / unit;
    for (size_t k = 0; over != Over::kAnywhere && k < c.dst.size(); k++) {
        const size_t from = std::min(k, c.src.size() - 1);
        if (over == Over::kOneStride) {
            placement.src_stride.assign(c.src.size(), stride);
            placement.dst_stride.assign(c.dst.size(), stride);
        } else if (over == Over::kInPlace) {
            placement.src[from] = middle - 1400 + 800 * static_cast<int64_t>(from);
            placement.dst[k] = placement.src[from];
            placement.src_stride[from] = placement.dst_stride[k] = 100;
        } else if (over == Over::kShifted) {  // each plane over one of the source's, a little ahead or behind
            placement.dst[k] = placement.src[from] + shift;
        } else {  // the pointers one sample apart, as if pixels were interleaved
            placement.dst[k] = middle - 2500 + static_cast<int64_t>(k) * c.dst[0].bytes;
            placement.dst_stride[k] = placement.dst_stride[0];
        }
    }
    return placement;
}

TEST_P(Converters, OverlapGivesThePerPixelOutcome) {
    Random random(2);
    constexpr int32_t kSpan = 14000;
    for (const CscCase &c : csc_cases()) {
        for (int round = 0; round < 200; round++) {
            const auto over = static_cast<Over>(round % 5);
            const bool wide = round % 2 == 0 && over != Over::kInPlace;
            const int32_t w = random.between(1, wide ? 600 : 90), h = random.between(1, round % 4 == 0 ? 8 : 3);
            const Placement placement = overlapping(c, over, kSpan / 2, random);
            ASSERT_NO_FATAL_FAILURE(expect_same(c, placement, kSpan, w, h, random)) << "round " << round;
        }
    }
}

// Planes side by side in one larger picture share their extents but no byte.
TEST_P(Converters, PlanesSideBySide) {
    Random random(3);
    const int32_t w = 70, h = 4, stride = 8 * 80 * 4;
    for (const CscCase &c : csc_cases()) {
        Placement placement;
        int64_t column = 0;
        for (const CscPointer &p : c.src) {
            placement.src.push_back(column);
            placement.src_stride.push_back(c.deep ? stride / 2 : stride);
            column += w * p.step;
        }
        for (const CscPointer &p : c.dst) {
            placement.dst.push_back(column);
            placement.dst_stride.push_back(c.deep ? stride / 2 : stride);
            column += w * std::max(p.step, 1);
        }
        ASSERT_NO_FATAL_FAILURE(expect_same(c, placement, static_cast<size_t>(stride) * h, w, h, random));
    }
}

// Sources read-only and every plane flush against inaccessible memory, at either end: rows one after the other and
// apart, pointers of packed pictures as listed and in reverse.
TEST_P(Converters, NothingOutsideThePictureIsTouched) {
    Random random(4);
    const auto convert = [&](const CscCase &c, int32_t w, int32_t h, Flush flush, int32_t pad, bool reversed) {
        const Doing doing("%s %dx%d, pad %d, reversed %d", c.name, w, h, pad, reversed);
        std::vector<GuardedBuffer> planes;
        Call call;
        const auto add = [&](const std::vector<CscPointer> &pointers, auto &to, int32_t *stride) {
            const bool without_first = pointers[0].what == ' ', interleaved = pointers[0].step > 2 || without_first;
            for (size_t k = 0; k < pointers.size(); k++) {
                const int32_t step = pointers[k].step;
                // The last pixel of a channel of its own ends with its sample.
                const int32_t bytes = interleaved ? w * step : (w - 1) * step + pointers[k].bytes;
                if (k == 0 || !interleaved) {
                    planes.emplace_back(static_cast<size_t>((h - 1) * (bytes + pad) + bytes), flush);
                    planes.back().generate(random);
                }
                const size_t place = !interleaved ? 0 : reversed && !without_first ? pointers.size() - 1 - k : k;
                to[k] = planes.back().data() + place;
                stride[k] = (bytes + pad) / (c.deep ? 2 : 1);
            }
        };
        add(c.src, call.src, call.src_stride);
        for (GuardedBuffer &plane : planes) plane.make_read_only();
        add(c.dst, call.dst, call.dst_stride);
        run(c, call, w, h);
        for (const GuardedBuffer &plane : planes) ASSERT_TRUE(plane.slack_intact());
    };
    for (const CscCase &c : csc_cases()) {
        for (const Flush flush : kBothFlushes) {
            for (int32_t w = 1; w <= 80; w += w < 40 ? 1 : 5) {
                for (const int32_t pad : {0, 6}) {
                    ASSERT_NO_FATAL_FAILURE(convert(c, w, 2 + w % 4, flush, pad, false));
                    ASSERT_NO_FATAL_FAILURE(convert(c, w, 2 + w % 4, flush, pad, true));
                }
            }
        }
    }
}

TEST_P(Converters, EmptyPicturesAreLeftAlone) {
    for (const CscCase &c : csc_cases()) {
        for (const int32_t h : {0, -1, INT32_MIN}) c.fn(nullptr, 8, h, nullptr, 0, nullptr, 8, 8, nullptr, 0);
        uint8_t byte = 77;
        Call call;
        for (int k = 0; k < 4; k++) call.src[k] = call.dst[k] = &byte;
        for (const int32_t w : {0, -1, INT32_MIN}) run(c, call, w, 2);
        EXPECT_EQ(byte, 77) << c.name;
    }
    constexpr int32_t kEmpty[][4] = {{8, 8, 9, 0}, {8, 8, 9, INT32_MIN}, {8, 8, 0, 9}, {8, 8, -1, 9},
                                     {0, 8, 9, 9}, {-1, 8, 9, 9},        {8, 0, 9, 9}, {8, INT32_MIN, 9, 9}};
    for (const CscScalingCase &c : csc_scaling_cases()) {
        for (const auto &[sw, sh, dw, dh] : kEmpty) c.fn(nullptr, sw, sh, nullptr, 0, nullptr, dw, dh, nullptr, 0);
    }
}

TEST_P(Converters, ScalingOfEveryRatioArrangementAndStride) {
    Random random(7);
    const int32_t sizes[][4] = {{1, 1, 5, 3},     {1, 1, 1, 1},    {40, 30, 40, 30}, {40, 30, 20, 15}, {31, 22, 97, 41},
                                {97, 41, 31, 22}, {300, 9, 8, 30}, {9, 300, 30, 8},  {513, 8, 512, 9}, {8192, 2, 3, 2},
                                {2, 8192, 2, 3},  {64, 5, 600, 2}, {900, 5, 300, 4}, {700, 4, 300, 3}, {50, 40, 0, 9},
                                {50, 40, 9, 0},   {50, 40, 9, -1}, {33, 33, 34, 34}, {16, 16, 32, 32}, {700, 3, 41, 2},
                                {2040, 3, 500, 3}};
    for (const CscScalingCase &c : csc_scaling_cases()) {
        for (const auto &[sw, sh, dw, dh] : sizes) {
            for (const Channels channels : {Channels::kCanonical, Channels::kReversed, Channels::kUnrelated}) {
                for (const Strides strides : {Strides::kTight, Strides::kPadded, Strides::kNegative}) {
                    Placement placement;
                    int64_t bytes = 8;
                    place(c.unscaled->src, channels, strides, sw, sh, false, bytes, placement.src,
                          placement.src_stride);
                    place(c.unscaled->dst, channels, strides, std::max(dw, 1), std::max(dh, 1), false, bytes,
                          placement.dst, placement.dst_stride);
                    ASSERT_NO_FATAL_FAILURE(
                        expect_same_scaled(c, placement, static_cast<size_t>(bytes), sw, sh, dw, dh, random));
                }
            }
        }
    }
}

TEST_P(Converters, ScalingOntoItselfGivesThePerPixelOutcome) {
    Random random(8);
    for (const CscScalingCase &c : csc_scaling_cases()) {
        for (int round = 0; round < 25; round++) {
            const bool rows_alone =
                round % 5 == 0;  // wide rows of the destination over each other, the source elsewhere
            const size_t bytes = rows_alone ? 20000 : 4096;
            Placement placement;
            for (size_t k = 0; k < c.unscaled->src.size(); k++) {
                placement.src.push_back((rows_alone ? 17000 : 2000) + random.between(-300, 300));
                placement.src_stride.push_back(random.between(-200, 200));
            }
            for (int k = 0; k < static_cast<int>(c.unscaled->dst.size()); k++) {
                placement.dst.push_back(rows_alone ? 1500 + 3000 * k : 2000 + random.between(-300, 300));
                placement.dst_stride.push_back(random.between(-200, 200));
            }
            const int32_t dst_w = rows_alone ? random.between(257, 400) : random.between(1, 40);
            ASSERT_NO_FATAL_FAILURE(expect_same_scaled(c, placement, bytes, random.between(1, 40), random.between(1, 6),
                                                       dst_w, random.between(1, 6), random));
        }
    }
}

TEST_P(Converters, ScalingTouchesNothingOutsideThePicture) {
    Random random(9);
    const int32_t sizes[][4] = {{1, 1, 33, 9},   {1, 9, 40, 3},    {9, 1, 3, 40},   {17, 5, 40, 9},
                                {97, 40, 40, 9}, {300, 50, 13, 2}, {65, 3, 64, 64}, {40, 3, 270, 4}};
    const auto convert = [&](const CscScalingCase &c, const int32_t(&size)[4], Flush flush, bool reversed) {
        const auto &[sw, sh, dw, dh] = size;
        const Doing doing("%s %dx%d to %dx%d, reversed %d", c.name, sw, sh, dw, dh, reversed);
        std::vector<GuardedBuffer> src, dst;
        Call call;
        for (size_t k = 0; k < c.unscaled->src.size(); k++) {
            src.emplace_back(static_cast<size_t>(sw * sh), flush);
            src.back().generate(random);
            src.back().make_read_only();
            call.src[k] = src.back().data();
            call.src_stride[k] = sw;
        }
        const auto &to = c.unscaled->dst;
        const bool interleaved = to[0].step > 2;
        for (size_t k = 0; k < to.size(); k++) {
            if (k == 0 || !interleaved) dst.emplace_back(static_cast<size_t>(dw * dh * to[k].step), flush);
            call.dst[k] = dst.back().data() + (!interleaved ? 0 : reversed ? to.size() - 1 - k : k);
            call.dst_stride[k] = dw * to[k].step;
        }
        c.fn(call.src, sw, sh, call.src_stride, 0, call.dst, dw, dh, call.dst_stride, 0);
        for (const GuardedBuffer &buffer : dst) ASSERT_TRUE(buffer.slack_intact());
    };
    for (const CscScalingCase &c : csc_scaling_cases()) {
        for (const auto &size : sizes) {
            for (const Flush flush : kBothFlushes) {
                ASSERT_NO_FATAL_FAILURE(convert(c, size, flush, false));
                ASSERT_NO_FATAL_FAILURE(convert(c, size, flush, true));
            }
        }
    }
}

// Corners of the 10-bit formulas: extremes of the range and of the word, with their neighbours.
void expect_ten_bit_corners() {
    const std::vector<uint16_t> corners{0, 1, 2, 511, 512, 513, 1022, 1023, 1024, 1535, 32767, 32768, 65534, 65535};
    const size_t n = corners.size() * corners.size() * corners.size();
    std::vector<uint16_t> src(3 * n), ours(3 * n), expected(3 * n);
    for (size_t i = 0; i < n; i++) {
        src[i] = corners[i % corners.size()];
        src[n + i] = corners[i / corners.size() % corners.size()];
        src[2 * n + i] = corners[i / corners.size() / corners.size()];
    }
    const int32_t w = static_cast<int32_t>(n), strides[3] = {w, w, w};
    const void *from[3] = {&src[0], &src[n], &src[2 * n]};
    void *to[3] = {&ours[0], &ours[n], &ours[2 * n]}, *to_expected[3] = {&expected[0], &expected[n], &expected[2 * n]};
    for (const CscCase &c : csc_cases()) {
        if (!c.deep) continue;
        c.fn(from, w, 1, strides, 0, to, 0, 0, strides, 0);
        csc_reference(c, from, w, 1, strides, to_expected, strides);
        EXPECT_EQ(first_difference<uint16_t>(expected, ours, n, 1), "") << c.name;
    }
}

// Sizes round down for chroma and so do odd strides, of which the source's are in bytes.
TEST_P(Converters, TenTo8BitPlanes) {
    Random random(5);
    for (int32_t w = 0; w <= 131; w++) {
        for (const Flush flush : kBothFlushes) {
            const int32_t h = 5;
            std::vector<GuardedBuffer> src, dst;
            Call call;
            std::vector<std::vector<uint8_t>> expected;
            for (int k = 0; k < 3; k++) {
                const int32_t pw = k == 0 ? w : w / 2, ph = k == 0 ? h : h / 2;
                call.src_stride[k] = 2 * pw + (w & 2) + 1;
                call.dst_stride[k] = pw;
                const int32_t src_row = call.src_stride[k] & ~1;
                src.emplace_back(static_cast<size_t>(std::max(0, (ph - 1) * src_row + 2 * pw)), flush);
                src.back().generate(random);
                dst.emplace_back(static_cast<size_t>(pw * ph), flush);
                expected.emplace_back(dst.back().bytes());
                for (int32_t i = 0; i < pw * ph; i++) {
                    const uint8_t *sample = src.back().data() + i / pw * src_row + i % pw * 2;
                    expected.back()[static_cast<size_t>(i)] = static_cast<uint8_t>((sample[0] | sample[1] << 8) >> 2);
                }
                call.src[k] = src.back().data();
                call.dst[k] = dst.back().data();
            }
            qorv_csc_p010_to_yuv420(call.src, w, h, call.src_stride, 0, call.dst, 0, 0, call.dst_stride, 0);
            for (size_t k = 0; k < 3; k++) {
                ASSERT_EQ(first_difference<uint8_t>(expected[k], dst[k].bytes(),
                                                    static_cast<size_t>(std::max(call.dst_stride[k], 1))),
                          "")
                    << "plane " << k << ", width " << w;
            }
        }
    }
}

// Bytes on the words that they come from, or a little ahead or behind.
TEST_P(Converters, TenTo8BitPlanesOverTheirSource) {
    Random random(10);
    constexpr int32_t kBytes = 7000;
    for (int round = 0; round < 300; round++) {
        const int32_t w = random.between(1, 700), h = random.between(1, 3), stride = random.between(700, 1400) & ~1;
        const int64_t shift = round % 3 == 0 ? 0 : random.between(-50, round % 3 == 1 ? 50 : 800);
        Placement placement;
        for (int k = 0; k < 3; k++) {  // the halved planes of chroma elsewhere
            placement.src.push_back(k == 0 ? 100 : 5000);
            placement.dst.push_back(k == 0 ? 100 + shift : 5500 + 400 * k);
            placement.src_stride.push_back(k == 0 ? stride : 0);
            placement.dst_stride.push_back(k == 0 ? stride : 0);
        }
        ASSERT_NO_FATAL_FAILURE(expect_same_memory(
            placement, kBytes, random,
            [&](const Call &call) {
                qorv_csc_p010_to_yuv420(call.src, w, h, call.src_stride, 0, call.dst, 0, 0, call.dst_stride, 0);
            },
            [&](const Call &call) {
                for (int k = 0; k < 3; k++) {
                    for (int32_t i = 0; i < (k == 0 ? w * h : w / 2 * (h / 2)); i++) {
                        const int32_t x = k == 0 ? i % w : i % (w / 2), y = k == 0 ? i / w : i / (w / 2);
                        const auto *from = static_cast<const uint8_t *>(call.src[k]) + y * call.src_stride[k] + 2 * x;
                        static_cast<uint8_t *>(call.dst[k])[y * call.dst_stride[k] + x] =
                            static_cast<uint8_t>((from[0] | from[1] << 8) >> 2);
                    }
                }
            },
            text(w, h) + ", shift " + std::to_string(shift)));
    }
}

TEST(PlaneCopier, CopiesForwardAndTakesAlphaOnDemand) {
    Random random(6);
    constexpr int32_t kBytes = 2000;
    for (int round = 0; round < 2000; round++) {
        const int32_t w = random.between(1, 40), h = random.between(0, 4);
        std::vector<uint8_t> ours(kBytes);
        for (uint8_t &byte : ours) byte = static_cast<uint8_t>(random());
        std::vector<uint8_t> expected = ours;
        const bool tight = round % 4 == 0, null_alpha = round % 8 == 1;
        const int32_t dst_cs = round % 3 == 0 ? QORV_CS_YUV444 : QORV_CS_YUVA444;
        Placement placement;
        for (int k = 0; k < 4; k++) {
            placement.src.push_back(800 + random.between(-60, 60));
            placement.dst.push_back(800 + random.between(-60, 60));
            placement.src_stride.push_back(tight ? w : random.between(-200, 200));
            placement.dst_stride.push_back(tight ? w : random.between(-200, 200));
        }
        Call call = at(ours.data(), placement);
        if (null_alpha) call.src[3] = nullptr;
        qorv_csc_yuv444x_to_yuv444x(call.src, w, h, call.src_stride, 0, call.dst, 0, 0, call.dst_stride, dst_cs);
        for (size_t k = 0; k < (dst_cs == QORV_CS_YUVA444 && !null_alpha ? 4u : 3u); k++) {
            for (int32_t y = 0; y < h; y++) {
                for (int32_t x = 0; x < w; x++) {
                    expected[static_cast<size_t>(placement.dst[k] + y * placement.dst_stride[k] + x)] =
                        expected[static_cast<size_t>(placement.src[k] + y * placement.src_stride[k] + x)];
                }
            }
        }
        ASSERT_EQ(first_difference<uint8_t>(expected, ours, kBytes), "") << "round " << round;
    }
}

const CscCase &case_named(const char *name) {
    const auto &cases = csc_cases();
    return *std::find_if(cases.begin(), cases.end(), [&](const CscCase &c) { return strcmp(c.name, name) == 0; });
}

// Colours worked out by hand, so that a slip which reference and code have in common does not go unseen: black, white
// and gray, the colours at the ends of the ranges, and the two that leave them.
TEST_P(Converters, KnownColours) {
    const struct {
        const char *name;
        std::vector<uint16_t> in, out;
    } known[] = {
        {"yuv444_to_r8g8b8", {0, 128, 128}, {0, 0, 0}},
        {"yuv444_to_r8g8b8", {255, 128, 128}, {255, 255, 255}},
        {"yuv444_to_r8g8b8", {0, 0, 0}, {0, 135, 0}},
        {"yuv444_to_r8g8b8", {255, 128, 255}, {255, 164, 255}},
        {"yuv444_to_rgb565", {255, 128, 128}, {0xFFFF}},
        {"r8g8b8_to_yuv444", {0, 0, 0}, {0, 128, 128}},
        {"r8g8b8_to_yuv444", {255, 255, 255}, {255, 128, 128}},
        {"r8g8b8_to_yuv444", {255, 0, 0}, {77, 85, 255}},
        {"r8g8b8_to_yuv444", {0, 255, 0}, {149, 43, 21}},
        {"r8g8b8_to_yuv444", {0, 0, 255}, {29, 255, 107}},
        {"r8g8b8_to_yuv444", {255, 255, 0}, {226, 1, 149}},
        {"rgb565_to_yuv444", {0xFFFF}, {250, 127, 126}},
        {"r8g8b8_to_rgb565", {255, 255, 255}, {0xFFFF}},
        {"r8g8b8_to_rgb565", {8, 4, 8}, {0x0821}},
        {"r8g8b8_to_rgb565", {7, 3, 7}, {0}},
        {"p410_to_r10g10b10", {0, 512, 512}, {0, 0, 0}},
        {"p410_to_r10g10b10", {1023, 512, 512}, {1023, 1023, 1023}},
        {"p410_to_r10g10b10", {512, 1023, 1023}, {1023, 0, 1023}},
        {"r10g10b10_to_p410", {1023, 1023, 1023}, {1023, 512, 512}},
        {"r10g10b10_to_p410", {1023, 0, 0}, {308, 340, 1024}},
        {"r10g10b10_to_p410", {0, 0, 1023}, {116, 1024, 428}},
    };
    for (const auto &k : known) {
        const CscCase &c = case_named(k.name);
        std::vector<uint16_t> in = k.in, out(k.out.size());
        Call call;
        // A byte is the low one of its word.
        for (size_t i = 0; i < in.size(); i++) call.src[i] = &in[i];
        for (size_t i = 0; i < out.size(); i++) call.dst[i] = &out[i];
        run(c, call, 1, 1);
        EXPECT_EQ(out, k.out) << k.name << " of " << ::testing::PrintToString(k.in);
    }
}

// All 2^24 triples through each formula, all 2^16 words through the 5-6-5 source.
void expect_exhaustive(const char *name) {
    const CscCase &c = case_named(name);
    const bool words = c.src[0].what == 'W';
    std::vector<uint8_t> src(3 * 65536), ours(3 * 65536), expected(3 * 65536);
    for (size_t i = 0; i < 65536; i++) {
        if (words) {
            src[2 * i] = static_cast<uint8_t>(i);
            src[2 * i + 1] = static_cast<uint8_t>(i >> 8);
        } else {
            src[i] = static_cast<uint8_t>(i);
            src[65536 + i] = static_cast<uint8_t>(i >> 8);
        }
    }
    for (int third = 0; third < (words ? 1 : 256); third++) {
        if (!words) memset(&src[2 * 65536], third, 65536);
        const void *from[3] = {&src[0], &src[65536], &src[2 * 65536]};
        void *to[3] = {&ours[0], &ours[65536], &ours[2 * 65536]};
        void *to_expected[3] = {&expected[0], &expected[65536], &expected[2 * 65536]};
        const int32_t strides[3] = {256 * c.src[0].step, 256, 256}, out_strides[3] = {256, 256, 256};
        c.fn(from, 256, 256, strides, 0, to, 0, 0, out_strides, 0);
        csc_reference(c, from, 256, 256, strides, to_expected, out_strides);
        ASSERT_EQ(first_difference<uint8_t>(expected, ours, 256, 256), "") << name << ", third sample " << third;
    }
}

TEST_P(Converters, ExhaustiveYuvToRgb) {
    expect_exhaustive("yuv444_to_r8g8b8");
}

TEST_P(Converters, ExhaustiveRgbToYuv) {
    expect_exhaustive("r8g8b8_to_yuv444");
    expect_exhaustive("rgb565_to_yuv444");
}

TEST_P(Converters, TenBitCorners) {
    expect_ten_bit_corners();
}

// The loops over pixels in place of kernels of blocks.
class ConverterLoops : public ::testing::Test {
protected:
    ConverterLoops() { qorv::active.csc = &qorv::pixel::csc_kernels; }
    ~ConverterLoops() override { qorv::active.csc = chosen_; }

private:
    const qorv::CscKernels *chosen_ = qorv::active.csc;
};

TEST_F(ConverterLoops, GiveEveryColour) {
    for (const char *name : {"yuv444_to_r8g8b8", "r8g8b8_to_yuv444", "rgb565_to_yuv444"}) expect_exhaustive(name);
    expect_ten_bit_corners();
}

// Pictures of any size that overlap in every part, in a thread whose stack would not hold a frame for each halving
// (128 KiB on AArch64, whose C library allows no less: there it would have to be a larger picture).
TEST_P(Converters, OverlapTakesLittleStack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(
        pthread_attr_setstacksize(&attributes, std::max(size_t{64 << 10}, static_cast<size_t>(PTHREAD_STACK_MIN))), 0);
    pthread_t thread;
    const auto convert = [](void *) -> void * {
        constexpr int32_t kSide = 1024;
        std::vector<uint8_t> memory(3 * kSide * kSide + 1);
        uint8_t *const p = memory.data();
        const int32_t from[3] = {kSide, kSide, kSide}, to[3] = {3 * kSide, 3 * kSide, 3 * kSide};
        void *const source[3] = {p, p, p}, *const dest[3] = {p + 1, p + 2, p + 3};
        qorv_csc_r8g8b8_to_rgb888(source, kSide, kSide, from, 0, dest, kSide, kSide, to, 0);
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, convert, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace

}  // namespace test
