#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <numeric>

#include "csc/converter_list.h"
#include "support/csc_reference.h"
#include "support/guarded_buffer.h"
#include "support/kernel_sets.h"
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

// Ours and the reference on the same random memory: every byte must agree, those outside the picture included.
void expect_same(const CscCase &c, const Placement &placement, size_t bytes, int32_t w, int32_t h, Random &random) {
    std::vector<uint8_t> ours(bytes), expected;
    for (uint8_t &byte : ours) byte = static_cast<uint8_t>(random());
    expected = ours;
    run(c, at(ours.data(), placement), w, h);
    const Call call = at(expected.data(), placement);
    csc_reference(c, call.src, w, h, call.src_stride, call.dst, call.dst_stride);
    if (ours == expected) return;
    const size_t where = static_cast<size_t>(
        std::mismatch(ours.begin(), ours.end(), expected.begin()).first - ours.begin());
    FAIL() << c.name << " " << w << "x" << h << ": byte " << where << " is " << int{ours[where]} << ", not "
           << int{expected[where]} << "; first destination at " << placement.dst.back();
}

enum class Channels { kCanonical, kReversed, kUnrelated };
enum class Strides { kTight, kPadded, kNegative };

// Lays pointers out one after the other from `offset` on, and moves it behind them.
void place(const std::vector<CscPointer> &pointers, Channels channels, Strides strides, int32_t w, int32_t h,
           int64_t &offset, std::vector<int64_t> &at, std::vector<int32_t> &stride) {
    const auto count = static_cast<int32_t>(pointers.size());
    const bool interleaved = pointers[0].step > 2 && channels != Channels::kUnrelated;
    for (int32_t k = 0; k < count; k++) {
        const int32_t pad = strides == Strides::kTight ? 0 : interleaved ? 5 : 3 + 2 * k;
        const int32_t step = std::max(pointers[static_cast<size_t>(k)].step, 1);
        const int32_t row = w * step + pad;
        const int64_t first = strides == Strides::kNegative ? int64_t{h - 1} * row : 0;
        const int32_t place_in_pixel = channels == Channels::kReversed ? count - 1 - k : k;
        // A word pointer advances by stride >> 1 words, so its odd strides need room for one byte more or less a row.
        at.push_back(offset + (interleaved ? place_in_pixel : 0) + first + (strides == Strides::kNegative ? h : 0));
        stride.push_back(strides == Strides::kNegative ? -row : row);
        if (!interleaved || k == count - 1) offset += int64_t{row} * h + 2 * h + 16;
    }
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
                    const int32_t h = w > 80 ? 2 : 3;
                    place(c.src, channels, strides, w, h, bytes, placement.src, placement.src_stride);
                    place(c.dst, channels, strides, w, h, bytes, placement.dst, placement.dst_stride);
                    ASSERT_NO_FATAL_FAILURE(
                        expect_same(c, placement, static_cast<size_t>(bytes), w, h, random));
                }
            }
        }
    }
}

// Destinations anywhere over the sources and over each other, exactly in place included.
TEST_P(Converters, OverlapGivesThePerPixelOutcome) {
    Random random(2);
    constexpr int32_t kSpan = 4096;
    for (const CscCase &c : csc_cases()) {
        for (int round = 0; round < 60; round++) {
            const int32_t w = random.between(1, 90), h = random.between(1, 3);
            Placement placement;
            const auto add = [&](size_t count, std::vector<int64_t> &at, std::vector<int32_t> &stride, int32_t reach) {
                for (size_t k = 0; k < count; k++) {
                    at.push_back(kSpan / 2 + random.between(-reach, reach));
                    stride.push_back(random.between(-400, 400));
                }
            };
            add(c.src.size(), placement.src, placement.src_stride, 400);
            add(c.dst.size(), placement.dst, placement.dst_stride, 400);
            if (round % 3 == 0) {  // in place
                for (size_t k = 0; k < c.dst.size(); k++) {
                    const size_t from = std::min(k, c.src.size() - 1);
                    placement.src[from] = 600 + 800 * static_cast<int64_t>(from);
                    placement.src_stride[from] = 100;
                    placement.dst[k] = placement.src[from];
                    placement.dst_stride[k] = placement.src_stride[from];
                }
            }
            ASSERT_NO_FATAL_FAILURE(expect_same(c, placement, kSpan, w, h, random));
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
            placement.src_stride.push_back(stride);
            column += w * p.step;
        }
        for (const CscPointer &p : c.dst) {
            placement.dst.push_back(column);
            placement.dst_stride.push_back(stride);
            column += w * std::max(p.step, 1);
        }
        ASSERT_NO_FATAL_FAILURE(expect_same(c, placement, static_cast<size_t>(stride) * h, w, h, random));
    }
}

// Sources read-only and every plane flush against inaccessible memory, at either end.
TEST_P(Converters, NothingOutsideThePictureIsTouched) {
    Random random(4);
    for (const CscCase &c : csc_cases()) {
        for (const Flush flush : kBothFlushes) {
            for (int32_t w = 1; w <= 80; w++) {
                std::vector<GuardedBuffer> planes;
                Call call;
                const auto add = [&](const std::vector<CscPointer> &pointers, auto &to, int32_t *stride) {
                    const bool interleaved = pointers[0].step > 2 || pointers[0].what == ' ';
                    for (size_t k = 0; k < pointers.size(); k++) {
                        const int32_t step = pointers.back().what == ' ' ? 1 : pointers[k].step;
                        // The last pixel of a channel of its own ends with its sample.
                        const int32_t bytes = interleaved ? w * step : (w - 1) * step + pointers[k].bytes;
                        if (k == 0 || !interleaved) {
                            planes.emplace_back(static_cast<size_t>(2 * bytes), flush);
                            planes.back().generate(random);
                        }
                        to[k] = planes.back().data() + (interleaved ? k : 0);
                        stride[k] = bytes;
                    }
                };
                add(c.src, call.src, call.src_stride);
                for (const GuardedBuffer &plane : planes) const_cast<GuardedBuffer &>(plane).protect(true);
                add(c.dst, call.dst, call.dst_stride);
                run(c, call, w, 2);
                for (const GuardedBuffer &plane : planes) ASSERT_TRUE(plane.slack_intact()) << c.name << " " << w;
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
}

// All 2^24 triples through each formula, all 2^16 words through the 5-6-5 source.
void expect_exhaustive(const char *name) {
    const auto &cases = csc_cases();
    const CscCase &c = *std::find_if(cases.begin(), cases.end(), [&](const CscCase &x) { return !strcmp(x.name, name); });
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
        ASSERT_TRUE(ours == expected) << name << ", third sample " << third;
    }
}

TEST_P(Converters, ExhaustiveYuvToRgb) {
    expect_exhaustive("yuv444_to_r8g8b8");
}

TEST_P(Converters, ExhaustiveRgbToYuv) {
    expect_exhaustive("r8g8b8_to_yuv444");
    expect_exhaustive("rgb565_to_yuv444");
}

}  // namespace

}  // namespace test
