#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "buffer/recording_allocator.h"
#include "qorv_skia.h"
#include "support/doing.h"
#include "support/first_difference.h"
#include "support/kernel_fixture.h"
#include "support/random.h"

namespace {

using test::GuardedBuffer;
using test::RecordingAllocator;

class Expand : public test::WithKernelSet {};
INSTANTIATE_FOR_KERNEL_SETS(Expand);

// The steps one after the other, byte by byte, on a copy of the picture's block; what would fall outside is left out.
std::vector<uint8_t> expanded(const QORV_IMGB &imgb, const std::vector<uint32_t> &pad) {
    const uint8_t *block = static_cast<const uint8_t *>(imgb.baddr[0]);
    std::vector<uint8_t> bytes(block, block + imgb.bsize);
    uint32_t w[4] = {static_cast<uint32_t>(imgb.aw)}, h[4] = {static_cast<uint32_t>(imgb.ah)}, planes, units[4];
    EXPECT_EQ(qorv_imgb_get_dimension(imgb.cs, w, h, &planes, units), QORV_OK);
    const int64_t sample = imgb.cs == 20 || imgb.cs >= 60 ? 2 : 1;
    const auto byte = [&](int64_t at) -> uint8_t & { return bytes.at(static_cast<size_t>(at)); };
    const auto copy = [&](int64_t to, int64_t from, int64_t n) {
        for (int64_t i = 0; i < n && to + i < imgb.bsize; i++) byte(to + i) = byte(from + i);
    };
    for (uint32_t i = 0; i < planes; i++) {
        const int64_t a = static_cast<uint8_t *>(imgb.a[i]) - block, s = imgb.s[i];
        const int64_t side = pad[i] >> 16, above = pad[i] & 0xFFFF;
        for (int64_t y = 0; y < h[i]; y++) {
            for (int64_t x = 0; x < side; x++) copy(a + y * s + (x - above) * sample, a + y * s, sample);
        }
        for (int64_t y = 0; y < h[i]; y++) {
            const int64_t last = a + y * s + (w[i] - 1) * sample;
            for (int64_t x = 1; x <= side; x++) copy(last + x * sample, last, sample);
        }
        const int64_t left = a - side * sample;
        for (int64_t y = above; y > 0; y--) copy(left - y * s, left, s);
        for (int64_t y = 0; y < above; y++) copy(left + (h[i] + y) * s, left + (h[i] - 1) * s, s);
    }
    return bytes;
}

TEST_P(Expand, FollowsTheStepsInEveryColourSpace) {
    RecordingAllocator::reset();
    test::Random random;
    for (uint32_t cs : {10u, 11u, 12u, 13u, 16u, 17u, 18u, 20u, 22u, 41u, 42u, 43u, 44u, 60u, 61u, 62u, 63u, 64u}) {
        for (uint32_t round = 0; round < 40; round++) {
            // The first rounds are ordinary, the later ones have halves of any size, in each plane its own. The last
            // expand by fewer columns than were reserved.
            std::vector<uint32_t> pad(4, QORV_IMGB_WORD(round, round));
            if (round >= 20) {
                for (uint32_t &word : pad) word = QORV_IMGB_WORD(random.below(90), random.below(12));
            }
            const std::vector<uint32_t> align(4, QORV_IMGB_WORD(1u << round % 4, 1u << round % 3));
            QORV_IMGB *imgb =
                qorv_imgb_create(random.between(1, 60), random.between(1, 20), cs, 0, align.data(), pad.data(),
                                 RecordingAllocator::alloc, RecordingAllocator::free, nullptr);
            uint8_t *block = static_cast<uint8_t *>(imgb->baddr[0]);
            for (uint32_t i = 0; i < imgb->bsize; i++) block[i] = static_cast<uint8_t>(random());
            std::vector<uint32_t> margins = pad;
            for (uint32_t &word : margins) {
                if (round >= 30) word = QORV_IMGB_WORD(random.below((word >> 16) + 1), word & 0xFFFF);
            }
            const std::vector<uint8_t> expected = expanded(*imgb, margins);
            const test::Doing doing("colour space %u, round %u", cs, round);
            ASSERT_EQ(qorv_imgb_expand(imgb, margins.data()), QORV_OK);
            ASSERT_EQ(test::first_difference<uint8_t>(expected, {block, expected.size()},
                                                      std::max<size_t>(1, static_cast<size_t>(imgb->s[0]))),
                      "");
            EXPECT_EQ(imgb->release(imgb), 0);
        }
    }
    EXPECT_EQ(RecordingAllocator::bad_frees, 0);
}

TEST(ExpandImage, MakesSquareMarginsOfEdgeSamples) {
    const std::vector<uint32_t> pad(4, QORV_IMGB_WORD(2, 2));
    QORV_IMGB *imgb = qorv_imgb_create(8, 4, QORV_CS_YUV420, 0, nullptr, pad.data(), nullptr, nullptr, nullptr);
    for (uint32_t i = 0; i < imgb->bsize; i++) static_cast<uint8_t *>(imgb->baddr[0])[i] = static_cast<uint8_t>(i);
    ASSERT_EQ(qorv_imgb_expand(imgb, pad.data()), QORV_OK);
    const auto clamp = [](int v, int limit) { return v < 0 ? 0 : v >= limit ? limit - 1 : v; };
    for (int i = 0; i < 3; i++) {
        const int w = i == 0 ? 8 : 4, h = i == 0 ? 4 : 2;
        const uint8_t *a = static_cast<const uint8_t *>(imgb->a[i]);
        for (int y = -2; y < h + 2; y++) {
            for (int x = -2; x < w + 2; x++) {
                EXPECT_EQ(a[y * imgb->s[i] + x], a[clamp(y, h) * imgb->s[i] + clamp(x, w)])
                    << i << ": " << x << ", " << y;
            }
        }
    }
    imgb->release(imgb);
}

TEST(ExpandImage, RefusesPackedRgbAndUnknownIdentifiers) {
    const uint32_t pad[4] = {};
    QORV_IMGB *imgb = qorv_imgb_create(8, 4, 400, 3, nullptr, nullptr, nullptr, nullptr, nullptr);
    for (uint32_t cs : {0u, 14u, 19u, 65u, 99u, 400u, 500u, 600u}) {
        imgb->cs = cs;
        EXPECT_EQ(qorv_imgb_expand(imgb, pad), QORV_ERR_UNSUPPORTED_CS) << cs;
    }
    imgb->release(imgb);
}

TEST_P(Expand, RunsOfBytesAndWordsAreExact) {
    constexpr size_t kStride = 700;
    for (int32_t count = -1; count <= 300; count += count < 70 ? 1 : 13) {
        for (size_t rows : {0u, 1u, 3u}) {
            for (size_t sample : {1u, 2u}) {
                // An odd stride counts as the next even one for words.
                const size_t stride = sample == 2 && count % 2 == 1 ? kStride - 1 : kStride;
                const size_t run = count > 0 && rows > 0 ? static_cast<size_t>(count) * sample : 0;
                GuardedBuffer src(2 * kStride + sample), dst(run != 0 ? run + (rows - 1) * kStride : 0);
                src.generate(test::Random(3));
                src.make_read_only();
                std::vector<uint8_t> expected = dst.bytes();
                for (size_t at = 0; at < expected.size(); at++) {
                    if (at % kStride < run) expected[at] = src.data()[at / kStride * kStride + at % sample];
                }
                const test::Doing doing("%d samples of %zu bytes, %zu rows", count, sample, rows);
                const auto fill = sample == 1 ? qorv_imgb_expand_ver : qorv_imgb_expand_ver_16;
                fill(src.data(), dst.data(), static_cast<int32_t>(rows), static_cast<int32_t>(stride), count);
                ASSERT_EQ(test::first_difference<uint8_t>(expected, dst.bytes(), kStride), "");
            }
        }
    }
}

TEST(ExpandHor, RepeatsARun) {
    for (int32_t len : {-1, 0, 1, 3, 40}) {
        for (int32_t count : {-1, 0, 1, 5}) {
            const size_t n = static_cast<size_t>(len > 0 ? len : 0);
            GuardedBuffer src(n), dst(n * static_cast<size_t>(count > 0 ? count : 0));
            src.generate(test::Random(4));
            qorv_imgb_expand_hor(src.data(), dst.data(), len, count);
            for (size_t i = 0; i < dst.size(); i++) EXPECT_EQ(dst.data()[i], src.data()[i % n]);
        }
    }
}

}  // namespace
