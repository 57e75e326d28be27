// The positions follow the formulas to the letter, also where one of them has reached the storage's size (or, after a
// line, gone one past it): then a length may come out negative and stands for nothing to be copied.
#include <stdlib.h>
#include <string.h>

#include "qorv_skia.h"

namespace {

constexpr uint8_t kCr = 13;
constexpr uint8_t kLf = 10;

constexpr int32_t smaller(int32_t a, int32_t b) {
    return a < b ? a : b;
}

void copy(void *dst, const void *src, int32_t n) {
    if (n > 0) memcpy(dst, src, static_cast<size_t>(n));
}

bool is_empty(const QORV_RBUF &rbuf) {
    return rbuf.wr == rbuf.rd;
}

bool is_full(const QORV_RBUF &rbuf) {
    const uint32_t size = static_cast<uint32_t>(rbuf.size);
    return static_cast<uint32_t>(rbuf.wr) == (static_cast<uint32_t>(rbuf.rd) + size - 1) % size;
}

// The line after one that ended beyond the storage begins at index -1 of the destination: that byte is dropped.
void put(char *dest, int32_t index, uint8_t byte) {
    if (index >= 0) dest[index] = static_cast<char>(byte);
}

// Copies at most `limit` bytes to index `at` of the destination, up to a line feed; then makes the ending CR LF and
// puts a zero byte after it. Returns the length of the text in the destination, which is also where the read position
// goes, counted from the line's beginning: one byte too far when the ring holds an LF alone. 0 when there is no line
// feed, or a zero byte before it.
int32_t take_line(char *dest, int32_t at, const uint8_t *from, int32_t limit) {
    for (int32_t i = 0; i < limit; i++) {
        int32_t end = at + i;
        put(dest, end, from[i]);
        if (from[i] == 0) return 0;
        if (from[i] != kLf) continue;
        if (i == 0 || from[i - 1] != kCr) put(dest, end++, kCr);
        put(dest, end, kLf);
        put(dest, end + 1, 0);
        return end + 1;
    }
    return 0;
}

int32_t take_wrapped_line(QORV_RBUF &rbuf, char *dest, int32_t dsize) {
    const int32_t to_end = rbuf.size - rbuf.rd;
    int32_t length = take_line(dest, 0, rbuf.buf + rbuf.rd, to_end);
    if (length != 0) {
        rbuf.rd += length;
        return length;
    }
    // A zero byte has not ended the search: the rest is copied behind the whole of the first part.
    if (dsize <= to_end) return 0;
    // A line feed that is not held, from before, ends nothing.
    if (rbuf.wr > 0 && rbuf.buf[rbuf.size - 1] == kCr && rbuf.buf[0] == kLf) {
        put(dest, to_end, kLf);
        put(dest, to_end + 2, 0);
        rbuf.rd = 1;
        return to_end + 2;
    }
    length = take_line(dest, to_end, rbuf.buf, smaller(rbuf.wr, dsize - to_end));
    if (length != 0) rbuf.rd = length - to_end;
    return length;
}

}  // namespace

extern "C" QORV_RBUF *qorv_rbuf_create(int32_t size) {
    QORV_RBUF *rbuf = static_cast<QORV_RBUF *>(calloc(1, sizeof *rbuf));
    if (rbuf == nullptr) return nullptr;
    rbuf->size = size;
    // Zeroed, since the formulas can make bytes readable that were never put.
    rbuf->buf = static_cast<uint8_t *>(calloc(1, static_cast<size_t>(size)));
    if (rbuf->buf == nullptr) {
        free(rbuf);
        return nullptr;
    }
    return rbuf;
}

extern "C" void qorv_rbuf_delete(QORV_RBUF *rbuf) {
    if (rbuf == nullptr) return;
    free(rbuf->buf);
    free(rbuf);
}

extern "C" void qorv_rbuf_empty(QORV_RBUF *rbuf) {
    rbuf->rd = rbuf->wr;
}

extern "C" int32_t qorv_rbuf_put(QORV_RBUF *rbuf, const void *data, int32_t n) {
    if (is_full(*rbuf)) return 0;
    const int32_t wr = rbuf->wr;
    const int32_t rd = rbuf->rd;
    const int32_t to_end = rbuf->size - wr;
    if (rd > wr) {
        if (rd - wr - 1 < n) return 0;
    } else if (rd == 0) {
        if (n > to_end) return 0;
    } else if (n >= to_end) {
        const int32_t rest = n - to_end;
        copy(rbuf->buf + wr, data, to_end);
        if (rest >= rd) return 0;
        copy(rbuf->buf, static_cast<const uint8_t *>(data) + to_end, rest);
        rbuf->wr = rest;
        return n;
    }
    copy(rbuf->buf + wr, data, n);
    rbuf->wr = wr + n;
    return n;
}

extern "C" int32_t qorv_rbuf_get(QORV_RBUF *rbuf, void *dest, int32_t n) {
    if (is_empty(*rbuf)) return 0;
    const int32_t rd = rbuf->rd;
    if (rbuf->wr > rd) {
        const int32_t taken = smaller(rbuf->wr - rd, n);
        copy(dest, rbuf->buf + rd, taken);
        rbuf->rd = rd + taken;
        return taken;
    }
    const int32_t to_end = rbuf->size - rd;
    if (n <= to_end) {
        copy(dest, rbuf->buf + rd, n);
        rbuf->rd = (rd + n) % rbuf->size;
        return n;
    }
    copy(dest, rbuf->buf + rd, to_end);
    const int32_t rest = smaller(n - to_end, rbuf->wr);
    const int32_t dropped = to_end < 0 ? -to_end : 0;
    copy(static_cast<uint8_t *>(dest) + (to_end + dropped), rbuf->buf + dropped, rest - dropped);
    rbuf->rd = rest;
    return rest + to_end;
}

extern "C" int32_t qorv_rbuf_get_one_line(QORV_RBUF *rbuf, char *dest, int32_t dsize) {
    if (is_empty(*rbuf)) return 0;
    if (rbuf->wr < rbuf->rd) return take_wrapped_line(*rbuf, dest, dsize);
    const int32_t length = take_line(dest, 0, rbuf->buf + rbuf->rd, smaller(rbuf->wr - rbuf->rd, dsize - 1));
    rbuf->rd += length;
    return length;
}

extern "C" int32_t qorv_rbuf_get_head(const QORV_RBUF *rbuf, void **ptr, int32_t *len) {
    const bool full = is_full(*rbuf);
    *ptr = full ? nullptr : rbuf->buf + rbuf->wr;
    *len = full ? 0 : qorv_rbuf_get_freec_len(rbuf);
    return 0;
}

extern "C" int32_t qorv_rbuf_get_tail(const QORV_RBUF *rbuf, void **ptr, int32_t *len) {
    const bool empty = is_empty(*rbuf);
    *ptr = empty ? nullptr : rbuf->buf + rbuf->rd;
    *len = empty ? 0 : qorv_rbuf_get_fillc_len(rbuf);
    return 0;
}

extern "C" int32_t qorv_rbuf_skip_head(QORV_RBUF *rbuf, int32_t n) {
    if (is_full(*rbuf)) return 0;
    if (rbuf->rd > rbuf->wr) {
        const int32_t put = smaller(rbuf->rd - rbuf->wr - 1, n);
        rbuf->wr += put;
        return put;
    }
    const int32_t to_end = rbuf->size - rbuf->wr;
    if (n < to_end) {
        rbuf->wr += n;
        return n;
    }
    if (rbuf->rd == 0) return smaller(to_end - 1, n);
    rbuf->wr = smaller(n - to_end, rbuf->rd - 1);
    return rbuf->wr + to_end;
}

extern "C" int32_t qorv_rbuf_skip_tail(QORV_RBUF *rbuf, int32_t n) {
    if (is_empty(*rbuf)) return 0;
    if (rbuf->wr > rbuf->rd) {
        const int32_t taken = smaller(rbuf->wr - rbuf->rd, n);
        rbuf->rd += taken;
        return taken;
    }
    const int32_t to_end = rbuf->size - rbuf->rd;
    if (n < to_end) {
        rbuf->rd += n;
        return n;
    }
    rbuf->rd = smaller(n - to_end, rbuf->wr);
    return rbuf->rd + to_end;
}

extern "C" int32_t qorv_rbuf_get_free_len(const QORV_RBUF *rbuf) {
    if (rbuf->rd > rbuf->wr) return rbuf->rd - rbuf->wr - 1;
    return static_cast<int32_t>(static_cast<uint32_t>(rbuf->rd - rbuf->wr) + static_cast<uint32_t>(rbuf->size) + 1);
}

extern "C" int32_t qorv_rbuf_get_freec_len(const QORV_RBUF *rbuf) {
    if (rbuf->rd > rbuf->wr) return rbuf->rd - rbuf->wr - 1;
    return rbuf->size - rbuf->wr - (rbuf->rd == 0 ? 1 : 0);
}

extern "C" int32_t qorv_rbuf_get_fill_len(const QORV_RBUF *rbuf) {
    if (rbuf->wr >= rbuf->rd) return rbuf->wr - rbuf->rd;
    return rbuf->size - (rbuf->rd - rbuf->wr) - 1;
}

extern "C" int32_t qorv_rbuf_get_fillc_len(const QORV_RBUF *rbuf) {
    return (rbuf->rd > rbuf->wr ? rbuf->size : rbuf->wr) - rbuf->rd;
}

extern "C" int32_t qorv_rbuf_get_tot_len(const QORV_RBUF *rbuf) {
    return rbuf->size - 1;
}

extern "C" int32_t qorv_rbuf_is_full(const QORV_RBUF *rbuf) {
    return is_full(*rbuf) ? 1 : 0;
}

extern "C" int32_t qorv_rbuf_is_empty(const QORV_RBUF *rbuf) {
    return is_empty(*rbuf) ? 1 : 0;
}
