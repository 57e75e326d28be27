#include <string.h>

#include "qorv_skia.h"

namespace {

constexpr uint64_t kEachByte = 0x0101010101010101;
constexpr int32_t kLane = sizeof(uint64_t);

// A value of the byte after two zero bytes, written so that it serves one byte (the low one) and eight at a time: 0
// where a byte is the wanted one.
constexpr uint64_t not_one(uint64_t third) {  // a start code 00 00 01
    return third ^ kEachByte;
}

constexpr uint64_t not_picture(uint64_t third) {  // a picture start code of H.263: 22 bits, 00 00 100000..
    return (third & 0xFC * kEachByte) ^ 0x80 * kEachByte;
}

// Not 0 when a byte of the word is 0.
constexpr uint64_t zero_bytes(uint64_t word) {
    return (word - kEachByte) & ~word & 0x80 * kEachByte;
}

uint64_t load(const uint8_t *from) {
    uint64_t word;
    memcpy(&word, from, sizeof word);
    return word;
}

template <class... Wanted>
bool starts_at(const uint8_t *p, Wanted... wanted) {
    return p[0] == 0 && p[1] == 0 && (((wanted(p[2]) & 0xFF) == 0) || ...);
}

// The first position in [p, last] with two zero bytes and a wanted third one; last + 1 when there is none. Reads up to
// last + 2.
template <class... Wanted>
const uint8_t *find_start(const uint8_t *p, const uint8_t *last, Wanted... wanted) {
    for (; last - p >= kLane - 1; p += kLane) {
        const uint64_t pairs = load(p) | load(p + 1);
        const uint64_t third = load(p + 2);
        if ((zero_bytes(pairs | wanted(third)) | ...) == 0) continue;
        for (int32_t i = 0; i < kLane; i++) {
            if (starts_at(p + i, wanted...)) return p + i;
        }
    }
    while (p <= last && !starts_at(p, wanted...)) p++;
    return p;
}

// The rest of a picture header at a picture start code. The answers are in the type information PTYPE, of which bits
// 1..0 of byte 3 are the fixed "10".
constexpr bool has_type(const uint8_t *p) {
    return (p[3] & 3) == 2;
}

constexpr bool has_extended_type(const uint8_t *p) {
    return (p[4] & 0x1C) == 0x1C;
}

constexpr bool is_intra(const uint8_t *p) {
    return (p[4] & 2) == 0;
}

// With an extended type the 3-bit picture type stands behind the 3-bit update field, or 18 bits later when that field
// tells of an optional part.
bool is_intra_extended(const uint8_t *p) {
    const int update = (p[4] & 3) << 1 | p[5] >> 7;
    return update == 1 ? (p[7] & 0x1C) == 0 : (p[5] & 0x70) == 0;
}

bool is_mpeg4_key(const uint8_t *data, int32_t size) {
    if (size < 5) return false;
    const uint8_t *const last = data + (size - 5);
    for (const uint8_t *p = data; (p = find_start(p, last, not_one, not_picture)) <= last; p++) {
        if (p[2] != 1) {
            if (!has_type(p)) return false;
            if (!has_extended_type(p)) return is_intra(p);
        } else if (p[3] == 0xB6) {
            return p[4] < 64;  // the two bits of the VOP's coding type
        }
    }
    return false;
}

bool is_h263_key(const uint8_t *data, int32_t size) {
    if (size < 7) return false;
    const uint8_t *const last = data + (size - 7);
    const uint8_t *const p = find_start(data, last, not_picture);
    if (p > last || !has_type(p)) return false;
    return has_extended_type(p) ? is_intra_extended(p) : is_intra(p);
}

bool is_h264_key(const uint8_t *data, int32_t size) {
    if (size < 4) return false;
    const uint8_t *const last = data + (size - 4);
    for (const uint8_t *p = data; (p = find_start(p, last, not_one)) <= last; p++) {
        const int type = p[3] & 0x1F;
        if (type == 1 || type == 5) return type == 5;
    }
    return false;
}

bool is_hevc_key(const uint8_t *data, int32_t size) {
    if (size < 4) return false;
    const uint8_t *const last = data + (size - 4);
    const uint8_t *const p = find_start(data, last, not_one);
    if (p > last) return false;
    const int type = p[3] >> 1 & 0x3F;
    return type == 19 || type == 20;
}

bool is_key(int32_t id, const uint8_t *data, int32_t size) {
    switch (id) {
        case QORV_MT_VID_MPEG4:
            return is_mpeg4_key(data, size);
        case QORV_MT_VID_H263:
        case QORV_MT_VID_H263_OTHER:
            return is_h263_key(data, size);
        case QORV_MT_VID_H264:
            return is_h264_key(data, size);
        case QORV_MT_VID_HEVC:
            return is_hevc_key(data, size);
        case QORV_MT_VID_WMV1:
        case QORV_MT_VID_DIV3:
            return data[0] < 64;  // a picture type of two bits
        case QORV_MT_VID_WMV2:
            return data[0] < 128;  // of one bit
        case QORV_MT_VID_HFYU:
            return true;  // every frame is intra
        default:
            return false;
    }
}

}  // namespace

extern "C" int32_t qorv_is_vkeyfrm(int32_t id, const uint8_t *data, int32_t size) {
    return is_key(id, data, size) ? 1 : 0;
}
