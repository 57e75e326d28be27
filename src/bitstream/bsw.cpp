#include "bitstream/bits.h"
#include "core/hide_origin.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {

constexpr int32_t kWordBits = 32;
// Above this the codes are longer than a field can be; the length is held there.
constexpr int32_t kMaxLog2 = 16;
constexpr uint32_t kMaxPlainValue = (1u << kMaxLog2) - 2;

// Bytes that hold written bits; below 0 for a record that claims more free bits than a word has.
inline int32_t pending_bytes(const QORV_BSW &w) {
    return (kWordBits + 7 - w.leftbits) >> 3;
}

inline void reset_cache(QORV_BSW &w) {
    w.code = 0;
    w.leftbits = kWordBits;
}

int32_t flush_bytes(QORV_BSW *bsw) {
    const int32_t n = pending_bytes(*bsw);
    for (int32_t i = 0; i < n; i++) {
        *bsw->cur++ = static_cast<uint8_t>(bsw->code >> 24);
        bsw->code <<= 8;
    }
    return QORV_OK;
}

inline void flush_full_cache(QORV_BSW &w) {
    if (w.fn_flush == flush_bytes) {
        store_big_endian(w.cur, w.code);
        w.cur += kWordBytes;
    } else {
        w.fn_flush(&w);
    }
}

// The part of a write that fills the cache up: stores it and keeps the low bits of the field, which stands at the top
// of `field`. A byte of margin beyond the four that are stored is asked for.
inline int32_t write_across(QORV_BSW &w, uint32_t field, int32_t n) {
    if (w.end - w.cur < kWordBytes) return QORV_ERR;
    const int32_t room = w.leftbits;
    w.leftbits = 0;
    flush_full_cache(w);
    w.code = shift_left(field, room);
    w.leftbits = room - n + kWordBits;
    return QORV_OK;
}

// A write to any record. What is apart from append(): the caller's own flush, the end of the buffer, a field of 32 bits
// and a record that claims free bits outside 1 to 32.
[[gnu::noinline]] int32_t write_any(QORV_BSW &w, uint32_t value, int32_t n) {
    const uint32_t field = shift_left(value, kWordBits - n);
    w.code |= shift_right(field, kWordBits - w.leftbits);
    if (w.leftbits <= n) return write_across(w, field, n);
    w.leftbits -= n;
    return QORV_OK;
}

// Whether append() may write n bits.
inline bool is_plain(const QORV_BSW &w, int32_t n) {
    const uint32_t room = static_cast<uint32_t>(w.leftbits), bits = static_cast<uint32_t>(n);
    return w.fn_flush == flush_bytes && w.end - w.cur >= kWordBytes && ((room - 1) | bits) < kWordBits;
}

// Writes n bits, which stand at the top of `field`. Where the cache fills up is as good as random to a processor's
// branch prediction: a word is always stored, over the record's own if it is not full.
inline void append(QORV_BSW &w, uint32_t field, int32_t n) {
    const int64_t left = int64_t{w.leftbits} - n;
    const uint64_t bits = uint64_t{w.code} << kWordBits | uint64_t{field} << w.leftbits;
    int64_t full = (left - 1) >> 63;  // a mask
    hide_origin(full);
    const intptr_t own = reinterpret_cast<intptr_t>(&w.code), next = reinterpret_cast<intptr_t>(w.cur);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a choice without a branch
    store_big_endian(reinterpret_cast<uint8_t *>(own ^ ((own ^ next) & full)),
                     static_cast<uint32_t>(bits >> kWordBits));
    w.code = static_cast<uint32_t>(bits << (full & kWordBits) >> kWordBits);
    w.leftbits = static_cast<int32_t>(left + (full & kWordBits));
    w.cur += full & kWordBytes;
}

inline int32_t write(QORV_BSW &w, uint32_t value, int32_t n) {
    if (!is_plain(w, n)) [[unlikely]]
        return write_any(w, value, n);
    append(w, shift_left(value, kWordBits - n), n);
    return QORV_OK;
}

// Here one byte of room is enough to store four.
inline int32_t write1(QORV_BSW &w, uint32_t bit) {
    w.leftbits--;
    w.code |= shift_left(bit & 1, w.leftbits);
    if (w.leftbits != 0) return QORV_OK;
    if (w.cur > w.end) return QORV_ERR;
    flush_full_cache(w);
    reset_cache(w);
    return QORV_OK;
}

inline int32_t golomb_log2(uint32_t x) {
    const int32_t k = floor_log2(x);
    return k < kMaxLog2 ? k : kMaxLog2;
}

constexpr int32_t golomb_length(int32_t log2) {
    return 2 * log2 + 1;
}

// The code number of a signed value: 0, 1, -1, 2, -2 become 0, 1, 2, 3, 4.
constexpr uint32_t code_number(int32_t value) {
    const uint32_t twice = 2 * static_cast<uint32_t>(value);
    return value > 0 ? twice - 1 : 0 - twice;
}

}  // namespace

extern "C" QORV_BSW *qorv_bsw_init(QORV_BSW *bsw, void *buf, int32_t size, QORV_BSW_FN_FLUSH fn_flush) {
    uint8_t *begin = static_cast<uint8_t *>(buf);
    *bsw = {0, kWordBits, begin, begin + size - 1, begin, size, fn_flush != nullptr ? fn_flush : flush_bytes};
    return bsw;
}

extern "C" int32_t qorv_bsw_deinit(QORV_BSW *bsw) {
    return bsw->fn_flush(bsw);
}

extern "C" int32_t qorv_bsw_write1(QORV_BSW *bsw, uint32_t bit) {
    return write1(*bsw, bit);
}

extern "C" int32_t qorv_bsw_write(QORV_BSW *bsw, uint32_t value, int32_t n) {
    return write(*bsw, value, n);
}

extern "C" void qorv_bsw_write_ue(QORV_BSW *bsw, uint32_t value) {
    const uint32_t x = value + 1;
    if (value <= kMaxPlainValue && is_plain(*bsw, 0)) [[likely]] {
        // The code is x after as many zeros as x has bits after its first.
        const int32_t k = floor_log2(x);
        return append(*bsw, x << (kWordBits - golomb_length(k)), golomb_length(k));
    }
    const int32_t k = golomb_log2(x);
    const uint32_t top = 1u << k;
    write_any(*bsw, ((x - top) & (top - 1)) | top, golomb_length(k));
}

extern "C" void qorv_bsw_write_se(QORV_BSW *bsw, int32_t value) {
    qorv_bsw_write_ue(bsw, code_number(value));
}

extern "C" void qorv_bsw_write_te(QORV_BSW *bsw, uint32_t value, int32_t max) {
    if (max > 1) {
        qorv_bsw_write_ue(bsw, value);
    } else if (max == 1) {
        write1(*bsw, value + 1);
    }
}

extern "C" int32_t qorv_bsw_sink(QORV_BSW *bsw) {
    if (bsw->end - bsw->cur < pending_bytes(*bsw)) return QORV_ERR;
    bsw->fn_flush(bsw);
    reset_cache(*bsw);
    return QORV_OK;
}

extern "C" int32_t qorv_bsw_size_ue(uint32_t value) {
    return golomb_length(floor_log2(value + 1));
}

extern "C" int32_t qorv_bsw_size_se(int32_t value) {
    return qorv_bsw_size_ue(code_number(value));
}
