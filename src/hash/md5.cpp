#include <string.h>

#include "buffer/colour_space.h"
#include "core/hide_origin.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {

constexpr uint32_t kBlock = 64;     // bytes
constexpr uint32_t kLengthAt = 56;  // of the message's length in the last block
constexpr uint32_t kInitial[4] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};

// floor(2^32 |sin(i + 1)|)
constexpr uint32_t kSine[64] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391,
};
constexpr int kRotation[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
// Message word of step i: (factor x i + start) mod 16, by round.
constexpr int kWordFactor[4] = {1, 5, 3, 7};
constexpr int kWordStart[4] = {0, 1, 5, 0};

inline uint32_t load_little_endian(const uint8_t *from) {
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
    uint32_t word;
    memcpy(&word, from, sizeof word);
    return word;
}

constexpr uint32_t rotate_left(uint32_t value, int bits) {
    return value << bits | value >> (32 - bits);
}

// sum + f(b, c, d), f being the function of the round. b is the value that the previous step has just made, and the
// time of a block the length of the chain through it: additions that need not wait for b come first and stay there.
template <int kRound>
inline uint32_t add_mixed(uint32_t sum, uint32_t b, uint32_t c, uint32_t d) {
    if constexpr (kRound == 0) return sum + (d ^ (b & (c ^ d)));
    if constexpr (kRound == 1) {
        // The terms share no bit, so they may be added one by one.
        sum += c & ~d;
        hide_origin(sum);
        return sum + (b & d);
    }
    if constexpr (kRound == 2) return sum + (b ^ (c ^ d));
    if constexpr (kRound == 3) return sum + (c ^ (b | ~d));
}

template <int kStep>
inline void step(uint32_t &a, uint32_t b, uint32_t c, uint32_t d, const uint8_t *block) {
    constexpr int kRound = kStep / 16;
    constexpr int kWord = (kWordFactor[kRound] * kStep + kWordStart[kRound]) % 16;
    uint32_t sum = a + kSine[kStep] + load_little_endian(block + 4 * kWord);
    hide_origin(sum);
    a = b + rotate_left(add_mixed<kRound>(sum, b, c, d), kRotation[kRound][kStep % 4]);
}

template <int kStep = 0>
[[gnu::always_inline]] inline void all_steps(uint32_t &a, uint32_t &b, uint32_t &c, uint32_t &d, const uint8_t *block) {
    if constexpr (kStep < 64) {
        step<kStep>(a, b, c, d, block);
        step<kStep + 1>(d, a, b, c, block);
        step<kStep + 2>(c, d, a, b, block);
        step<kStep + 3>(b, c, d, a, block);
        all_steps<kStep + 4>(a, b, c, d, block);
    }
}

// The compression function over whole blocks.
void compress(uint32_t (&state)[4], const uint8_t *data, size_t blocks) {
    // Four scalars: of an array the compilers make a vector, which costs a transfer of each value in every block.
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
    for (; blocks != 0; blocks--, data += kBlock) {
        const uint32_t before[4] = {a, b, c, d};
        all_steps(a, b, c, d, data);
        a += before[0];
        b += before[1];
        c += before[2];
        d += before[3];
    }
    state[0] = a;
    state[1] = b;
    state[2] = c;
    state[3] = d;
}

uint32_t fill_level(const QORV_MD5 &md5) {
    return (md5.count[0] >> 3) % kBlock;
}

void add_length(QORV_MD5 &md5, uint32_t bytes) {
    const uint32_t bits = bytes << 3;
    md5.count[0] += bits;
    md5.count[1] += (bytes >> 29) + (md5.count[0] < bits ? 1 : 0);
}

void update(QORV_MD5 &md5, const uint8_t *data, size_t len) {
    const uint32_t level = fill_level(md5);
    add_length(md5, static_cast<uint32_t>(len));
    if (level != 0) {
        const size_t missing = kBlock - level;
        if (len < missing) {
            memcpy(md5.buffer + level, data, len);
            return;
        }
        memcpy(md5.buffer + level, data, missing);
        compress(md5.state, md5.buffer, 1);
        data += missing;
        len -= missing;
    }
    compress(md5.state, data, len / kBlock);
    memcpy(md5.buffer, data + (len - len % kBlock), len % kBlock);
}

void hash_rows(QORV_MD5 &md5, const QORV_IMGB &imgb, int plane, int32_t first, int32_t end, int32_t width) {
    const uint8_t *row = static_cast<const uint8_t *>(imgb.a[plane]) + static_cast<ptrdiff_t>(first) * imgb.s[plane];
    for (int32_t r = first; r < end; r++, row += imgb.s[plane]) {
        update(md5, row, static_cast<uint32_t>(width));
    }
}

}  // namespace

extern "C" QORV_MD5 *qorv_md5_init(QORV_MD5 *md5) {
    memcpy(md5->state, kInitial, sizeof kInitial);
    memset(md5->count, 0, sizeof md5->count);
    return md5;
}

extern "C" void qorv_md5_update(QORV_MD5 *md5, const void *data, uint32_t len) {
    if (len != 0) update(*md5, static_cast<const uint8_t *>(data), len);  // data may be null for no bytes
}

extern "C" void qorv_md5_update_16(QORV_MD5 *md5, const uint16_t *samples, uint32_t n) {
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the samples are hashed as they lie in memory");
    qorv_md5_update(md5, samples, 2 * n);
}

extern "C" void qorv_md5_finish(QORV_MD5 *md5, uint8_t *digest) {
    uint32_t level = fill_level(*md5);
    md5->buffer[level++] = 0x80;
    if (level > kLengthAt) {
        memset(md5->buffer + level, 0, kBlock - level);
        compress(md5->state, md5->buffer, 1);
        level = 0;
    }
    memset(md5->buffer + level, 0, kLengthAt - level);
    memcpy(md5->buffer + kLengthAt, md5->count, sizeof md5->count);
    compress(md5->state, md5->buffer, 1);
    memcpy(digest, md5->state, sizeof md5->state);
    *md5 = {};
}

extern "C" int32_t qorv_md5_imgb(const QORV_IMGB *imgb, uint8_t *digest) {
    if (!is_yuv_family(imgb->cs)) return QORV_ERR_UNSUPPORTED_CS;
    QORV_MD5 md5;
    qorv_md5_init(&md5);
    const int32_t width = imgb->w - imgb->x;
    hash_rows(md5, *imgb, 0, imgb->y, imgb->h, width);
    if (imgb->cs != QORV_CS_YUV400) {
        for (int plane = 1; plane <= 2; plane++) {
            hash_rows(md5, *imgb, plane, imgb->y >> 1, (imgb->h + 1) >> 1, (width + 1) >> 1);
        }
    }
    qorv_md5_finish(&md5, digest);
    return QORV_OK;
}
