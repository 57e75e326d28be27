#include <gtest/gtest.h>

#include <vector>

#include "qorv_skia.h"
#include "support/guarded_buffer.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

// The rules by bit positions, one byte position after the other. -1: go on.
struct Bits {
    const uint8_t *p;
    int at(int from, int count) const {
        int value = 0;
        for (int i = from; i < from + count; i++) value = value << 1 | (p[i / 8] >> (7 - i % 8) & 1);
        return value;
    }
};

int picture_header(Bits b, bool extended_counts) {
    if (b.at(0, 22) != 0x20) return -1;
    if (b.at(30, 2) != 2) return 0;
    if (b.at(35, 3) != 7) return b.at(38, 1) == 0;
    if (!extended_counts) return -1;
    return b.at(38, 3) == 1 ? b.at(59, 3) == 0 : b.at(41, 3) == 0;
}

int rule_at(int32_t id, Bits b) {
    const bool start_code = b.at(0, 24) == 1;
    switch (id) {
        case QORV_MT_VID_MPEG4: {
            const int header = picture_header(b, false);
            if (header >= 0) return header;
            return b.at(0, 32) == 0x1B6 ? b.at(32, 2) == 0 : -1;
        }
        case QORV_MT_VID_H264:
            if (!start_code || (b.at(27, 5) != 1 && b.at(27, 5) != 5)) return -1;
            return b.at(27, 5) == 5;
        case QORV_MT_VID_HEVC:
            return start_code ? b.at(25, 6) == 19 || b.at(25, 6) == 20 : -1;
        default:
            return picture_header(b, true);
    }
}

int rule(int32_t id, int needed, const uint8_t *data, int size) {
    for (int p = 0; p <= size - needed; p++) {
        const int answer = rule_at(id, {data + p});
        if (answer >= 0) return answer;
    }
    return 0;
}

// Bytes among which start codes of every kind and their halves are frequent.
uint8_t start_code_byte(test::Random &random) {
    static const uint8_t likely[] = {0, 0, 0, 0, 0, 1, 1, 0x80, 0x82, 0xB6, 0x65, 0x41, 0x26, 0x28, 0x1C, 0x1E};
    const uint32_t pick = random.below(20);
    return pick < std::size(likely) ? likely[pick] : static_cast<uint8_t>(random());
}

TEST(KeyFrame, TheFirstDecidingStartCode) {
    struct Codec {
        int32_t id;
        int needed;  // bytes from a start code's first
        int over;    // bytes that may be read past the end
    };
    const Codec codecs[] = {{QORV_MT_VID_MPEG4, 5, 0},
                            {QORV_MT_VID_H263, 7, 1},
                            {QORV_MT_VID_H263_OTHER, 7, 1},
                            {QORV_MT_VID_H264, 4, 0},
                            {QORV_MT_VID_HEVC, 4, 0}};
    test::Random random;
    int keys = 0;
    for (const Codec &codec : codecs) {
        for (int round = 0; round < 6000; round++) {
            const int size = random.between(0, round % 8 == 0 ? 200 : 30);
            const bool sparse = random.below(2) != 0;  // one code in data without any
            test::GuardedBuffer data(static_cast<size_t>(size + codec.over));
            data.generate([&] { return sparse ? 0xA0 | random.below(16) : start_code_byte(random); });
            if (sparse && size >= 8) {
                const int at = random.between(0, size - 8);
                for (int i = 0; i < 8; i++) data.data()[at + i] = i < 2 ? 0 : start_code_byte(random);
                data.data()[at + 2] = random.below(2) != 0 ? 1 : static_cast<uint8_t>(0x80 + random.below(4));
            }
            data.make_read_only();
            const int expected = rule(codec.id, codec.needed, data.data(), size);
            keys += expected;
            ASSERT_EQ(qorv_is_vkeyfrm(codec.id, data.data(), size), expected)
                << codec.id << " " << testing::PrintToString(data.bytes());
        }
    }
    EXPECT_GT(keys, 500) << "the data decides nothing";
}

TEST(KeyFrame, FramesOfEachCodec) {
    struct Case {
        int32_t id;
        Bytes data;
        int32_t key;
    };
    const Case cases[] = {
        {QORV_MT_VID_H264, {0, 0, 1, 0x67, 9, 9, 0, 0, 1, 0x68, 0, 0, 1, 0x65, 1}, 1},
        {QORV_MT_VID_H264, {0, 0, 1, 0x67, 9, 9, 0, 0, 1, 0x41, 0, 0, 1, 0x65}, 0},
        {QORV_MT_VID_H264, {0, 0, 0, 1, 0x65}, 1},
        {QORV_MT_VID_H264, {0, 0, 1, 0x67, 0, 0, 1}, 0},
        {QORV_MT_VID_HEVC, {0, 0, 1, 0x40, 1, 0, 0, 1, 0x26, 1}, 0},
        {QORV_MT_VID_HEVC, {0, 0, 0, 1, 0x26, 1}, 1},
        {QORV_MT_VID_HEVC, {0, 0, 1, 0x28}, 1},
        {QORV_MT_VID_MPEG4, {0, 0, 1, 0xB6, 0x10}, 1},
        {QORV_MT_VID_MPEG4, {0, 0, 1, 0xB6, 0x50}, 0},
        {QORV_MT_VID_MPEG4, {0, 0, 1, 0xB6}, 0},
        {QORV_MT_VID_MPEG4, {0, 0, 0x80, 2, 0x1C, 0, 0, 1, 0xB6, 0x10}, 1},
        {QORV_MT_VID_H263, {0, 0, 0x80, 2, 0x08, 0, 0}, 1},
        {QORV_MT_VID_H263, {0, 0, 0x80, 2, 0x0A, 0, 0}, 0},
        {QORV_MT_VID_H263_OTHER, {0, 0, 0x80, 2, 0x1C, 0x80, 0, 0x1C}, 0},
        {QORV_MT_VID_WMV1, {0x3F}, 1},
        {QORV_MT_VID_WMV1, {0x40}, 0},
        {QORV_MT_VID_DIV3, {0x3F}, 1},
        {QORV_MT_VID_DIV3, {0x80}, 0},
        {QORV_MT_VID_WMV2, {0x7F}, 1},
        {QORV_MT_VID_WMV2, {0x80}, 0},
        {QORV_MT_VID_HFYU, {0xFF}, 1},
        {QORV_MT_VID_MP43, {0}, 0},
        {QORV_MT_NONE, {0, 0, 1, 0x65}, 0},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(qorv_is_vkeyfrm(c.id, c.data.data(), static_cast<int32_t>(c.data.size())), c.key)
            << c.id << " " << testing::PrintToString(c.data);
    }
    EXPECT_EQ(qorv_is_vkeyfrm(QORV_MT_VID_HFYU, nullptr, 0), 1);
    EXPECT_EQ(qorv_is_vkeyfrm(QORV_MT_VID_H264, nullptr, -1), 0);
}

}  // namespace
