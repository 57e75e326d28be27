// The ring against its formulas.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "qorv_skia.h"
#include "support/allocation.h"
#include "support/guarded_buffer.h"
#include "support/random.h"
#include "support/ring_model.h"

namespace {

using test::Bytes, test::RingModel;

void expect_same(const QORV_RBUF *ring, const RingModel &model) {
    ASSERT_EQ(std::tuple(ring->wr, ring->rd), std::tuple(model.wr, model.rd));
    ASSERT_EQ(Bytes(ring->buf, ring->buf + ring->size), model.buf);
    const bool full = model.full(), empty = model.wr == model.rd;
    EXPECT_EQ(qorv_rbuf_is_full(ring), full ? 1 : 0);
    EXPECT_EQ(qorv_rbuf_is_empty(ring), empty ? 1 : 0);
    EXPECT_EQ(qorv_rbuf_get_free_len(ring), model.free_len());
    EXPECT_EQ(qorv_rbuf_get_freec_len(ring), model.freec_len());
    EXPECT_EQ(qorv_rbuf_get_fill_len(ring), model.fill_len());
    EXPECT_EQ(qorv_rbuf_get_fillc_len(ring), model.fillc_len());
    EXPECT_EQ(qorv_rbuf_get_tot_len(ring), model.size - 1);
    void *region;
    int32_t length;
    EXPECT_EQ(qorv_rbuf_get_head(ring, &region, &length), 0);
    EXPECT_EQ(region, full ? nullptr : ring->buf + model.wr);
    EXPECT_EQ(length, full ? 0 : model.freec_len());
    EXPECT_EQ(qorv_rbuf_get_tail(ring, &region, &length), 0);
    EXPECT_EQ(region, empty ? nullptr : ring->buf + model.rd);
    EXPECT_EQ(length, empty ? 0 : model.fillc_len());
}

constexpr uint8_t kAlphabet[] = {'a', '\r', '\n', 0};

// Takes a line from both and compares; the destination ends where the documented room ends.
void expect_same_line(QORV_RBUF *ring, RingModel &model, int32_t dsize) {
    static const test::GuardedBuffer memory(64);
    const int room = std::max(dsize, model.size) + 2;
    memset(memory.data(), 0xEE, memory.size());
    Bytes expected(static_cast<size_t>(room) + 1, 0xEE);
    uint8_t *dest = memory.data() + memory.size() - room;
    ASSERT_EQ(qorv_rbuf_get_one_line(ring, reinterpret_cast<char *>(dest), dsize), model.line(dsize, expected));
    expected[0] = 0xEE;  // what comes before the destination is dropped
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dest - 1));
    ASSERT_EQ(std::tuple(ring->wr, ring->rd), std::tuple(model.wr, model.rd));
}

class Ring : public testing::TestWithParam<int32_t> {};

TEST_P(Ring, HoldsThroughRandomOperations) {
    const int32_t size = GetParam();
    test::Random random;
    for (int round = 0; round < 30; round++) {
        QORV_RBUF *ring = qorv_rbuf_create(size);
        RingModel model(size);
        for (int i = 0; i < 60; i++) {
            const int32_t n = random.between(0, size + 2);
            switch (random.below(6)) {
                case 0:
                case 1: {
                    Bytes data(static_cast<size_t>(n));
                    for (uint8_t &byte : data) byte = random.below(3) != 0 ? 'b' : kAlphabet[random.below(4)];
                    ASSERT_EQ(qorv_rbuf_put(ring, data.data(), n), model.put(data));
                    break;
                }
                case 2: {
                    test::GuardedBuffer dest(static_cast<size_t>(n));
                    Bytes expected;
                    const int taken = model.get(n, expected);
                    ASSERT_EQ(qorv_rbuf_get(ring, dest.data(), n), taken);
                    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dest.data()));
                    break;
                }
                case 3:
                    ASSERT_EQ(qorv_rbuf_skip_head(ring, n), model.skip_head(n));
                    break;
                case 4:
                    ASSERT_EQ(qorv_rbuf_skip_tail(ring, n), model.skip_tail(n));
                    break;
                default:
                    ASSERT_NO_FATAL_FAILURE(expect_same_line(ring, model, n));
                    if (random.below(8) != 0) break;
                    qorv_rbuf_empty(ring);
                    model.rd = model.wr;
            }
            ASSERT_NO_FATAL_FAILURE(expect_same(ring, model));
        }
        qorv_rbuf_delete(ring);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, Ring, testing::Values(1, 2, 3, 5, 8, 40));

// Every content of five bytes at every pair of positions, those that the formulas alone reach included.
TEST(RingLines, HoldForEveryShapeAtEveryPosition) {
    constexpr int32_t kSize = 5;
    QORV_RBUF *ring = qorv_rbuf_create(kSize);
    RingModel model(kSize);
    for (uint32_t shape = 0; shape < 1u << 2 * kSize; shape++) {
        for (int32_t i = 0; i < kSize; i++) ring->buf[i] = model.at(i) = kAlphabet[shape >> 2 * i & 3];
        for (int32_t positions = 0; positions < (kSize + 1) * (kSize + 2); positions++) {
            for (int32_t dsize : {1, 3, kSize - 1, kSize + 1}) {
                ring->wr = model.wr = positions % (kSize + 1);
                ring->rd = model.rd = positions / (kSize + 1);
                ASSERT_NO_FATAL_FAILURE(expect_same_line(ring, model, dsize))
                    << "shape " << shape << ", positions " << positions << ", dsize " << dsize;
            }
        }
    }
    qorv_rbuf_delete(ring);
}

// Whole lines arrive once each, however they are cut into puts and wherever they wrap.
TEST(RingLines, EndingInCrLfArriveOnceEach) {
    constexpr int kLines = 200'000;
    test::Random random;
    QORV_RBUF *ring = nullptr;
    std::string line, waiting;
    int idle = 0;
    for (int arrived = 0; arrived < kLines;) {
        if (arrived % 1000 == 0 && ring == nullptr) ring = qorv_rbuf_create(random.between(4, 70));
        if (line.empty()) {
            for (uint32_t i = random.below(static_cast<uint32_t>(ring->size - 2)); i > 0; i--) {
                line += static_cast<char>(random.between('a', 'c'));
            }
            waiting = line += "\r\n";
        }
        const int32_t piece = random.between(0, static_cast<int32_t>(waiting.size()));
        if (qorv_rbuf_put(ring, waiting.data(), piece) != 0) waiting.erase(0, static_cast<size_t>(piece));
        const int32_t begin = ring->rd;
        const auto length = static_cast<int32_t>(line.size());
        char text[80] = {};
        const int32_t taken = qorv_rbuf_get_one_line(ring, text, 78);
        if (taken == 0) {
            ASSERT_LT(++idle, 10000) << "stuck at wr " << ring->wr << ", rd " << ring->rd << " of " << ring->size;
            continue;
        }
        // Where the storage ends between CR and LF, a byte after the line is counted too.
        ASSERT_EQ(taken, length + (begin + length - 1 == ring->size ? 1 : 0)) << "line " << arrived;
        ASSERT_EQ(std::string(text), line) << "line " << arrived;
        ASSERT_TRUE(waiting.empty());
        line.clear();
        idle = 0;
        if (++arrived % 1000 != 0) continue;
        qorv_rbuf_delete(ring);
        ring = nullptr;
    }
}

// Worked out by hand, where the formulas surprise.
TEST(RingBuffer, AnswersOddlyWithThePositionBehindTheStorage) {
    QORV_RBUF *ring = qorv_rbuf_create(8);
    char line[16];
    EXPECT_EQ(qorv_rbuf_put(ring, "1234", 4), 4);
    EXPECT_EQ(qorv_rbuf_get_free_len(ring), 5) << "one more than fits";
    EXPECT_EQ(qorv_rbuf_get(ring, line, 4), 4);
    EXPECT_EQ(qorv_rbuf_put(ring, "ab\r\n", 4), 4);
    EXPECT_EQ(ring->wr, 0) << "with something read, a put that reaches the end goes to the front";
    EXPECT_EQ(qorv_rbuf_get_one_line(ring, line, 14), 4);
    EXPECT_STREQ(line, "ab\r\n");
    EXPECT_EQ(std::tuple(ring->wr, ring->rd), std::tuple(0, 8));
    EXPECT_EQ(qorv_rbuf_is_empty(ring), 0) << "nothing is left";
    EXPECT_EQ(qorv_rbuf_get_fill_len(ring), -1);
    EXPECT_EQ(qorv_rbuf_get_free_len(ring), 7);
    void *tail;
    int32_t length;
    qorv_rbuf_get_tail(ring, &tail, &length);
    EXPECT_EQ(std::tuple(tail, length), std::tuple(static_cast<void *>(ring->buf + 8), 0));
    EXPECT_EQ(qorv_rbuf_put(ring, "cd", 2), 2);
    EXPECT_EQ(qorv_rbuf_get_fill_len(ring), 1) << "one less than is held, as wherever the contents wrap";
    EXPECT_EQ(qorv_rbuf_get(ring, line, 16), 2);
    EXPECT_EQ(std::tuple(line[0], line[1], ring->wr, ring->rd), std::tuple('c', 'd', 2, 2));
    EXPECT_EQ(qorv_rbuf_skip_head(ring, 9), 7) << "all but the free byte, through the wrap";
    EXPECT_EQ(std::tuple(ring->wr, qorv_rbuf_is_full(ring)), std::tuple(1, 1));
    EXPECT_EQ(qorv_rbuf_skip_tail(ring, 6), 6);
    EXPECT_EQ(std::tuple(ring->rd, qorv_rbuf_get_fillc_len(ring)), std::tuple(0, 1));
    EXPECT_EQ(qorv_rbuf_skip_head(ring, 9), 6) << "not moved while the read position is 0";
    EXPECT_EQ(ring->wr, 1);
    qorv_rbuf_delete(ring);
}

TEST(RingBuffer, AcceptsOneByteMoreThanItsCapacityAtTheStart) {
    QORV_RBUF *ring = qorv_rbuf_create(8);
    EXPECT_EQ(qorv_rbuf_get_free_len(ring), 9);
    EXPECT_EQ(qorv_rbuf_put(ring, "123456789", 9), 0);
    EXPECT_EQ(qorv_rbuf_put(ring, "12345678", 8), 8);
    EXPECT_EQ(ring->wr, 8);
    qorv_rbuf_delete(ring);
}

TEST(RingBuffer, DropsTheByteAfterALineThatEndsInLfAlone) {
    QORV_RBUF *ring = qorv_rbuf_create(32);
    qorv_rbuf_put(ring, "ab\ncdef\r\n", 9);
    char line[32];
    EXPECT_EQ(qorv_rbuf_get_one_line(ring, line, 30), 4);
    EXPECT_STREQ(line, "ab\r\n");
    EXPECT_EQ(qorv_rbuf_get_one_line(ring, line, 30), 5);
    EXPECT_STREQ(line, "def\r\n");
    qorv_rbuf_delete(ring);
}

TEST(RingBuffer, DeletingNullIsAllowed) {
    qorv_rbuf_delete(nullptr);
}

}  // namespace
