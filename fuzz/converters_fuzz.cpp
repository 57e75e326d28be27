// Every converter against the per-pixel reference, asked for by name or by the lookup with any identifiers and sizes,
// over random arrangements of its planes: apart, interleaved, or over one another.
#include "kernels.h"
#include "qorv_skia.h"
#include "regions.h"
#include "support/csc_reference.h"

using fuzz::Input;
using fuzz::Region;
using fuzz::require;

namespace {

struct Size {
    int32_t w, h;
};

struct Call {
    const test::CscCase *layout;
    qorv_csc_fn fn;
    bool scales;
    Size src, dst;
    int32_t dst_cs;
};

const test::CscCase &copier() {
    static const std::vector<test::CscPointer> planes{{'Y', 1, 1}, {'U', 1, 1}, {'V', 1, 1}, {'A', 1, 1}};
    static const test::CscCase c{"copier", qorv_csc_yuv444x_to_yuv444x, false, false, false, planes, planes};
    return c;
}

// What is known of a function that the lookup gave.
Call known(qorv_csc_fn fn, Size src, Size dst, int32_t dst_cs) {
    for (const test::CscCase &c : test::csc_cases()) {
        if (c.fn == fn) return {&c, fn, false, src, dst, dst_cs};
    }
    for (const test::CscScalingCase &c : test::csc_scaling_cases()) {
        if (c.fn == fn) return {c.unscaled, fn, true, src, dst, dst_cs};
    }
    require(fn == copier().fn, "the lookup gives converters");
    return {&copier(), fn, false, src, dst, dst_cs};
}

Call look_up(Input &input, Size src, Size dst) {
    static constexpr int32_t kSpaces[] = {QORV_CS_YUV444,   QORV_CS_YUVA444,  QORV_CS_P410,     QORV_CS_RGB565,
                                          QORV_CS_RGB888,   QORV_CS_BGR888,   QORV_CS_RGBA5658, QORV_CS_R8G8B8,
                                          QORV_CS_RGBA8888, QORV_CS_BGRA8888, QORV_CS_ARGB8888, QORV_CS_RGB565A8,
                                          QORV_CS_R8G8B8A8, QORV_CS_R10G10B10};
    const auto space = [&] {
        const uint8_t i = input.byte() & 15;
        return i < std::size(kSpaces) ? kSpaces[i] : static_cast<int32_t>(input.word());
    };
    const int32_t src_cs = space(), dst_cs = space();
    const bool differ = src.w != dst.w || src.h != dst.h;
    int32_t err = 1;
    const qorv_csc_fn found = qorv_imgp_get_fn_csc(src.w, src.h, src_cs, dst.w, dst.h, dst_cs, &err);
    require(err == (found != nullptr ? 1 : QORV_ERR_UNSUPPORTED_CS), "the lookup tells of failure");
    if (found == nullptr) return {};
    const Call call = known(found, src, dst, dst_cs);
    require(call.scales == differ, "a scaling converter is found for differing sizes");
    return call;
}

Call choose(Input &input) {
    const bool wide = (input.byte() & 1) != 0;
    const auto size = [&] { return Size{input.between(-1, wide ? 700 : 100), input.between(-1, wide ? 4 : 24)}; };
    const Size src = size(), dst = (input.byte() & 1) != 0 ? size() : src;
    const auto &cases = test::csc_cases();
    const auto &scaling = test::csc_scaling_cases();
    size_t pick = input.byte();
    if (pick >= 128) return look_up(input, src, dst);
    pick %= cases.size() + scaling.size() + 1;
    const qorv_csc_fn fn = pick < cases.size()                    ? cases[pick].fn
                           : pick < cases.size() + scaling.size() ? scaling[pick - cases.size()].fn
                                                                  : copier().fn;
    return known(fn, src, dst, (input.byte() & 1) != 0 ? QORV_CS_YUVA444 : QORV_CS_YUV444);
}

// Every pointer in a buffer of its own, all of a side interleaved in one, all in one buffer, or destinations on
// sources.
enum Arrangement : uint8_t { kApart, kInterleaved, kOneBuffer, kInPlace };

struct Pointers {
    std::vector<Region> regions;
    std::vector<int32_t> strides;
};

int64_t row_pitch(const test::CscPointer &p, int32_t stride, bool deep) {
    return deep ? stride * 2 : p.what == 'W' ? (stride >> 1) * 2 : stride;
}

// Adds a region and a stride for every pointer of a side. In one buffer they often lie over one another, and with one
// stride often side by side.
void place(Input &input, const std::vector<test::CscPointer> &side, Size size, bool deep, Arrangement arrangement,
           Pointers &to) {
    constexpr int32_t kMost = 1500;  // bytes from the first region of one buffer, and between rows
    const size_t first = to.regions.size();
    const uint8_t shape = input.byte();
    const bool one_buffer = arrangement == kOneBuffer || arrangement == kInPlace;
    const bool interleaved = arrangement == kInterleaved || (one_buffer && (shape & 1) != 0);
    int32_t base = 0;
    for (size_t k = 0; k < side.size(); k++) {
        const test::CscPointer &p = side[k];
        const int64_t row = size.w <= 0 || p.what == ' ' ? 0 : int64_t{size.w - 1} * p.step + p.bytes;
        if (arrangement == kInPlace && first != 0) {
            const size_t onto = std::min(k, first - 1);
            to.strides.push_back(to.strides[onto]);
            to.regions.push_back({0, to.regions[onto].at, row_pitch(p, to.strides[onto], deep), row, size.h});
            continue;
        }
        if (k == 0 || !interleaved) {
            const bool one_stride = one_buffer && (shape & 4) != 0 && !to.strides.empty();
            const auto longest = static_cast<int32_t>(one_buffer ? kMost : 2 * row + 8);
            to.strides.push_back(one_stride ? to.strides.front() : input.between(-longest, longest) / (deep ? 2 : 1));
            base = one_buffer ? input.between(0, kMost) : 0;
        } else {
            to.strides.push_back(to.strides.back());
        }
        const size_t channel = !interleaved ? 0 : (shape & 2) != 0 ? side.size() - 1 - k : k;
        const size_t buffer = one_buffer ? 0 : interleaved ? first : first + k;
        to.regions.push_back({buffer, base + static_cast<int64_t>(channel) * p.bytes,
                              row_pitch(p, to.strides.back(), deep), row, size.h});
    }
}

// Planes copied one after the other, alpha on demand.
void copy(const void *const *src, Size size, const int32_t *src_stride, void *const *dst, const int32_t *dst_stride,
          int32_t dst_cs) {
    for (int k = 0; k < (dst_cs == QORV_CS_YUVA444 ? 4 : 3); k++) {
        for (int32_t y = 0; y < size.h; y++) {
            for (int32_t x = 0; x < size.w; x++) {
                static_cast<uint8_t *>(dst[k])[int64_t{y} * dst_stride[k] + x] =
                    static_cast<const uint8_t *>(src[k])[int64_t{y} * src_stride[k] + x];
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input input(data, size);
    fuzz::choose_kernels(input);
    const Call call = choose(input);
    if (call.fn == nullptr) return 0;
    const test::CscCase &layout = *call.layout;
    const auto arrangement = static_cast<Arrangement>(input.byte() % 4);
    Pointers pointers;
    place(input, layout.src, call.src, layout.deep, arrangement, pointers);
    place(input, layout.dst, call.scales ? call.dst : call.src, layout.deep, arrangement, pointers);
    fuzz::Buffers ours = fuzz::make_buffers(pointers.regions, input.word()), expected = ours;

    const size_t sources = layout.src.size();
    const int32_t *src_stride = pointers.strides.data(), *dst_stride = src_stride + sources;
    const void *src[4] = {};
    void *dst[4] = {};
    const auto point_into = [&](fuzz::Buffers &buffers) {
        for (size_t k = 0; k < pointers.regions.size(); k++) {
            uint8_t *p = pointers.regions[k].in(buffers);
            if (k < sources) {
                src[k] = p;
            } else {
                dst[k - sources] = p;
            }
        }
    };
    point_into(ours);
    call.fn(src, call.src.w, call.src.h, src_stride, 0, dst, call.dst.w, call.dst.h, dst_stride, call.dst_cs);
    point_into(expected);
    if (call.fn == copier().fn) {
        copy(src, call.src, src_stride, dst, dst_stride, call.dst_cs);
    } else if (call.scales) {
        test::csc_scaling_reference(layout, src, call.src.w, call.src.h, src_stride, dst, call.dst.w, call.dst.h,
                                    dst_stride);
    } else {
        test::csc_reference(layout, src, call.src.w, call.src.h, src_stride, dst, dst_stride);
    }
    require(ours == expected, layout.name);
    return 0;
}
