#include "family_calls.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "metric/reference.h"
#include "qorv_skia.h"
#include "support/csc_reference.h"
#include "support/noise.h"

namespace calls {

namespace {

using test::CscPointer;
using enum Arrangement;

constexpr size_t kPlane = 1 << 19;

// Addresses are the same on every run: the counts depend on them where a function looks at overlap or alignment.
struct Planes {
    alignas(4096) uint8_t bytes[4][kPlane];
};
Planes g_source, g_words, g_destination;
Planes g_block_words;  // never a destination: 10 bits they stay

// Noise once: samples of any value, and words of 10 bits.
void fill_sources() {
    static const bool filled = [] {
        test::Noise noise{1};
        for (auto &plane : g_source.bytes) std::generate(std::begin(plane), std::end(plane), std::ref(noise));
        for (Planes *const planes : {&g_words, &g_block_words}) {
            for (auto &plane : planes->bytes) {
                for (size_t i = 0; i < kPlane; i++) plane[i] = static_cast<uint8_t>(noise() & (i % 2 == 0 ? 0xFF : 3));
            }
        }
        return true;
    }();
    static_cast<void>(filled);
}

int round_up(int value, int unit) {
    return (value + unit - 1) / unit * unit;
}

// Bytes from a row to the next, and the place of the first row, for rows of `row` bytes.
struct Rows {
    int stride, first;
    Rows(int row, const Shape &shape)
        : stride(shape.arrangement == kTight ? row : round_up(row + 1, 64)),
          first(shape.arrangement == kUpsideDown ? (shape.h - 1) * stride : 0) {
        if (shape.arrangement == kUpsideDown) stride = -stride;
    }
};

struct Pointers {
    void *p[4] = {};
    int32_t stride[4] = {};
};

bool packed(const std::vector<CscPointer> &pointers) {
    return pointers[0].step > 2;
}

Pointers lay_out(const std::vector<CscPointer> &pointers, bool deep, const Shape &shape, Planes &planes) {
    Pointers result;
    const auto count = static_cast<int>(pointers.size());
    const bool together = packed(pointers) && shape.arrangement != kUnrelated;
    for (int k = 0; k < count; k++) {
        const int step = pointers[static_cast<size_t>(k)].step;
        const Rows rows(shape.w * step, shape);
        const int channel = shape.arrangement == kPermuted ? count - 1 - k : k;
        result.p[k] = planes.bytes[together ? 0 : k] + rows.first + shape.offset * step + (together ? channel : 0);
        result.stride[k] = rows.stride / (deep ? 2 : 1);
    }
    return result;
}

Planes &destination_of(const Shape &shape, bool deep) {
    return shape.arrangement != kInPlace ? g_destination : deep ? g_words : g_source;
}

std::vector<Arrangement> arrangements_of(bool packed_side) {
    std::vector<Arrangement> list{kApart, kTight, kUpsideDown, kInPlace};
    if (packed_side) list.insert(list.end(), {kPermuted, kUnrelated});
    return list;
}

Call call_of(qorv_csc_fn fn, const Shape &source, const Pointers &from, const Shape &shape, const Pointers &to,
             int32_t cs = 0) {
    return [=] { fn(from.p, source.w, source.h, from.stride, 0, to.p, shape.w, shape.h, to.stride, cs); };
}

void add_converters(std::vector<Member> &list) {
    for (const test::CscCase &c : test::csc_cases()) {
        list.push_back(
            {std::string("csc_") + c.name, arrangements_of(packed(c.src) || packed(c.dst)), [&c](const Shape &shape) {
                 const Pointers from = lay_out(c.src, c.deep, shape, c.deep ? g_words : g_source);
                 const Pointers to = lay_out(c.dst, c.deep, shape, destination_of(shape, c.deep));
                 return call_of(c.fn, shape, from, shape, to);
             }});
    }
    // Two that no list names, of 4:2:0 words and of four planes of bytes.
    list.push_back({"csc_p010_to_yuv420", arrangements_of(false), [](const Shape &shape) {
                        const Shape even{round_up(shape.w, 2), round_up(shape.h, 2), shape.arrangement, shape.offset};
                        const std::vector<CscPointer> words(3, {'y', 2, 2}), bytes(3, {'Y', 1, 1});
                        return call_of(qorv_csc_p010_to_yuv420, even, lay_out(words, false, even, g_words), even,
                                       lay_out(bytes, false, even, destination_of(even, true)));
                    }});
    list.push_back({"csc_yuv444x_to_yuv444x", arrangements_of(false), [](const Shape &shape) {
                        const std::vector<CscPointer> bytes(4, {'Y', 1, 1});
                        return call_of(qorv_csc_yuv444x_to_yuv444x, shape, lay_out(bytes, false, shape, g_source),
                                       shape, lay_out(bytes, false, shape, destination_of(shape, false)),
                                       QORV_CS_YUVA444);
                    }});
}

// Source by destination, in each direction. The destination's sizes are walked.
struct Ratio {
    const char *name;
    int source, dest;
    int of(int size) const { return std::max(1, size * source / dest); }
};
constexpr Ratio kRatios[] = {{"3:2", 3, 2}, {"2:1", 2, 1}, {"5:1", 5, 1}, {"2:3", 2, 3}, {"1:5", 1, 5}};

void add_scaling_converters(std::vector<Member> &list) {
    for (const test::CscScalingCase &c : test::csc_scaling_cases()) {
        for (const Ratio &ratio : kRatios) {
            list.push_back({std::string("csc_rsz_") + c.name + " " + ratio.name,
                            arrangements_of(packed(c.unscaled->dst)), [&c, &ratio](const Shape &shape) {
                                const Shape source{ratio.of(shape.w), ratio.of(shape.h)};
                                return call_of(c.fn, source, lay_out(c.unscaled->src, false, source, g_source), shape,
                                               lay_out(c.unscaled->dst, false, shape, destination_of(shape, false)));
                            }});
        }
    }
}

struct ResizerFormat {
    const char *name;
    int code, src_bytes, dst_bytes, unit;  // unit: bytes that 1 in a pitch stands for
    decltype(qorv_irsz8b_full) *full;
    decltype(qorv_irsz8b_line) *line;
};
constexpr ResizerFormat kFormats[] = {
    {"irsz8b", 20, 1, 1, 1, qorv_irsz8b_full, qorv_irsz8b_line},
    {"irsz8b8b8b", 21, 3, 3, 1, qorv_irsz8b8b8b_full, qorv_irsz8b8b8b_line},
    {"irsz8b8b8b_5b6b5b", 23, 3, 2, 1, qorv_irsz8b8b8b_5b6b5b_full, qorv_irsz8b8b8b_5b6b5b_line},
    {"irsz5b6b5b", 25, 2, 2, 2, qorv_irsz5b6b5b_full, qorv_irsz5b6b5b_line},
    {"irsz8b8b8b8b", 29, 4, 4, 1, qorv_irsz8b8b8b8b_full, qorv_irsz8b8b8b8b_line},
};

void add_resizers(std::vector<Member> &list) {
    for (const ResizerFormat &f : kFormats) {
        for (const Ratio &ratio : kRatios) {
            const auto strides = [&f](const Shape &source, const Shape &shape) {
                return std::pair(Rows(source.w * f.src_bytes, source).stride / f.src_bytes,
                                 Rows(shape.w * f.dst_bytes, shape).stride / f.dst_bytes);
            };
            list.push_back(
                {std::string(f.name) + " " + ratio.name, {kApart, kTight}, [=, &f, &ratio](const Shape &shape) {
                     const Shape source{ratio.of(shape.w), ratio.of(shape.h), shape.arrangement};
                     const auto [from, to] = strides(source, shape);
                     const QORV_IRSZ_PARAM param{f.code, 10,      source.w, source.h, from,
                                                 0,      shape.w, shape.h,  to,       g_destination.bytes[0]};
                     const std::shared_ptr<QORV_IRSZ> rsz(qorv_irsz_create(&param, nullptr), qorv_irsz_delete);
                     return [=] { qorv_irsz(rsz.get(), g_source.bytes[0], 0, 0); };
                 }});
            list.push_back(
                {std::string(f.name) + "_full " + ratio.name, {kApart, kTight}, [=, &f, &ratio](const Shape &shape) {
                     const Shape source{ratio.of(shape.w), ratio.of(shape.h), shape.arrangement};
                     const auto [from, to] = strides(source, shape);
                     uint32_t x, y;
                     bilinear_rsz_step_size(source.w, source.h, shape.w, shape.h, &x, &y);
                     return [=, src_stride = from, dst_stride = to, &f] {
                         f.full(g_source.bytes[0], static_cast<uint32_t>(src_stride * f.src_bytes / f.unit), shape.w,
                                shape.h, dst_stride * f.dst_bytes / f.unit, g_destination.bytes[0],
                                static_cast<int32_t>(x), static_cast<int32_t>(y));
                     };
                 }});
        }
        list.push_back({std::string(f.name) + "_line", {kApart}, [&f](const Shape &shape) {
                            return [=, &f] {
                                static const uint8_t weights[4] = {15, 9, 25, 15};
                                const uint8_t *const rows[] = {g_source.bytes[0], g_source.bytes[1]};
                                for (int y = 0; y < shape.h; y++) {
                                    f.line(rows, weights, shape.w, 0, 1, 300001, g_destination.bytes[0]);
                                }
                            };
                        }});
    }
}

// The two blocks of a metric: of 10 bits in words, or of the words' full range.
struct Blocks {
    const void *a, *b;
    int32_t stride_a, stride_b;
    Blocks(const test::SampleType &type_a, const test::SampleType &type_b, const Shape &shape,
           bool full_range = false) {
        const auto place = [&](const test::SampleType &type, int plane, int32_t &stride) {
            const Rows rows(shape.w * type.bytes, shape);
            stride = rows.stride / type.bytes;
            Planes &planes = type.bytes == 2 && !full_range ? g_block_words : g_source;
            return planes.bytes[plane] + rows.first + shape.offset * type.bytes;
        };
        a = place(type_a, 0, stride_a);
        b = place(type_b, 1, stride_b);
    }
};

int16_t *residual_of(const Shape &shape, int32_t &stride) {
    const Rows rows(2 * shape.w, shape);
    stride = rows.stride / 2;
    return reinterpret_cast<int16_t *>(g_destination.bytes[0] + rows.first + 2 * shape.offset);
}

Call call_of(const test::Cost &cost, const Shape &shape, bool full_range = false) {
    const Blocks blocks(cost.a, cost.b, shape, full_range);
    return [=, &cost] { cost.run(shape.w, shape.h, blocks.a, blocks.b, blocks.stride_a, blocks.stride_b); };
}

Call call_of(const test::Diff &diff, const Shape &shape) {
    const Blocks blocks(diff.a, diff.b, shape);
    int32_t stride;
    int16_t *out = residual_of(shape, stride);
    return
        [=, &diff] { diff.run(shape.w, shape.h, blocks.a, blocks.b, blocks.stride_a, blocks.stride_b, stride, out); };
}

void add_areas(std::vector<Member> &list) {
    const std::vector<Arrangement> arrangements{kApart, kTight, kUpsideDown};
    for (const test::Cost &cost : test::costs()) {
        if (cost.w != 0) continue;
        list.push_back({cost.name, arrangements, [&cost](const Shape &shape) { return call_of(cost, shape); }});
        if (cost.a.bytes == 1) continue;
        list.push_back({cost.name + " full range", arrangements,
                        [&cost](const Shape &shape) { return call_of(cost, shape, true); }});
    }
    for (const test::Diff &diff : test::diffs()) {
        if (diff.w != 0) continue;
        list.push_back({diff.name, arrangements, [&diff](const Shape &shape) { return call_of(diff, shape); }});
    }
}

QORV_IMGB *picture(uint32_t cs, const Shape &shape, uint32_t margin) {
    const uint32_t word = QORV_IMGB_WORD(margin, margin), pad[4] = {word, word, word, word};
    return qorv_imgb_create(shape.w, shape.h, cs, 0, nullptr, pad, nullptr, nullptr, nullptr);
}

// The pictures are made anew for each shape: calls that are counted have the heap of a fresh process.
Member expansion(const char *name, uint32_t cs) {
    return {name, {kApart}, [cs](const Shape &shape) {
                const std::shared_ptr<QORV_IMGB> imgb(picture(cs, shape, 16), [](QORV_IMGB *p) { p->release(p); });
                return [imgb] {
                    const uint32_t word = QORV_IMGB_WORD(16, 16), pad[4] = {word, word, word, word};
                    qorv_imgb_expand(imgb.get(), pad);
                };
            }};
}

void add_memory(std::vector<Member> &list) {
    const auto add = [&](const char *name, int bytes, auto function) {
        list.push_back({name, {kApart, kTight, kUpsideDown}, [=](const Shape &shape) {
                            const Rows rows(shape.w * bytes, shape);
                            uint8_t *to = g_destination.bytes[0] + rows.first + shape.offset * bytes;
                            const uint8_t *from = g_source.bytes[0] + rows.first;
                            return [=] { function(to, from, rows.stride / bytes, shape.w, shape.h); };
                        }});
    };
    const auto add_fill = [&](const char *name, int bytes, auto fill) {
        list.push_back({name, {kApart}, [=](const Shape &shape) {
                            uint8_t *to = g_destination.bytes[0] + shape.offset * bytes;
                            return [=] {
                                for (int y = 0; y < shape.h; y++) fill(to + 1024 * y, shape.w);
                            };
                        }});
    };
    add("mcpy_pic", 1,
        [](auto *to, auto *from, int stride, int w, int h) { qorv_mcpy_pic(to, from, stride, stride, w, h); });
    add("mcpy_pic_16", 2,
        [](auto *to, auto *from, int stride, int w, int h) { qorv_mcpy_pic_16(to, from, stride, stride, w, h); });
    add("imgb_expand_ver", 1,
        [](auto *to, auto *from, int stride, int w, int h) { qorv_imgb_expand_ver(from, to, h, stride, w); });
    add("imgb_expand_ver_16", 2,
        [](auto *to, auto *from, int stride, int w, int h) { qorv_imgb_expand_ver_16(from, to, h, 2 * stride, w); });
    add("imgb_expand_hor", 1, [](auto *to, auto *from, int, int w, int h) { qorv_imgb_expand_hor(from, to, w, h); });
    add_fill("mset_x128", 1, [](uint8_t *to, int n) { qorv_mset_x128(to, 7, n); });
    add_fill("mset_x64", 1, [](uint8_t *to, int n) { qorv_mset_x64(to, 7, static_cast<size_t>(n)); });
    add_fill("mset_x64a", 1, [](uint8_t *to, int n) { qorv_mset_x64a(to, 7, static_cast<size_t>(n)); });
    add_fill("mset_x32", 1, [](uint8_t *to, int n) { qorv_mset_x32(to, 7, n); });
    add_fill("mset_x32ax4", 1, [](uint8_t *to, int n) { qorv_mset_x32ax4(to, 7, n); });
    add_fill("mclr_x64", 1, [](uint8_t *to, int n) { qorv_mclr_x64(to, n); });
    add_fill("mset16", 2, [](uint8_t *to, int n) { qorv_mset16(to, 7, n); });
    list.push_back(expansion("imgb_expand", QORV_CS_YUV420));
    list.push_back(expansion("imgb_expand 16 bits", QORV_CS_YUV420_16));
    list.push_back({"md5_imgb", {kApart}, [](const Shape &shape) {
                        const std::shared_ptr<QORV_IMGB> imgb(picture(QORV_CS_YUV420, shape, 0),
                                                              [](QORV_IMGB *p) { p->release(p); });
                        return [imgb] {
                            uint8_t digest[64];
                            qorv_md5_imgb(imgb.get(), digest);
                        };
                    }});
}

void add_blocks(std::vector<Fixed> &list) {
    for (const test::Cost &cost : test::costs()) {
        if (cost.w == 0) continue;
        list.push_back({cost.name, call_of(cost, {cost.w, cost.h})});
        const bool words = cost.a.bytes + cost.b.bytes > 2;
        if (words) list.push_back({cost.name + " full range", call_of(cost, {cost.w, cost.h}, true)});
    }
    for (const test::Diff &diff : test::diffs()) {
        if (diff.w != 0) list.push_back({diff.name, call_of(diff, {diff.w, diff.h})});
    }
    const auto words = [](Planes &planes) { return reinterpret_cast<const int16_t *>(planes.bytes[0]); };
    list.push_back({"hadamard4x4", [=] { qorv_hadamard4x4(words(g_block_words)); }});
    list.push_back({"hadamard4x4 full range", [=] { qorv_hadamard4x4(words(g_source)); }});
    for (const int width : {2, 4, 6, 8, 12, 16, 24, 32, 48, 64}) {
        const std::string size = std::to_string(width) + "x16";
        list.push_back({"mcpy_blk " + size,
                        [=] { qorv_mcpy_blk(g_destination.bytes[0], g_source.bytes[0], 320, 320, width, 16); }});
        list.push_back({"mcpy_blk_16 " + size,
                        [=] { qorv_mcpy_blk_16(g_destination.bytes[0], g_source.bytes[0], 320, 320, width, 16); }});
    }
}

void add_bits(std::vector<Fixed> &list) {
    constexpr int kFields = 256;
    const auto read = [&](const char *name, auto function) {
        list.push_back({name, [=] {
                            QORV_BSR reader;
                            qorv_bsr_init(&reader, g_source.bytes[0], 1 << 16, nullptr);
                            for (int i = 0; i < kFields; i++) function(&reader, i);
                        }});
    };
    const auto write = [&](const char *name, auto function) {
        list.push_back({name, [=] {
                            QORV_BSW writer;
                            qorv_bsw_init(&writer, g_destination.bytes[0], 1 << 16, nullptr);
                            for (int i = 0; i < kFields; i++) function(&writer, static_cast<uint32_t>(i));
                            qorv_bsw_sink(&writer);
                        }});
    };
    read("bsr_skip", [](QORV_BSR *r, int i) { qorv_bsr_skip(r, i % 32 + 1); });
    read("bsr_peek", [](QORV_BSR *r, int i) { qorv_bsr_peek(r, i % 24 + 1); });
    read("bsr_skip_peek", [](QORV_BSR *r, int i) { qorv_bsr_skip_peek(r, i % 8 + 1, i % 16 + 1); });
    read("bsr_read", [](QORV_BSR *r, int i) { qorv_bsr_read(r, i % 32 + 1); });
    read("bsr_read 8 bits", [](QORV_BSR *r, int) { qorv_bsr_read(r, 8); });
    read("bsr_read1", [](QORV_BSR *r, int) { qorv_bsr_read1(r); });
    read("bsr_flush", [](QORV_BSR *r, int i) { r->leftbits = 0, qorv_bsr_flush(r, i % 4 + 1); });
    read("bsr_skip_align8", [](QORV_BSR *r, int i) { qorv_bsr_read(r, i % 7 + 1), qorv_bsr_skip_align8(r); });
    read("bsr_read_align8", [](QORV_BSR *r, int i) {
        uint32_t count;
        qorv_bsr_read(r, i % 7 + 1), qorv_bsr_read_align8(r, &count);
    });
    read("bsr_read_ue", [](QORV_BSR *r, int) { qorv_bsr_read_ue(r); });
    read("bsr_read_se", [](QORV_BSR *r, int) { qorv_bsr_read_se(r); });
    read("bsr_read_te", [](QORV_BSR *r, int i) { qorv_bsr_read_te(r, i % 3 + 1); });
    read("bsr_read_un", [](QORV_BSR *r, int) { qorv_bsr_read_un(r); });
    read("bsr_read_tu", [](QORV_BSR *r, int i) { qorv_bsr_read_tu(r, i % 6 + 1); });
    read("bsr_clz_in_code", [](QORV_BSR *, int i) { qorv_bsr_clz_in_code(1u << i % 32); });
    write("bsw_write", [](QORV_BSW *w, uint32_t i) { qorv_bsw_write(w, i, static_cast<int32_t>(i % 32 + 1)); });
    write("bsw_write 8 bits", [](QORV_BSW *w, uint32_t i) { qorv_bsw_write(w, i, 8); });
    write("bsw_write1", [](QORV_BSW *w, uint32_t i) { qorv_bsw_write1(w, i & 1); });
    // Each length half as frequent as the one before.
    const auto code = [](uint32_t i) { return (i & -i) - (i != 0); };
    write("bsw_write_ue", [=](QORV_BSW *w, uint32_t i) { qorv_bsw_write_ue(w, code(i)); });
    write("bsw_write_se", [=](QORV_BSW *w, uint32_t i) { qorv_bsw_write_se(w, static_cast<int32_t>(code(i))); });
    write("bsw_write_te",
          [=](QORV_BSW *w, uint32_t i) { qorv_bsw_write_te(w, i & 1, static_cast<int32_t>(i % 3 + 1)); });
    write("bsw_size_ue", [=](QORV_BSW *, uint32_t i) { qorv_bsw_size_ue(i); });
    write("bsw_size_se", [=](QORV_BSW *, uint32_t i) { qorv_bsw_size_se(static_cast<int32_t>(i)); });
    write("bsw_sink", [](QORV_BSW *w, uint32_t) { qorv_bsw_write1(w, 1), qorv_bsw_sink(w); });
    write("ceil_log2", [](QORV_BSW *, uint32_t i) { qorv_ceil_log2(i); });
    write("floor_log2", [](QORV_BSW *, uint32_t i) { qorv_floor_log2(i); });
}

void add_scans(std::vector<Fixed> &list) {
    static uint8_t ones[4096];
    memset(ones, 0xFF, sizeof ones);
    for (const int32_t id : {QORV_MT_VID_H264, QORV_MT_VID_HEVC, QORV_MT_VID_MPEG4, QORV_MT_VID_H263}) {
        list.push_back({"is_vkeyfrm " + std::to_string(id), [=] { qorv_is_vkeyfrm(id, ones, sizeof ones); }});
    }
    static QORV_MD5 md5;
    qorv_md5_init(&md5);
    list.push_back({"md5_update 4096", [] { qorv_md5_update(&md5, ones, 4096); }});
    list.push_back({"md5_update 100", [] { qorv_md5_update(&md5, ones, 100); }});
    list.push_back({"md5_update_16 1000", [] { qorv_md5_update_16(&md5, reinterpret_cast<uint16_t *>(ones), 1000); }});
    list.push_back({"md5_finish", [] {
                        QORV_MD5 fresh;
                        uint8_t digest[16];
                        qorv_md5_finish(qorv_md5_init(&fresh), digest);
                    }});
    list.push_back({"bilinear_rsz_step_size", [] {
                        uint32_t x, y;
                        bilinear_rsz_step_size(1920, 1080, 640, 360, &x, &y);
                    }});
}

}  // namespace

const char *name_of(Arrangement arrangement) {
    constexpr const char *kNames[] = {"apart", "tight", "permuted", "unrelated", "upside-down", "in-place"};
    return kNames[static_cast<int>(arrangement)];
}

const std::vector<Member> &members() {
    static const std::vector<Member> list = [] {
        fill_sources();
        std::vector<Member> made;
        add_converters(made);
        add_scaling_converters(made);
        add_resizers(made);
        add_areas(made);
        add_memory(made);
        return made;
    }();
    return list;
}

const std::vector<Fixed> &fixed_calls() {
    static const std::vector<Fixed> list = [] {
        fill_sources();
        std::vector<Fixed> made;
        add_blocks(made);
        add_bits(made);
        add_scans(made);
        return made;
    }();
    return list;
}

}  // namespace calls
