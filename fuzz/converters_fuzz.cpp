// Converters of equal size against the per-pixel reference, over random sizes, strides and arrangements in one block of
// memory, overlap included; and the lookup over any pair of identifiers.
#include "input.h"
#include "support/csc_reference.h"

using fuzz::Input;
using fuzz::require;

namespace {

constexpr int32_t kBytes = 16384;
constexpr int32_t kMaxW = 100, kMaxH = 4, kMaxStride = 600;
// Far enough from both ends for every row and pixel.
constexpr int32_t kReach = kMaxStride * (kMaxH - 1) + 4 * kMaxW;

struct Call {
    const void *src[4];
    void *dst[4];
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input input(data, size);
    const auto &cases = test::csc_cases();
    const test::CscCase &c = cases[input.byte() % cases.size()];
    const int32_t w = input.between(0, kMaxW), h = input.between(0, kMaxH), unit = c.deep ? 2 : 1;
    const bool interleaved = (input.byte() & 1) != 0;
    int32_t src_at[4], dst_at[4], src_stride[4], dst_stride[4];
    const auto place = [&](int32_t *at, int32_t *stride) {
        for (int k = 0; k < 4; k++) {
            at[k] = interleaved && k > 0 ? at[0] + k : input.between(kReach, kBytes - kReach - 4);
            stride[k] = interleaved && k > 0 ? stride[0] : input.between(-kMaxStride, kMaxStride) / unit;
        }
    };
    place(src_at, src_stride);
    place(dst_at, dst_stride);

    std::vector<uint8_t> ours(kBytes);
    uint32_t seed = input.word();
    for (uint8_t &byte : ours) byte = static_cast<uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
    std::vector<uint8_t> expected = ours;
    const auto at = [&](std::vector<uint8_t> &memory) {
        Call call;
        for (int k = 0; k < 4; k++) {
            call.src[k] = memory.data() + src_at[k];
            call.dst[k] = memory.data() + dst_at[k];
        }
        return call;
    };
    const Call a = at(ours), b = at(expected);
    c.fn(a.src, w, h, src_stride, 0, a.dst, 0, 0, dst_stride, 0);
    test::csc_reference(c, b.src, w, h, src_stride, b.dst, dst_stride);
    require(ours == expected, "a converter agrees with the reference");

    int32_t err = 1;
    const bool found = qorv_imgp_get_fn_csc(w, h, input.between(0, 800), w, h, input.between(0, 800), &err) != nullptr;
    require(err == (found ? 1 : QORV_ERR_UNSUPPORTED_CS), "the lookup tells of failure");
    return 0;
}
