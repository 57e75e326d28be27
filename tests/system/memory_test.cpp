#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "qorv_skia.h"
#include "support/doing.h"
#include "support/first_difference.h"
#include "support/guarded_buffer.h"
#include "support/kernel_fixture.h"
#include "support/random.h"

namespace {

using test::Flush;
using test::GuardedBuffer;

class MemoryKernels : public test::WithKernelSet {};
INSTANTIATE_FOR_KERNEL_SETS(MemoryKernels);

// Runs a fill on room of exactly `bytes` bytes, at both ends of the accessible memory and one byte away from them.
template <class Fill>
void expect_fill(size_t bytes, uint16_t pattern, Fill fill) {
    for (uint32_t variant = 0; variant < 4; variant++) {
        const bool at_end = variant % 2 == 0;
        const size_t away = variant / 2;
        const test::Doing doing("%zu bytes, %zu from the %s", bytes, away, at_end ? "end" : "beginning");
        GuardedBuffer room(bytes + away, at_end ? Flush::kEnd : Flush::kBegin);
        room.fill(0x11);
        fill(room.data() + (at_end ? 0 : away));
        std::vector<uint8_t> expected(bytes);
        for (size_t i = 0; i < bytes; i++) expected[i] = static_cast<uint8_t>(pattern >> 8 * (i % 2));
        expected.insert(at_end ? expected.end() : expected.begin(), away, 0x11);
        ASSERT_EQ(test::first_difference<uint8_t>(expected, room.bytes(), expected.size()), "");
        EXPECT_TRUE(room.slack_intact());
    }
}

TEST(ByteFills, WriteTheStatedExtents) {
    for (int32_t n : {-1, 0, 1, 31, 32, 40, 63, 64, 70, 100, 127, 128, 129, 200, 256, 5000}) {
        const size_t exact = n > 0 ? static_cast<size_t>(n) : 0;
        expect_fill(exact, 0xABAB, [exact](void *dst) { qorv_mset_x64(dst, 0xFAB, exact); });
        expect_fill(exact, 0xABAB, [exact](void *dst) { qorv_mset_x64a(dst, 0xFAB, exact); });
        expect_fill(exact, 0xABAB, [n](void *dst) { qorv_mset_x32(dst, 0xFAB, n); });
        expect_fill(exact, 0xABAB, [n](void *dst) { qorv_mset_x32ax4(dst, 0xFAB, n); });
        expect_fill(exact, 0, [n](void *dst) { qorv_mclr_x64(dst, n); });
    }
}

TEST_P(MemoryKernels, Mset16WritesExactlyTheSamples) {
    for (int32_t n = -1; n < 300; n++) {
        const size_t bytes = n > 0 ? 2 * static_cast<size_t>(n) : 0;
        expect_fill(bytes, 0xBEEF, [n](void *dst) { qorv_mset16(dst, 0xBEEF, n); });
    }
    expect_fill(200002, 0x1234, [](void *dst) { qorv_mset16(dst, 0x1234, 100001); });
}

// The stores between the first and the last are aligned, also of samples at an odd address.
TEST_P(MemoryKernels, Mset16AtEveryAlignment) {
    constexpr size_t kRoom = 2 * 170 + 128;
    for (size_t place = 0; place < 64; place++) {
        for (int32_t n = 30; n < 170; n += 7) {
            alignas(64) uint8_t room[kRoom];
            std::vector<uint8_t> expected(kRoom, 0x11);
            std::copy(expected.begin(), expected.end(), room);
            for (size_t i = 0; i < 2 * static_cast<size_t>(n); i++) expected[place + i] = i % 2 == 0 ? 0xEF : 0xBE;
            qorv_mset16(room + place, 0xBEEF, n);
            ASSERT_EQ(test::first_difference<uint8_t>(expected, room, kRoom), "") << n << " samples at " << place;
        }
    }
}

TEST_P(MemoryKernels, MsetX128WritesWholePieces) {
    for (int32_t n : {INT32_MIN, -1, 0, 1, 127, 128, 129, 256, 300, 1000, 1024, 1025, 5000}) {
        const size_t pieces = n > 128 ? (static_cast<size_t>(n) + 127) / 128 : 1;
        expect_fill(128 * pieces, 0xABAB, [n](void *dst) { qorv_mset_x128(dst, 0xFAB, n); });
    }
}

// A copy of rows, in bytes, as the functions under test should make it.
struct Copy {
    int32_t dst_stride, src_stride, row_bytes, rows;
};

// Runs `copy(dst, src)` on two guarded pictures whose last row ends with its samples, upside down where a stride is
// negative, and holds every byte of the destination against a plain loop.
template <class Run>
void expect_copy(const Copy &copy, Run run) {
    const auto extent = [&](int32_t stride) {
        return copy.rows < 1 ? 0u
                             : static_cast<size_t>(std::abs(stride)) * static_cast<size_t>(copy.rows - 1) +
                                   static_cast<size_t>(copy.row_bytes);
    };
    const auto first_row = [&](const GuardedBuffer &buffer, int32_t stride) {
        return buffer.data() + (stride < 0 && copy.rows > 0 ? static_cast<ptrdiff_t>(-stride) * (copy.rows - 1) : 0);
    };
    const test::Doing doing("%d x %d bytes, strides %d to %d", copy.row_bytes, copy.rows, copy.src_stride,
                            copy.dst_stride);
    for (Flush flush : test::kBothFlushes) {
        GuardedBuffer src(extent(copy.src_stride), flush), dst(extent(copy.dst_stride), flush);
        src.generate(test::Random(1));
        dst.generate(test::Random(2));
        src.make_read_only();
        GuardedBuffer expected(dst.size(), flush);
        expected.assign(dst.bytes());
        const uint8_t *from = first_row(src, copy.src_stride);
        for (int32_t row = 0; row < copy.rows; row++) {
            for (int32_t i = 0; i < copy.row_bytes; i++) {
                first_row(expected, copy.dst_stride)[row * copy.dst_stride + i] = from[row * copy.src_stride + i];
            }
        }
        run(first_row(dst, copy.dst_stride), from);
        ASSERT_EQ(test::first_difference<uint8_t>(expected.bytes(), dst.bytes(),
                                                  static_cast<size_t>(std::abs(copy.dst_stride))),
                  "");
        EXPECT_TRUE(dst.slack_intact());
    }
}

TEST(PictureCopy, CopiesRowsAndNothingBetweenThem) {
    for (int32_t width : {1, 31, 63, 64, 65, 96, 100, 128, 200}) {
        for (int32_t rows : {-1, 0, 1, 3}) {
            const std::pair<int32_t, int32_t> strides[] = {
                {width, width}, {width + 28, width}, {width, width + 3}, {width + 28, width + 28}, {-width - 5, width}};
            for (const auto &strides_of_case : strides) {
                const int32_t to = strides_of_case.first, from = strides_of_case.second;
                expect_copy({to, from, width, rows},
                            [&](void *dst, const void *src) { qorv_mcpy_pic(dst, src, to, from, width, rows); });
                expect_copy({2 * to, 2 * from, 2 * width, rows},
                            [&](void *dst, const void *src) { qorv_mcpy_pic_16(dst, src, to, from, width, rows); });
            }
        }
    }
    uint8_t byte = 7;
    qorv_mcpy_pic(&byte, nullptr, 0, 0, 0, 5);
    EXPECT_EQ(byte, 7);
}

TEST_P(MemoryKernels, BlockCopyKnowsNineWidthsAndTakesOthersFor64) {
    const std::set<int32_t> known = {2, 4, 6, 8, 12, 16, 24, 32, 48};
    for (int32_t width = -1; width <= 66; width++) {
        const int32_t copied = known.count(width) != 0 ? width : 64;
        for (int32_t rows : {-1, 0, 1, 2, 3, 4, 7, 16}) {
            expect_copy({copied + 3, copied + 9, copied, rows}, [&](void *dst, const void *src) {
                qorv_mcpy_blk(dst, src, copied + 3, copied + 9, width, rows);
            });
            expect_copy({-2 * copied, 2 * copied + 2, 2 * copied, rows}, [&](void *dst, const void *src) {
                qorv_mcpy_blk_16(dst, src, -copied, copied + 1, width, rows);
            });
        }
    }
}

}  // namespace
