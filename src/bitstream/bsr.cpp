#include "bitstream/bits.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {

constexpr uint32_t kReadFailed = 0xFFFFFFFF;
constexpr uint32_t kRefillFailed = static_cast<uint32_t>(QORV_ERR_BSR_REFILL);

// True when the default refill is in use and finds a whole word: load_word() then does its work in place.
inline bool word_at_hand(const QORV_BSR &r) {
    return r.fn_flush == qorv_bsr_flush && r.end - r.cur >= kWordBytes - 1;
}

inline void load_word(QORV_BSR &r) {
    r.code = load_big_endian(r.cur);
    r.leftbits = 8 * kWordBytes;
    r.cur += kWordBytes;
}

inline int32_t refill(QORV_BSR &r) {
    if (!word_at_hand(r)) return r.fn_flush(&r, kWordBytes);
    load_word(r);
    return QORV_OK;
}

// Takes n bits, 0 to 32, that are in the cache.
inline uint32_t take(QORV_BSR &r, int32_t n) {
    const uint64_t split = uint64_t{r.code} << n;
    r.code = static_cast<uint32_t>(split);
    r.leftbits -= n;
    return static_cast<uint32_t>(split >> 32);
}

// For the places where a debt or a short refill may leave fewer bits in the cache than are consumed.
inline void consume(QORV_BSR &r, int32_t n) {
    // A whole word empties the cache, whatever it held.
    r.leftbits = n == 32 ? 0 : r.leftbits - n;
    r.code = n == 32 ? 0 : shift_left(r.code, n);
}

inline uint32_t take_short(QORV_BSR &r, int32_t n) {
    const uint32_t value = shift_right(r.code, 32 - n);
    consume(r, n);
    return value;
}

// The operations proper hold the paths without a call, so that they need no stack frame; what may call the refill
// stands apart.
[[gnu::noinline]] uint32_t read_refilling(QORV_BSR &r, int32_t n) {
    const uint32_t high = shift_right(r.code, 32 - n);
    const int32_t left = r.leftbits;
    if (refill(r) != QORV_OK) return kReadFailed;
    return high | take_short(r, n - left);
}

// Where the cached bits end is as good as random to a processor's branch prediction, so the next word is always loaded
// and, where it is not needed, masked out. The new cache comes from one word alone: after a unary code of a whole word,
// ones remain below the bits that count.
inline uint32_t read(QORV_BSR &r, int32_t n) {
    const int32_t left = r.leftbits;
    if (left >= 0 && word_at_hand(r)) [[likely]] {
        const int32_t missing = n - left;
        const uint32_t needed = 0 - static_cast<uint32_t>(missing > 0);  // a mask
        const uint64_t word = load_big_endian(r.cur) & needed;
        const uint64_t cached = uint64_t{r.code} << n, more = word << (missing & 63);
        r.code = static_cast<uint32_t>(missing > 0 ? more : cached);
        r.leftbits = static_cast<int32_t>(needed & 32) - missing;
        r.cur += needed & kWordBytes;
        return static_cast<uint32_t>((cached | more) >> 32);
    }
    return n <= left ? take(r, n) : read_refilling(r, n);
}

[[gnu::noinline]] uint32_t read1_refilling(QORV_BSR &r) {
    return r.fn_flush(&r, kWordBytes) != QORV_OK ? kReadFailed : take(r, 1);
}

inline uint32_t read1(QORV_BSR &r) {
    if (r.leftbits == 0) [[unlikely]] {
        if (!word_at_hand(r)) return read1_refilling(r);
        load_word(r);
    }
    return take(r, 1);
}

// Code number + 1; 0xFFFFFFFF when the data ends inside the code.
[[gnu::noinline]] uint32_t read_golomb_refilling(QORV_BSR &r) {
    if (r.code >> 31 != 0) return take(r, 1);
    int32_t zeros = 0;
    if (r.code == 0) {
        zeros = r.leftbits;
        refill(r);  // a failure shows when the bits after the zeros are wanted
    }
    const int32_t more = leading_zeros(r.code);
    if (zeros + more == 0) {
        consume(r, 1);
        return 1;
    }
    const int32_t rest = zeros + 2 * more + 1;
    if (r.leftbits >= rest) return take_short(r, rest);
    const uint32_t high = shift_right(r.code, 32 - rest);
    const int32_t left = r.leftbits;
    if (refill(r) != QORV_OK) return kRefillFailed + 1;
    return high | take_short(r, rest - left);
}

inline uint32_t read_golomb(QORV_BSR &r) {
    // A cache of zeros counts 31 of them here, so that the code does not fit.
    const int32_t length = 2 * __builtin_clz(r.code | 1) + 1;
    if (length > r.leftbits) [[unlikely]]
        return read_golomb_refilling(r);
    return take(r, length);
}

// The test of the unary codes for a cache that holds ones alone. It looks one bit further than the cached ones unless
// all 32 are, and then at the first alone.
inline bool all_ones(const QORV_BSR &r) {
    return r.leftbits == 0 || shift_right(~r.code, 31 - r.leftbits) == 0;
}

inline bool skip(QORV_BSR &r, int32_t n) {
    if (n > r.leftbits) {
        const int32_t left = r.leftbits;
        if (refill(r) != QORV_OK) return false;
        n -= left;
    }
    consume(r, n);
    return true;
}

[[gnu::noinline]] uint32_t peek_refilling(QORV_BSR &r, int32_t n) {
    const int32_t room = 32 - r.leftbits;
    if (room >= 8) {
        const uint32_t code = r.code;
        const int32_t left = r.leftbits;
        r.fn_flush(&r, room >> 3);  // a failure leaves zeros
        r.code = code | shift_right(r.code, left);
        r.leftbits += left;
    }
    uint32_t value = shift_right(r.code, 32 - n);
    const int32_t missing = n - r.leftbits;
    if (missing >= 1 && r.cur <= r.end) value |= shift_right(*r.cur, 8 - missing);
    return value;
}

inline uint32_t peek(QORV_BSR &r, int32_t n) {
    return n <= r.leftbits ? shift_right(r.code, 32 - n) : peek_refilling(r, n);
}

}  // namespace

extern "C" void qorv_bsr_init(QORV_BSR *bsr, const void *buf, int32_t size, QORV_BSR_FN_FLUSH fn_flush) {
    const uint8_t *begin = static_cast<const uint8_t *>(buf);
    *bsr = {0, 0, begin, begin + size - 1, begin, size, fn_flush != nullptr ? fn_flush : qorv_bsr_flush};
}

extern "C" int32_t qorv_bsr_flush(QORV_BSR *bsr, int32_t count) {
    const ptrdiff_t left = bsr->end - bsr->cur + 1;
    const int32_t n = left < count ? static_cast<int32_t>(left) : count;
    bsr->code = 0;
    bsr->leftbits = 0;
    if (n <= 0) return QORV_ERR;
    if (n >= kWordBytes) {
        bsr->code = load_big_endian(bsr->cur);
    } else {
        for (int32_t i = 0; i < n; i++) bsr->code |= static_cast<uint32_t>(bsr->cur[i]) << (24 - 8 * i);
    }
    bsr->cur += n;
    bsr->leftbits = 8 * n;
    return QORV_OK;
}

extern "C" void qorv_bsr_skip(QORV_BSR *bsr, int32_t n) {
    skip(*bsr, n);
}

extern "C" uint32_t qorv_bsr_skip_peek(QORV_BSR *bsr, int32_t skipped, int32_t n) {
    return skip(*bsr, skipped) ? peek(*bsr, n) : 0;
}

extern "C" uint32_t qorv_bsr_peek(QORV_BSR *bsr, int32_t n) {
    return peek(*bsr, n);
}

extern "C" uint32_t qorv_bsr_read(QORV_BSR *bsr, int32_t n) {
    return read(*bsr, n);
}

extern "C" uint32_t qorv_bsr_read1(QORV_BSR *bsr) {
    return read1(*bsr);
}

extern "C" uint32_t qorv_bsr_clz_in_code(uint32_t code) {
    return static_cast<uint32_t>(leading_zeros(code));
}

extern "C" void qorv_bsr_skip_align8(QORV_BSR *bsr) {
    bsr->code <<= bsr->leftbits & 7;
    bsr->leftbits &= ~7;
}

extern "C" uint32_t qorv_bsr_read_align8(QORV_BSR *bsr, uint32_t *count) {
    const int32_t n = bsr->leftbits & 7;
    if (count != nullptr) *count = static_cast<uint32_t>(n);
    return take(*bsr, n);
}

extern "C" uint32_t qorv_bsr_read_ue(QORV_BSR *bsr) {
    return read_golomb(*bsr) - 1;
}

extern "C" int32_t qorv_bsr_read_se(QORV_BSR *bsr) {
    // Of k + 1 the lowest bit is the sign and the others are the magnitude.
    const uint32_t value = read_golomb(*bsr);
    const int32_t magnitude = static_cast<int32_t>(value) >> 1;
    return (value & 1) != 0 ? -magnitude : magnitude;
}

extern "C" uint32_t qorv_bsr_read_te(QORV_BSR *bsr, int32_t max) {
    if (max > 1) return qorv_bsr_read_ue(bsr);
    if (max < 1) return 0;
    const uint32_t bit = read1(*bsr);
    return bit == kReadFailed ? 2 : bit ^ 1;
}

extern "C" uint32_t qorv_bsr_read_un(QORV_BSR *bsr) {
    QORV_BSR &r = *bsr;
    int32_t carried = 0;
    if (all_ones(r)) {
        carried = r.leftbits;
        refill(r);  // a failure leaves an empty cache: no more ones
    }
    const int32_t ones = leading_zeros(~r.code);
    r.code = shift_left(r.code, ones + 1);
    r.leftbits -= ones + 1;
    return static_cast<uint32_t>(ones + carried);
}

extern "C" uint32_t qorv_bsr_read_tu(QORV_BSR *bsr, int32_t max) {
    QORV_BSR &r = *bsr;
    int32_t carried = 0;
    if (all_ones(r)) {
        if (r.leftbits >= max) {
            r.code = shift_left(r.code, max);
            r.leftbits -= max;
            return static_cast<uint32_t>(max);
        }
        carried = r.leftbits;
        refill(r);  // a failure leaves an empty cache: no more ones
    }
    const int32_t ones = leading_zeros(~r.code);
    const int32_t total = ones + carried;
    // Exactly `max` ones take the zero after them along, more than that do not.
    consume(r, total > max ? max : ones + 1);
    return static_cast<uint32_t>(total < max ? total : max);
}

extern "C" int32_t qorv_ceil_log2(uint32_t v) {
    const int32_t zeros = leading_zeros(v);
    return shift_right(0x80000000, zeros) == v ? 31 - zeros : 32 - zeros;
}

extern "C" int32_t qorv_floor_log2(uint32_t v) {
    return 31 - leading_zeros(v);
}
