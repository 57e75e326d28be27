#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "qorv_skia.h"
#include "support/guarded_buffer.h"
#include "support/random.h"

namespace {

// The writer with a cache of 32 single bits.
struct Model {
    bool cache[32] = {};
    int left = 32;
    std::vector<uint8_t> stored;
    int size;

    int margin() const { return size - 1 - static_cast<int>(stored.size()); }  // end - cur
    uint32_t code() const {
        uint32_t value = 0;
        for (const bool bit : cache) value = value << 1 | (bit ? 1 : 0);
        return value;
    }
    void put(int at, bool bit) {
        if (at < 32) cache[at] = cache[at] || bit;
    }
    void store(int bytes) {
        for (int i = 0; i < bytes; i++) stored.push_back(static_cast<uint8_t>(code() >> (24 - 8 * i)));
        std::fill(std::begin(cache), std::end(cache), false);
        left = 32;
    }
    int32_t write(uint32_t value, int n) {
        const int at = 32 - left, room = left;
        for (int i = 0; i < n; i++) put(at % 32 + i, (value >> (n - 1 - i) & 1) != 0);
        if (room > n) {
            left -= n;
            return QORV_OK;
        }
        if (margin() < 4) return QORV_ERR;
        store(4);
        left = room - n + 32;
        // What did not fit; a whole word that met an empty cache stays, as a shift by 32 is none.
        const int first = room == 32 ? 0 : room;
        for (int i = first; i < n; i++) put(i - first, (value >> (n - 1 - i) & 1) != 0);
        return QORV_OK;
    }
    int32_t write1(bool bit) {
        left--;
        put((63 - left) % 32, bit);
        if (left != 0) return QORV_OK;
        if (margin() < 0) return QORV_ERR;
        store(4);
        return QORV_OK;
    }
    void write_ue(uint32_t value) {
        int zeros = 0;
        while (((value + 1) >> zeros) > 1) zeros++;
        write(value + 1, 2 * zeros + 1);
    }
    int32_t sink() {
        const int bytes = (39 - left) >> 3;
        if (margin() < bytes) return QORV_ERR;
        store(bytes);
        return QORV_OK;
    }
};

int g_flushes;
int32_t counting_flush(QORV_BSW *bsw) {
    g_flushes++;
    for (int32_t n = (39 - bsw->leftbits) >> 3; n > 0; n--) {
        *bsw->cur++ = static_cast<uint8_t>(bsw->code >> 24);
        bsw->code <<= 8;
    }
    return 7;
}

uint32_t code_number(int32_t value) {
    return static_cast<uint32_t>(value > 0 ? 2 * value - 1 : -2 * value);
}

void random_operation(test::Random &random, QORV_BSW &w, Model &model, bool single_bits) {
    const int n = random.between(1, 32);
    const uint32_t field = random() >> (32 - n);
    const uint32_t number = (random() & 0xFFFF) >> random.below(17);
    const uint32_t ue = std::min(number, 65534u);
    const int32_t se = static_cast<int32_t>(ue / 2) * (random.below(2) != 0 ? 1 : -1);
    switch (random.below(single_bits ? 8 : 5)) {
        case 0:
        case 1:
            ASSERT_EQ(qorv_bsw_write(&w, field, n), model.write(field, n));
            break;
        case 2:
            qorv_bsw_write_ue(&w, ue);
            model.write_ue(ue);
            break;
        case 3:
            qorv_bsw_write_se(&w, se);
            model.write_ue(code_number(se));
            break;
        case 4:
            if (n < 8) {
                ASSERT_EQ(qorv_bsw_sink(&w), model.sink());
            } else {
                qorv_bsw_write_te(&w, ue, n - 6);
                model.write_ue(ue);
            }
            break;
        case 5:
            qorv_bsw_write_te(&w, field, n % 2);
            if (n % 2 == 1) model.write1(field % 2 == 0);
            break;
        default:
            ASSERT_EQ(qorv_bsw_write1(&w, field), model.write1(field % 2 != 0));
    }
}

TEST(BitWriter, FollowsTheBitsOperationByOperation) {
    test::Random random;
    for (int round = 0; round < 10000; round++) {
        // Single bits are stored four bytes at a time as long as there is room for one, so up to 3 bytes go further.
        const bool single_bits = random.below(2) != 0;
        const uint32_t size = random.below(40);
        test::GuardedBuffer data(size + (single_bits ? 3 : 0));
        data.fill(0);
        const bool own_flush = random.below(2) != 0;
        Model model;
        model.size = static_cast<int>(size);
        QORV_BSW w;
        ASSERT_EQ(qorv_bsw_init(&w, data.data(), model.size, own_flush ? counting_flush : nullptr), &w);
        for (int step = 0; step < 40; step++) {
            SCOPED_TRACE(testing::Message() << "round " << round << " step " << step << " size " << size);
            ASSERT_NO_FATAL_FAILURE(random_operation(random, w, model, single_bits));
            ASSERT_EQ(w.leftbits, model.left);
            ASSERT_EQ(w.code, model.code());
            ASSERT_EQ(w.cur - w.beg, static_cast<ptrdiff_t>(model.stored.size()));
        }
        ASSERT_TRUE(std::equal(model.stored.begin(), model.stored.end(), data.data()));
        ASSERT_TRUE(w.beg == data.data() && w.end - w.beg == model.size - 1 && w.size == model.size);
        ASSERT_TRUE(data.slack_intact());
    }
}

TEST(BitWriter, EndsWithTheFlushsResult) {
    uint8_t data[8] = {};
    QORV_BSW w;
    qorv_bsw_init(&w, data, sizeof data, nullptr);
    qorv_bsw_write(&w, 5, 3);
    EXPECT_EQ(qorv_bsw_deinit(&w), 0);
    EXPECT_EQ(data[0], 0xA0);
    EXPECT_EQ(w.cur - w.beg, 1);
    EXPECT_EQ(w.leftbits, 29) << "nothing is reset";
    g_flushes = 0;
    qorv_bsw_init(&w, data, sizeof data, counting_flush);
    qorv_bsw_write(&w, 1, 32 - 1);
    qorv_bsw_write(&w, 1, 1);
    EXPECT_EQ(g_flushes, 1);
    EXPECT_EQ(qorv_bsw_deinit(&w), 7);
    EXPECT_EQ(w.cur - w.beg, 4) << "nothing was pending";
}

// Every supported value, through a reader whose codes meet every position in the word.
TEST(BitWriter, CodesReadBack) {
    std::vector<uint8_t> data(65536 * 8);
    QORV_BSW w;
    QORV_BSR r;
    qorv_bsw_init(&w, data.data(), static_cast<int32_t>(data.size()), nullptr);
    int64_t bits = 0;
    for (uint32_t v = 0; v <= 65534; v++) {
        qorv_bsw_write_ue(&w, v);
        qorv_bsw_write_se(&w, static_cast<int32_t>(v) - 32767);
        bits += qorv_bsw_size_ue(v) + qorv_bsw_size_se(static_cast<int32_t>(v) - 32767);
        ASSERT_EQ(8 * (w.cur - w.beg) + 32 - w.leftbits, bits) << v;
    }
    ASSERT_EQ(qorv_bsw_sink(&w), QORV_OK);
    qorv_bsr_init(&r, data.data(), static_cast<int32_t>(w.cur - w.beg), nullptr);
    for (uint32_t v = 0; v <= 65534; v++) {
        ASSERT_EQ(qorv_bsr_read_ue(&r), v);
        ASSERT_EQ(qorv_bsr_read_se(&r), static_cast<int32_t>(v) - 32767);
    }
    for (const auto &[value, length] : {std::pair{0, 1}, {1, 3}, {2, 3}, {254, 15}, {255, 17}, {65534, 31}}) {
        EXPECT_EQ(qorv_bsw_size_ue(static_cast<uint32_t>(value)), length);
    }
}

}  // namespace
