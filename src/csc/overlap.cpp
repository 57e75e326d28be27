#include "csc/overlap.h"

namespace qorv {

namespace {

// Both places as offsets in a period of bytes that the two have in common: whether they keep clear of each other.
bool clear_in_period(intptr_t offset, intptr_t bytes_a, intptr_t bytes_b, intptr_t period) {
    offset %= period;
    if (offset < 0) offset += period;
    return offset >= bytes_a && offset + bytes_b <= period;
}

// From a plane's first byte to its end, as numbers: planes may belong to different objects.
struct Extent {
    intptr_t first, end;
};

template <class Byte>
Extent extent_of(Plane<Byte> plane, Size size) {
    if (plane.stride < 0) {
        plane.p = plane.at(0, size.h - 1);
        plane.stride = -plane.stride;
    }
    const auto first = reinterpret_cast<intptr_t>(plane.p);
    return {first, first + plane.stride * (size.h - 1) + plane.row_bytes(size.w)};
}

bool rows_overlap(const Plane<uint8_t> &plane, Size size) {
    const ptrdiff_t row_bytes = plane.row_bytes(size.w);
    return size.h > 1 && plane.stride < row_bytes && -plane.stride < row_bytes;
}

template <class A, class B>
bool disjoint(const Plane<A> &a, Size a_size, const Plane<B> &b, Size b_size) {
    const Extent of_a = extent_of(a, a_size), of_b = extent_of(b, b_size);
    if (of_a.first >= of_b.end || of_b.first >= of_a.end) return true;
    if (a.stride != b.stride || a.stride == 0) return false;
    // Side by side in one larger picture, or different bytes of its pixels.
    const intptr_t offset = reinterpret_cast<intptr_t>(b.p) - reinterpret_cast<intptr_t>(a.p);
    if (clear_in_period(offset, a.row_bytes(a_size.w), b.row_bytes(b_size.w), a.stride < 0 ? -a.stride : a.stride))
        return true;
    return a.step == b.step && a.stride % a.step == 0 && clear_in_period(offset, a.bytes, b.bytes, a.step);
}

// Whether in every row a's bytes of pixel x end before b's of pixel x + ahead begin, for all x for which both exist:
// a matter of the first and last pixels and rows, as addresses grow evenly with both.
template <class A, class B>
bool behind(const Plane<A> &a, const Plane<B> &b, ptrdiff_t ahead, Size size) {
    const ptrdiff_t first = ahead < 0 ? -ahead : 0, last = size.w - 1 - (ahead > 0 ? ahead : 0);
    const auto clear = [&](ptrdiff_t x, ptrdiff_t y) {
        return reinterpret_cast<intptr_t>(a.at(x, y)) + a.bytes <= reinterpret_cast<intptr_t>(b.at(x + ahead, y));
    };
    const ptrdiff_t last_row = size.h - 1;
    return clear(first, 0) && clear(last, 0) && clear(first, last_row) && clear(last, last_row);
}

bool strip_is_safe(const Planes<const uint8_t> &src, const Planes<uint8_t> &dst, Size size, ptrdiff_t strip) {
    for (int i = 0; i < dst.count; i++) {
        const Plane<uint8_t> &to = dst.plane[i];
        // Written behind all that is still to be read, or behind all that the strip reads.
        for (int k = 0; k < src.count; k++) {
            const Plane<const uint8_t> &from = src.plane[k];
            if (!disjoint(to, size, from, size) && !behind(to, from, 1, size) && !behind(from, to, 1 - strip, size)) {
                return false;
            }
        }
        // What a later plane's pixels meet of an earlier plane is of pixels to come, which win.
        for (int k = i + 1; k < dst.count; k++) {
            const Plane<uint8_t> &later = dst.plane[k];
            if (!disjoint(to, size, later, size) && !behind(to, later, 0, size)) return false;
        }
    }
    return true;
}

}  // namespace

bool written_once(const Planes<uint8_t> &dst, Size size) {
    for (int i = 0; i < dst.count; i++) {
        if (rows_overlap(dst.plane[i], size)) return false;
        for (int k = 0; k < i; k++) {
            if (!disjoint(dst.plane[i], size, dst.plane[k], size)) return false;
        }
    }
    return true;
}

bool apart(const Planes<const uint8_t> &src, Size src_size, const Planes<uint8_t> &dst, Size dst_size) {
    for (int i = 0; i < dst.count; i++) {
        for (int k = 0; k < src.count; k++) {
            if (!disjoint(dst.plane[i], dst_size, src.plane[k], src_size)) return false;
        }
    }
    return true;
}

ptrdiff_t safe_strip(const Planes<const uint8_t> &src, const Planes<uint8_t> &dst, Size size, ptrdiff_t least,
                     ptrdiff_t most) {
    if (!strip_is_safe(src, dst, size, least)) return 0;
    while (most > least && !strip_is_safe(src, dst, size, most)) most /= 2;
    return most;
}

}  // namespace qorv
