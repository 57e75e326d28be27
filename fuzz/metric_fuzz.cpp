// Every member of the block metrics against its plain loop: any sizes, strides, contents, and outputs over inputs.
#include <cstring>

#include "kernels.h"
#include "metric/reference.h"
#include "regions.h"
#include "support/noise.h"

using fuzz::Input;
using fuzz::Region;
using fuzz::require;

namespace {

struct Block {
    test::SampleType sample;
    int w, h;
    int32_t stride;
};

Block choose_block(Input &input, test::SampleType sample, int w, int h) {
    return {sample, w, h, input.between(-w - w / 2 - 3, w + w / 2 + 3)};
}

// Samples around a value, some of them anything.
void fill(Input &input, const Block &block, uint8_t *first) {
    const uint32_t base = input.word() & 0xFFFF, mask = input.word() & 0xFFFF;
    const uint8_t any_in = input.byte();
    test::Noise noise{input.word()};
    for (int y = 0; y < block.h; y++) {
        for (int x = 0; x < block.w; x++) {
            const uint32_t word = noise.word();
            const bool any = any_in != 0 && (word & 0xFFFF) % any_in == 0;
            const auto value = static_cast<uint16_t>(any ? word >> 16 : base ^ ((word >> 16) & mask));
            std::memcpy(first + (ptrdiff_t{y} * block.stride + x) * block.sample.bytes, &value,
                        static_cast<size_t>(block.sample.bytes));
        }
    }
}

// Each block in a buffer of its own, or all in one.
std::vector<Region> place(Input &input, const std::vector<Block> &blocks) {
    const bool together = (input.byte() & 1) != 0;
    std::vector<Region> regions;
    for (const Block &b : blocks) {
        const int64_t bytes = b.sample.bytes;
        regions.push_back({together ? 0 : regions.size(), together ? input.between(0, 500) * bytes : 0,
                           b.stride * bytes, b.w * bytes, b.h});
    }
    return regions;
}

template <class Member>
void size_of(Input &input, const Member &member, int &w, int &h) {
    w = member.w != 0 ? member.w : input.between(-1, 150);
    h = member.h != 0 ? member.h : input.between(-1, 40);
}

void run_cost(Input &input, const test::Cost &cost) {
    int w, h;
    size_of(input, cost, w, h);
    // Transforms take whole tiles.
    const int tile = cost.name.starts_with("satd") ? 4 : 1;
    const auto readable = [&](int n) { return (n + tile - 1) / tile * tile; };
    const std::vector<Block> blocks{choose_block(input, cost.a, readable(w), readable(h)),
                                    choose_block(input, cost.b, readable(w), readable(h))};
    std::vector<Region> regions = place(input, blocks);
    fuzz::Buffers buffers = fuzz::make_buffers(regions, 0);
    const uint8_t *a = regions[0].in(buffers), *b = regions[1].in(buffers);
    for (size_t i = 0; i < 2; i++) fill(input, blocks[i], regions[i].in(buffers));
    require(cost.run(w, h, a, b, blocks[0].stride, blocks[1].stride) ==
                cost.expected(w, h, a, b, blocks[0].stride, blocks[1].stride),
            cost.name.c_str());
}

void run_diff(Input &input, const test::Diff &diff) {
    int w, h;
    size_of(input, diff, w, h);
    const std::vector<Block> blocks{choose_block(input, diff.a, w, h), choose_block(input, diff.b, w, h),
                                    choose_block(input, test::kSampleType<int16_t>, w, h)};
    std::vector<Region> regions = place(input, blocks);
    fuzz::Buffers ours = fuzz::make_buffers(regions, input.word());
    for (size_t i = 0; i < 2; i++) fill(input, blocks[i], regions[i].in(ours));
    fuzz::Buffers expected = ours;
    const auto call = [&](const auto &function, fuzz::Buffers &buffers) {
        function(w, h, regions[0].in(buffers), regions[1].in(buffers), blocks[0].stride, blocks[1].stride,
                 blocks[2].stride, reinterpret_cast<int16_t *>(regions[2].in(buffers)));
    };
    call(diff.run, ours);
    call(diff.expected, expected);
    require(ours == expected, diff.name.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input input(data, size);
    fuzz::choose_kernels(input);
    const size_t member = input.byte(), costs = test::costs().size(), diffs = test::diffs().size();
    const size_t pick = member % (costs + diffs);
    if (pick < costs) {
        run_cost(input, test::costs()[pick]);
    } else {
        run_diff(input, test::diffs()[pick - costs]);
    }
    return 0;
}
