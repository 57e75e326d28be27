#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "qorv_skia.h"
#include "support/guarded_buffer.h"
#include "support/random.h"

namespace {

constexpr uint32_t kFailed = 0xFFFFFFFF;

// The reader as two positions in a list of bits: the cache holds the bits from `pos` to `loaded`, and `pos` beyond
// `loaded` is a debt. Sound while no operation takes more than 32 bits of a new word.
struct Model {
    std::vector<bool> bits;
    int loaded = 0, pos = 0;
    int largest_refill = 4;    // in bytes
    int fails_from = 1 << 30;  // byte at which the refill gives up

    int left() const { return loaded - pos; }
    int total() const { return static_cast<int>(bits.size()); }
    bool bit(int i) const { return i >= 0 && i < loaded && bits[static_cast<size_t>(i)]; }
    uint32_t number(int from, int to) const {
        uint32_t value = 0;
        for (int i = from; i < to; i++) value = value << 1 | (bit(i) ? 1 : 0);
        return value;
    }
    uint32_t code() const { return pos < loaded ? number(pos, loaded) << ((32 - left()) % 32) : 0; }

    bool refill(int count = 4) {
        const int n = std::min({count, largest_refill, loaded / 8 < fails_from ? (total() - loaded) / 8 : 0});
        pos = loaded;
        loaded += 8 * n;
        return n > 0;
    }
    bool skip(int n) {
        const int target = pos + n, rest = n - left();
        if (rest > 0 && !refill()) return false;
        pos = rest == 32 ? loaded : target;
        return true;
    }
    uint32_t read(int n) {
        const int from = std::min(pos, loaded), to = pos + n;
        if (!skip(n)) return kFailed;
        return number(from, to);
    }
    uint32_t read1() {
        if (left() == 0 && !refill()) return kFailed;
        pos++;
        return bit(pos - 1);
    }
    uint32_t peek(int n) {
        const int from = pos;
        if (left() < n && left() <= 24) {
            refill((32 - left()) / 8);
            pos = from;
        }
        // Of what is still missing a part of the next byte is seen.
        const int missing = n - left();
        uint32_t value = number(from, from + n);
        if (missing >= 1 && missing <= 8 && loaded < total()) {
            for (int i = 0; i < missing; i++) {
                value |= static_cast<uint32_t>(bits[static_cast<size_t>(loaded + i)]) << (missing - 1 - i);
            }
        }
        return value;
    }
    uint32_t read_ue() {
        const int from = pos;
        if (code() == 0) refill();
        int one = pos;
        while (one < loaded && !bit(one)) one++;
        const int end = 2 * one - from + 1;
        if ((one == loaded || end > loaded) && !refill()) return static_cast<uint32_t>(QORV_ERR_BSR_REFILL);
        pos = end;
        return number(one, end) - 1;
    }
    uint32_t read_unary(int max) {
        int carried = 0;
        const bool all_ones = left() == 0 || (left() == 32 && bit(pos));
        if (all_ones) {
            if (left() >= max) {
                pos += max;
                return static_cast<uint32_t>(max);
            }
            carried = left();
            refill();
        }
        int ones = 0;
        while (bit(pos + ones)) ones++;
        pos += ones + carried > max ? max : ones + 1;
        return static_cast<uint32_t>(std::min(ones + carried, max));
    }
    uint32_t align(bool count) {
        const int k = left() & 7;
        pos += k;
        return count ? static_cast<uint32_t>(k) : number(pos - k, pos);
    }
};

// Refills of a caller: at most g_largest bytes at a time, and none from byte g_fails_from on.
int g_largest, g_fails_from;
int32_t limited_refill(QORV_BSR *bsr, int32_t count) {
    if (bsr->cur - bsr->beg >= g_fails_from) count = 0;
    return qorv_bsr_flush(bsr, std::min(count, g_largest));
}

// Bytes in which no run of zeros or ones reaches 16: longer codes are not supported, and the arithmetic modulo 32 that
// longer runs of ones meet has its own test. The last byte may be anything.
std::vector<uint8_t> random_bytes(test::Random &random, size_t size) {
    std::vector<uint8_t> bytes(size);
    const uint32_t shape = random.below(3);  // as it comes, mostly ones, mostly zeros
    for (size_t i = 0; i < size; i++) {
        const uint32_t a = random() >> 24, b = random() >> 24;
        uint32_t byte = shape == 0 ? a : shape == 1 ? a | b : a & b;
        if (i + 1 < size && byte == 0) byte = 0x10;
        if (i + 1 < size && byte == 0xFF) byte = 0xEF;
        bytes[i] = static_cast<uint8_t>(byte);
    }
    return bytes;
}

void expect_same_state(const QORV_BSR &r, const Model &model, const uint8_t *data) {
    ASSERT_EQ(r.leftbits, model.left());
    ASSERT_EQ(r.code, model.code());
    ASSERT_EQ(r.cur - data, model.loaded / 8);
}

// Those before kPeek the model follows into a debt.
enum Op { kRead, kRead1, kSkip, kUn, kTu, kAlign, kPeek, kSkipPeek, kReadAlign, kUe, kSe, kTe, kOps };

// `n` is the number of bits, or the largest value of a truncated code; `more` the bits that kSkipPeek looks at.
uint32_t apply(Op op, QORV_BSR &r, int n, int more = 0) {
    uint32_t count = 99;
    switch (op) {
        case kRead:
            return qorv_bsr_read(&r, n);
        case kRead1:
            return qorv_bsr_read1(&r);
        case kSkip:
            return qorv_bsr_skip(&r, n), 0;
        case kUn:
            return qorv_bsr_read_un(&r);
        case kTu:
            return qorv_bsr_read_tu(&r, n);
        case kAlign:
            return qorv_bsr_skip_align8(&r), 0;
        case kPeek:
            return qorv_bsr_peek(&r, n);
        case kSkipPeek:
            return qorv_bsr_skip_peek(&r, n, more);
        case kReadAlign:
            if (n == 1) return qorv_bsr_read_align8(&r, nullptr);
            return qorv_bsr_read_align8(&r, &count) + 256 * count;
        case kUe:
            return qorv_bsr_read_ue(&r);
        case kSe:
            return static_cast<uint32_t>(qorv_bsr_read_se(&r));
        default:
            return qorv_bsr_read_te(&r, n);
    }
}

uint32_t signed_of(uint32_t code_number) {
    const int64_t k = static_cast<int32_t>(code_number);
    return static_cast<uint32_t>(k % 2 != 0 ? (k + 1) / 2 : -(k / 2));
}

uint32_t truncated(Model &model, int max) {
    if (max < 1) return 0;
    if (max > 1) return model.read_ue();
    const uint32_t bit = model.read1();
    return bit == kFailed ? 2 : 1 - bit;
}

uint32_t apply(Op op, Model &model, int n) {
    Model before = model;
    switch (op) {
        case kRead:
            return model.read(n);
        case kRead1:
            return model.read1();
        case kSkip:
            return model.skip(n), 0;
        case kUn:
            return model.read_unary(1 << 30);
        case kTu:
            return model.read_unary(n);
        case kAlign:
            return model.align(false), 0;
        case kPeek:
            return model.peek(n);
        case kReadAlign:
            return model.align(false) + (n == 1 ? 0 : 256 * before.align(true));
        case kUe:
            return model.read_ue();
        case kSe:
            return signed_of(model.read_ue());
        default:
            return truncated(model, n);
    }
}

// A skip, then a look ahead: by two calls on a second reader where a debt between them leaves the model's ground.
void skip_and_peek(QORV_BSR &r, Model &model, int skipped, int n) {
    QORV_BSR other = r;
    const uint32_t seen = qorv_bsr_skip_peek(&r, skipped, n);
    qorv_bsr_skip(&other, skipped);
    const bool skip_succeeds = model.skip(skipped);
    const uint32_t expected = skip_succeeds ? qorv_bsr_peek(&other, n) : 0;
    ASSERT_EQ(seen, expected);
    ASSERT_EQ(std::tuple(r.code, r.leftbits, r.cur), std::tuple(other.code, other.leftbits, other.cur));
    if (skip_succeeds && model.left() >= 0) {
        ASSERT_EQ(seen, model.peek(n));
    }
}

void random_operation(test::Random &random, QORV_BSR &r, Model &model) {
    const int debt = std::max(0, -model.left());
    const Op op = static_cast<Op>(random.below(debt != 0 ? kPeek : kOps));
    int n = random.between(1, 32 - debt);
    if (op == kSkipPeek) return skip_and_peek(r, model, random.between(1, 13), n);
    if (op == kTu) n = random.between(0, 12);
    if (op == kTe) n = random.between(-1, 3);
    ASSERT_EQ(apply(op, r, n), apply(op, model, n)) << "operation " << op << " of " << n;
}

TEST(BitReader, FollowsTheBitsOperationByOperation) {
    test::Random random;
    for (int round = 0; round < 8000; round++) {
        const std::vector<uint8_t> bytes = random_bytes(random, random.below(40));
        test::GuardedBuffer data(bytes.size(), random.below(2) != 0 ? test::Flush::kEnd : test::Flush::kBegin);
        data.assign(bytes);
        data.make_read_only();
        Model model;
        for (const uint8_t byte : bytes) {
            for (int i = 7; i >= 0; i--) model.bits.push_back((byte >> i & 1) != 0);
        }
        const uint32_t refill = random.below(3);  // default, caller's, caller's with limits
        g_largest = refill == 2 ? random.between(1, 4) : 4;
        g_fails_from = refill == 2 && random.below(2) != 0 ? random.between(0, 40) : 1 << 30;
        model.largest_refill = g_largest;
        model.fails_from = g_fails_from;
        QORV_BSR r;
        const int32_t size = static_cast<int32_t>(bytes.size());
        qorv_bsr_init(&r, data.data(), size, refill == 0 ? nullptr : limited_refill);
        ASSERT_EQ(r.fn_flush, refill == 0 ? qorv_bsr_flush : limited_refill);
        for (int step = 0; step < 60; step++) {
            SCOPED_TRACE(testing::Message() << "round " << round << " step " << step << " refill " << refill);
            ASSERT_NO_FATAL_FAILURE(random_operation(random, r, model));
            // Looking ahead past a debt leaves the model's ground.
            if (model.left() < -16) break;
            if (model.left() < 0 && r.leftbits >= 0) break;
            ASSERT_NO_FATAL_FAILURE(expect_same_state(r, model, data.data()));
        }
        ASSERT_TRUE(r.beg == data.data() && r.end - r.beg == size - 1 && r.size == size);
    }
}

// One operation from a given state of the cache, over the bytes that are not loaded yet.
struct Case {
    const char *what;
    Op op;
    int n;
    uint32_t code;
    int32_t left;
    std::vector<uint8_t> ahead;
    uint32_t value, code_after;
    int32_t left_after, advanced;
};

const Case kCases[] = {
    {"a field of 32 over 3 bytes empties the reader", kRead, 32, 0, 0, {1, 2, 3}, 0x01020300, 0, 0, 3},
    {"one over a short tail leaves a debt", kRead, 31, 0, 0, {1, 2, 3}, 0x00810180, 0, -7, 3},
    {"33 bits of a new word: counts modulo 32", kRead, 32, 0, -1, {0x80, 0, 0, 3}, 1, 6, -1, 4},
    {"a debt is paid by reading one bit more", kRead, 8, 0, -1, {0x7F, 0x80, 0, 0}, 0xFF, 0, 23, 4},
    {"no byte ahead", kRead, 9, 0xFF000000, 8, {}, kFailed, 0, 0, 0},
    {"skip over a short tail", kSkip, 20, 0, 0, {0xFF}, 0, 0, -12, 1},
    {"peek with no room for a byte", kPeek, 32, 0xABCDEF10, 28, {0x9A}, 0xABCDEF19, 0xABCDEF10, 28, 0},
    {"the same past the end", kPeek, 32, 0xABCDEF10, 28, {}, 0xABCDEF10, 0xABCDEF10, 28, 0},
    {"peek tops up with whole bytes", kPeek, 16, 0xA0000000, 5, {1, 2, 3, 4}, 0xA008, 0xA0081018, 29, 3},
    {"peek in debt keeps the top bit of the new word", kPeek, 4, 0, -1, {0x80, 0, 0, 0}, 0, 1, 31, 4},
    {"31 cached ones and a zero are taken for 32 ones", kUn, 0, 0xFFFFFFFE, 32, {0x40, 0, 0, 0}, 32, 0x80000000, 31, 4},
    {"five cached ones: a debt, whatever follows", kUn, 0, 0xF8000000, 5, {0xFF}, 5, 0, -1, 0},
    {"an empty cache in debt", kUn, 0, 0, -1, {0xFF}, 0, 0, -2, 0},
    {"31 new ones: a shift of 32 is none", kUn, 0, 0, 0, {255, 255, 255, 254}, 31, 0xFFFFFFFE, 0, 4},
    {"32 new ones: a shift of 33 is one", kUn, 0, 0, 0, {255, 255, 255, 255}, 32, 0xFFFFFFFE, -1, 4},
    {"ones at the end of the data", kUn, 0, 0x80000000, 32, {}, 32, 0, -1, 0},
    {"exactly max ones take the zero along", kTu, 3, 0xE0000000, 16, {}, 3, 0, 12, 0},
    {"more than max do not", kTu, 3, 0xF0000000, 16, {}, 3, 0x80000000, 13, 0},
    {"fewer end with the zero", kTu, 3, 0x80000000, 16, {}, 1, 0, 14, 0},
    {"max is consumed of the new word", kTu, 40, 0x80000000, 32, {0xFF, 0x80, 0, 0}, 40, 0x80000000, -8, 4},
    {"max 0 of a full cache of ones", kTu, 0, 0xFFFFFFFF, 32, {}, 0, 0xFFFFFFFF, 32, 0},
    {"32 of a full cache: counts modulo 32", kTu, 32, 0xFFFFFFFF, 32, {}, 32, 0xFFFFFFFF, 0, 0},
    {"alignment in debt", kAlign, 0, 0, -1, {}, 0, 0, -8, 0},
    {"a code in debt: the dropped bit stands for the one", kUe, 0, 0, -1, {0x40, 0, 0, 0}, 0, 0x80000000, 31, 4},
    {"a code whose one is the last bit", kUe, 0, 0x10000000, 4, {0x60, 0, 0, 0}, 10, 0, 29, 4},
    {"the data ends in the zeros", kUe, 0, 0, 3, {0}, 0xFFFFFFFE, 0, 0, 1},
    {"the data ends behind the one", kUe, 0, 0x10000000, 4, {}, 0xFFFFFFFE, 0, 0, 0},
};

TEST(BitReader, OddStates) {
    for (const Case &c : kCases) {
        SCOPED_TRACE(c.what);
        for (const bool own_refill : {false, true}) {
            g_largest = 4;
            g_fails_from = 1 << 30;
            test::GuardedBuffer data(c.ahead.size());
            data.assign(c.ahead);
            QORV_BSR r;
            qorv_bsr_init(&r, data.data(), static_cast<int32_t>(data.size()), own_refill ? limited_refill : nullptr);
            r.code = c.code;
            r.leftbits = c.left;
            EXPECT_EQ(apply(c.op, r, c.n), c.value);
            EXPECT_EQ(r.code, c.code_after);
            EXPECT_EQ(r.leftbits, c.left_after);
            EXPECT_EQ(r.cur - r.beg, c.advanced);
        }
    }
}

int32_t forward(QORV_BSR *bsr, int32_t count) {
    return qorv_bsr_flush(bsr, count);
}

// The default refill is taken apart for speed; a caller's that passes the call on is not. Debts of any depth included.
TEST(BitReader, DefaultAndForwardedRefillAgreeInEveryState) {
    test::Random random;
    for (int round = 0; round < 20000; round++) {
        std::vector<uint8_t> bytes(40);
        const int32_t size = random.between(0, 40);
        const uint32_t ones = random.below(16);  // in sixteenths, what is not random
        for (uint8_t &byte : bytes) byte = static_cast<uint8_t>(random.below(16) < ones ? 0xFF : random() >> 24);
        QORV_BSR a, b;
        qorv_bsr_init(&a, bytes.data(), size, nullptr);
        qorv_bsr_init(&b, bytes.data(), size, forward);
        for (int step = 0; step < 40; step++) {
            const Op op = static_cast<Op>(random.below(kOps));
            const int n = random.between(1, 32), more = random.between(1, 32);
            ASSERT_EQ(apply(op, a, n, more), apply(op, b, n, more)) << "operation " << op << " of " << n;
            ASSERT_EQ(std::tuple(a.code, a.leftbits, a.cur), std::tuple(b.code, b.leftbits, b.cur)) << op;
        }
    }
}

TEST(BitReader, ReadsTheNextWordAloneAfterAUnaryCodeOfAWholeWord) {
    const uint8_t bytes[] = {0xFF, 0xFF, 0xFF, 0xFE, 0x12, 0x34, 0x56, 0x78};
    for (const QORV_BSR_FN_FLUSH refill : {qorv_bsr_flush, forward}) {
        QORV_BSR r;
        qorv_bsr_init(&r, bytes, sizeof bytes, refill);
        EXPECT_EQ(qorv_bsr_read_un(&r), 31u);
        // Ones remain in the cache, below no bit that counts: the next value alone is mixed with them.
        for (const uint32_t byte : {0xFFu, 0x34u, 0x56u, 0x78u}) EXPECT_EQ(qorv_bsr_read(&r, 8), byte);
    }
}

TEST(BitReader, SignedCodesMapAlternately) {
    // 1, 010, 011, 00100, 00101
    const uint8_t data[] = {0xA6, 0x42, 0x80};
    QORV_BSR r;
    qorv_bsr_init(&r, data, sizeof data, nullptr);
    for (const int32_t value : {0, 1, -1, 2, -2}) EXPECT_EQ(qorv_bsr_read_se(&r), value);
    qorv_bsr_init(&r, data, 0, nullptr);
    EXPECT_EQ(qorv_bsr_read_se(&r), 1) << "the failure, mapped like a number";
}

TEST(BitReader, Logarithms) {
    EXPECT_EQ(qorv_bsr_clz_in_code(0), 32u);
    EXPECT_EQ(qorv_floor_log2(0), -1);
    EXPECT_EQ(qorv_ceil_log2(0), 0);
    for (int i = 0; i < 32; i++) {
        const uint32_t power = 1u << i;
        EXPECT_EQ(qorv_bsr_clz_in_code(power | power >> 1), static_cast<uint32_t>(31 - i));
        EXPECT_EQ(qorv_floor_log2(power), i);
        EXPECT_EQ(qorv_ceil_log2(power), i);
        if (i == 0) continue;
        EXPECT_EQ(qorv_floor_log2(power - 1), i - 1);
        EXPECT_EQ(qorv_ceil_log2(power + 1), i + 1);
    }
}

}  // namespace
