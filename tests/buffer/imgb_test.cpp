#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <vector>

#include "buffer/recording_allocator.h"
#include "qorv_skia.h"
#include "support/allocation.h"
#include "support/doing.h"
#include "support/first_difference.h"
#include "support/random.h"

namespace {

using test::RecordingAllocator;

struct Request {
    int32_t w, h;
    uint32_t cs;
    std::optional<std::vector<uint32_t>> align{}, pad{};

    const uint32_t *align_words() const { return align ? align->data() : nullptr; }
    const uint32_t *pad_words() const { return pad ? pad->data() : nullptr; }
};

std::vector<uint32_t> words(uint32_t horizontal, uint32_t vertical) {
    return std::vector<uint32_t>(4, QORV_IMGB_WORD(horizontal, vertical));
}

// Where everything lies, from the definitions: all per plane, sizes in elements, margins in elements and rows.
struct Model {
    uint32_t planes = 1, w[4] = {}, h[4] = {}, aligned_w[4] = {}, aligned_h[4] = {}, bytes[4] = {}, side[4] = {},
             above[4] = {}, stride[4] = {}, rows[4] = {}, start[4] = {}, total = 0;
    uint32_t units[4] = {};

    explicit Model(const Request &r) {
        w[0] = static_cast<uint32_t>(r.w);
        h[0] = static_cast<uint32_t>(r.h);
        if (r.cs < 100) {
            EXPECT_EQ(qorv_imgb_get_dimension(r.cs, w, h, &planes, units), QORV_OK);
        } else {
            const uint32_t pixel_bytes[] = {2, 2, 4, 3, 4};
            units[0] = pixel_bytes[r.cs / 100 - 1] << 16 | 1;
        }
        for (uint32_t i = 0; i < planes; i++) {
            const uint32_t a = r.align ? (*r.align)[i] : 0x10001, p = r.pad ? (*r.pad)[i] : 0;
            bytes[i] = units[i] >> 16;
            side[i] = p >> 16;
            above[i] = p & 0xFFFF;
            aligned_w[i] = (w[i] + (a >> 16) - 1) / (a >> 16) * (a >> 16);
            aligned_h[i] = (h[i] + (a & 0xFFFF) - 1) / (a & 0xFFFF) * (a & 0xFFFF);
            stride[i] = (aligned_w[i] + 2 * side[i]) * bytes[i];
            rows[i] = aligned_h[i] + 2 * above[i];
            start[i] = total;
            total += stride[i] * rows[i];
        }
    }
    uint32_t inside(uint32_t i) const { return above[i] * stride[i] + side[i] * bytes[i]; }

    // Which bytes of the block the options clear.
    std::vector<uint8_t> cleared(uint32_t opt, bool packed_rgb) const {
        std::vector<uint8_t> result(total, RecordingAllocator::kFill);
        for (uint32_t i = 0; i < planes; i++) {
            for (uint32_t at = 0; at < stride[i] * rows[i]; at++) {
                const int64_t y = int64_t{at / stride[i]} - above[i], x = int64_t{at % stride[i]} - side[i] * bytes[i];
                const bool padding = y < 0 || y >= aligned_h[i] || x < 0 || x >= aligned_w[i] * bytes[i];
                bool zero = padding && (opt & 2) != 0;
                if (!padding && (opt & 1) != 0) {
                    const uint32_t bottom = packed_rgb ? aligned_w[i] : aligned_w[i] * bytes[i];
                    zero = y < h[i] ? x >= w[i] * bytes[i] : x < bottom;
                }
                if (zero) result[start[i] + at] = 0;
            }
        }
        return result;
    }
};

void expect_layout(const QORV_IMGB &imgb, const Model &model, const Request &r, uint64_t aux) {
    EXPECT_EQ(std::tuple(imgb.w, imgb.h, imgb.cs, imgb.x, imgb.y), std::tuple(r.w, r.h, r.cs, 0, 0));
    EXPECT_EQ(static_cast<uint32_t>(imgb.aw), model.aligned_w[0]);
    EXPECT_EQ(static_cast<uint32_t>(imgb.ah), model.aligned_h[0]);
    uint8_t *block = static_cast<uint8_t *>(imgb.baddr[0]);
    for (uint32_t i = 0; i < 4; i++) {
        const bool present = i < model.planes;
        EXPECT_EQ(static_cast<uint32_t>(imgb.s[i]), model.stride[i]) << i;
        EXPECT_EQ(static_cast<uint32_t>(imgb.e[i]), model.rows[i]) << i;
        EXPECT_EQ(imgb.baddr[i], present ? block + model.start[i] : nullptr) << i;
        EXPECT_EQ(imgb.a[i], present ? block + model.start[i] + model.inside(i) : nullptr) << i;
        const uint64_t base = present ? aux + model.start[i] : 0;
        EXPECT_EQ(imgb.bpaddr[i], base) << i;
        EXPECT_EQ(imgb.pa[i], base != 0 ? base + model.inside(i) : 0) << i;
    }
}

class Imgb : public testing::Test {
protected:
    void SetUp() override { RecordingAllocator::reset(); }
    void TearDown() override {
        EXPECT_TRUE(RecordingAllocator::live.empty());
        EXPECT_EQ(RecordingAllocator::bad_frees, 0);
    }

    static QORV_IMGB *create(const Request &r, uint32_t opt = 0) {
        int32_t status = 99;
        QORV_IMGB *imgb = qorv_imgb_create(r.w, r.h, r.cs, opt, r.align_words(), r.pad_words(),
                                           RecordingAllocator::alloc, RecordingAllocator::free, &status);
        EXPECT_EQ(status, QORV_OK) << r.cs;
        return imgb;
    }
    static void expect_contents(const QORV_IMGB &imgb, const std::vector<uint8_t> &expected) {
        const std::span block(static_cast<const uint8_t *>(imgb.baddr[0]), imgb.bsize);
        const auto row = static_cast<size_t>(std::max(1, imgb.s[0]));
        EXPECT_EQ(test::first_difference<uint8_t>(expected, block, row), "");
    }
};

const uint32_t kColourSpaces[] = {10, 11, 12, 13, 16,  17,  18,  20,  22,  41,  42,  43,  44,  60,
                                  61, 62, 63, 64, 100, 250, 299, 300, 350, 400, 430, 499, 500, 599};

// A request with margins of every kind; each plane has words of its own.
Request random_request(uint32_t cs, test::Random &random) {
    Request r{random.between(1, 20), random.between(1, 12), cs};
    const auto four = [&](auto word) { return std::vector<uint32_t>{word(), word(), word(), word()}; };
    if (random.below(3) != 0)
        r.align = four([&] { return QORV_IMGB_WORD(1u << random.below(5), 1u << random.below(4)); });
    if (random.below(3) != 0) r.pad = four([&] { return QORV_IMGB_WORD(random.below(6), random.below(4)); });
    return r;
}

TEST_F(Imgb, LaysOutAndClearsEveryColourSpace) {
    test::Random random;
    for (uint32_t cs : kColourSpaces) {
        for (uint32_t round = 0; round < 40; round++) {
            const Request r = random_request(cs, random);
            const uint32_t opt = round % 4;
            RecordingAllocator::next_aux = round % 8 < 4 ? 0 : 0x7000000000;
            const uint64_t aux = RecordingAllocator::next_aux;
            const test::Doing doing("colour space %u, %dx%d, opt %u", cs, r.w, r.h, opt);
            QORV_IMGB *imgb = create(r, opt | 0x80u);
            ASSERT_NE(imgb, nullptr);
            const Model model(r);
            EXPECT_EQ(imgb->bsize, model.total);
            expect_layout(*imgb, model, r, aux);
            EXPECT_EQ(std::string(imgb->opaque, imgb->opaque + 80), std::string(80, '\0'));
            expect_contents(*imgb, model.cleared(opt, cs >= 100));
            EXPECT_EQ(imgb->release(imgb), 0);
        }
    }
}

TEST_F(Imgb, MatchesKnownLayouts) {
    const auto check = [](const Request &r, std::vector<int32_t> s, std::vector<int32_t> e, uint32_t bsize, long a0) {
        QORV_IMGB *imgb = create(r);
        ASSERT_NE(imgb, nullptr);
        EXPECT_EQ(std::vector<int32_t>(imgb->s, imgb->s + 4), s);
        EXPECT_EQ(std::vector<int32_t>(imgb->e, imgb->e + 4), e);
        EXPECT_EQ(imgb->bsize, bsize);
        EXPECT_EQ(static_cast<char *>(imgb->a[0]) - static_cast<char *>(imgb->baddr[0]), a0);
        imgb->release(imgb);
    };
    check({7, 5, QORV_CS_YUV420}, {7, 4, 4, 0}, {5, 3, 3, 0}, 59, 0);
    check({7, 5, QORV_CS_YUV420, words(16, 2)}, {16, 16, 16, 0}, {6, 4, 4, 0}, 224, 0);
    check({8, 4, QORV_CS_YUV400_16, {}, words(4, 2)}, {32, 0, 0, 0}, {8, 0, 0, 0}, 256, 72);
    check({3, 2, QORV_CS_RGBA8888, words(4, 1)}, {16, 0, 0, 0}, {2, 0, 0, 0}, 32, 0);
    check({5, 5, QORV_CS_YUV400, words(0, 0)}, {0, 0, 0, 0}, {0, 0, 0, 0}, 0, 0);
}

TEST_F(Imgb, ReportsEveryFailureAndLeaksNothing) {
    const long before = test::live_allocations();
    const auto expect_failure = [](const Request &r, qorv_alloc_fn alloc, qorv_free_fn free, int32_t expected) {
        int32_t status = 99;
        EXPECT_EQ(qorv_imgb_create(r.w, r.h, r.cs, 3, nullptr, nullptr, alloc, free, &status), nullptr);
        EXPECT_EQ(status, expected);
        EXPECT_EQ(qorv_imgb_create(r.w, r.h, r.cs, 3, nullptr, nullptr, alloc, free, nullptr), nullptr);
    };
    expect_failure({8, 8, 11}, RecordingAllocator::alloc, nullptr, QORV_ERR_INVALID_ARG);
    for (uint32_t cs : {0u, 9u, 14u, 65u, 99u, 600u, 700u})
        expect_failure({8, 8, cs}, nullptr, nullptr, QORV_ERR_UNSUPPORTED_CS);
    // More than the default allocator can count; as a signed size 2^32 - 1 bytes would be -1.
    expect_failure({65535, 65537, 10}, nullptr, nullptr, QORV_ERR_ALLOC_FAILED);
    EXPECT_EQ(test::live_allocations(), before);
}

// Sizes come from the headers of files. A block is at most 2^32 - 1 bytes, a stride or a number of rows 2^31 - 1.
TEST_F(Imgb, ReportsSizesThatDoNotFit) {
    struct Case {
        Request request;
        uint32_t bsize;  // 0: does not fit
    };
    const Request small = {16, 16, 10};
    QORV_IMGB *other = create(small);
    for (const Case &c : {Case{{65536, 16384, 500}, 0},
                          {{65535, 65537, 10}, 0xFFFFFFFF},
                          {{65536, 65536, 10}, 0},
                          {{0x7FFFFFFF, 2, 10}, 0xFFFFFFFE},
                          {{0x7FFFFFFF, 2, 10, words(2, 1)}, 0},
                          {{2, 0x7FFFFFFF, 10}, 0xFFFFFFFE},
                          {{1, 0x7FFFFFFF, 10, {}, words(0, 1)}, 0},
                          {{0x40000000, 1, 500}, 0},
                          {{-1, 1, 10}, 0},
                          {{1, -5, 400}, 0},
                          {{-16, -16, 11, words(16, 16), words(16, 16)}, 0},
                          {{50000, 50000, 13}, 0},
                          {{53509, 53509, 11}, 0xFFFE902B},
                          {{53511, 53510, 11}, 0}}) {
        static uint32_t asked;
        asked = 0;
        int32_t status = 99;
        const auto refuse = [](uint32_t size, uint64_t *) -> void * { return asked = size, nullptr; };
        const Request &r = c.request;
        const test::Doing doing("colour space %u, %dx%d", r.cs, r.w, r.h);
        EXPECT_EQ(qorv_imgb_create(r.w, r.h, r.cs, 3, r.align_words(), r.pad_words(), refuse, RecordingAllocator::free,
                                   &status),
                  nullptr);
        EXPECT_EQ(status, QORV_ERR_ALLOC_FAILED);
        EXPECT_EQ(asked, c.bsize);
        EXPECT_EQ(qorv_imgb_rebirth(other, r.w, r.h, r.cs, 3, r.align_words(), r.pad_words()),
                  c.bsize == 0 ? QORV_ERR_ALLOC_FAILED : QORV_ERR_OUT_OF_MEMORY);
        expect_layout(*other, Model(small), small, 0);
    }
    other->release(other);
}

TEST_F(Imgb, UsesItsOwnAllocatorWhenGivenNone) {
    const long before = test::live_allocations();
    // A release function without an allocator is ignored.
    QORV_IMGB *imgb = qorv_imgb_create(33, 9, 13, 3, nullptr, nullptr, nullptr, RecordingAllocator::free, nullptr);
    ASSERT_NE(imgb, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(imgb->baddr[0]) % 32, 0u);
    EXPECT_EQ(imgb->bpaddr[2], 2u * 33 * 9);
    EXPECT_EQ(imgb->release(imgb), 0);
    EXPECT_EQ(test::live_allocations(), before);
}

TEST_F(Imgb, OptionsNeedAKnownFamilyAndAPaddingArray) {
    QORV_IMGB *imgb = create({4, 4, 400});
    const uint32_t sizes[4] = {4, 4, 4, 4}, larger[4] = {8, 8, 8, 8}, units[4] = {3 << 16 | 1};
    imgb->cs = 600;
    EXPECT_EQ(qorv_imgb_option(imgb, 1, 1, sizes, sizes, larger, larger, nullptr, units), QORV_ERR_UNSUPPORTED_CS);
    EXPECT_EQ(qorv_imgb_option(imgb, 2 | 4, 1, sizes, sizes, larger, larger, nullptr, units), QORV_OK);
    expect_contents(*imgb, std::vector<uint8_t>(imgb->bsize, RecordingAllocator::kFill));
    imgb->release(imgb);
}

TEST_F(Imgb, RebirthLaysOutAgainInTheSameBlock) {
    test::Random random;
    RecordingAllocator::next_aux = 0x500000;
    QORV_IMGB *imgb = create({64, 48, 13, {}, words(8, 8)});
    const uint32_t bsize = imgb->bsize;
    const uint64_t aux = imgb->bpaddr[0];
    memset(imgb->opaque, 0x3C, sizeof imgb->opaque);
    imgb->addref(imgb);
    for (uint32_t round = 0; round < 300; round++) {
        const Request r = random_request(kColourSpaces[random.below(std::size(kColourSpaces))], random);
        const uint32_t opt = round % 4;
        const test::Doing doing("colour space %u, %dx%d, opt %u", r.cs, r.w, r.h, opt);
        memset(imgb->baddr[0], RecordingAllocator::kFill, bsize);
        imgb->x = imgb->y = 3;
        ASSERT_EQ(qorv_imgb_rebirth(imgb, r.w, r.h, r.cs, opt, r.align_words(), r.pad_words()), QORV_OK);
        const Model model(r);
        expect_layout(*imgb, model, r, aux);
        EXPECT_EQ(imgb->bsize, bsize);
        EXPECT_EQ(imgb->refcnt, 2);
        EXPECT_EQ(imgb->opaque[79], 0x3C);
        // Without a padding array nothing is cleared, alignment included.
        std::vector<uint8_t> expected = model.cleared(r.pad ? opt : 0, r.cs >= 100);
        expected.resize(bsize, RecordingAllocator::kFill);
        expect_contents(*imgb, expected);
    }
    EXPECT_EQ(imgb->release(imgb), 1);
    EXPECT_EQ(imgb->release(imgb), 0);
}

TEST_F(Imgb, RebirthThatFailsChangesNothing) {
    QORV_IMGB *imgb = create({16, 16, 11});
    imgb->x = 5;
    QORV_IMGB before;
    memcpy(&before, imgb, sizeof before);
    EXPECT_EQ(qorv_imgb_rebirth(imgb, 17, 16, 11, 3, nullptr, nullptr), QORV_ERR_OUT_OF_MEMORY);
    EXPECT_EQ(qorv_imgb_rebirth(imgb, 4, 4, 600, 3, nullptr, nullptr), QORV_ERR_UNSUPPORTED_CS);
    EXPECT_EQ(qorv_imgb_rebirth(nullptr, 4, 4, 600, 3, nullptr, nullptr), QORV_ERR_UNSUPPORTED_CS);
    EXPECT_EQ(qorv_imgb_rebirth(nullptr, 4, 4, 11, 3, nullptr, nullptr), QORV_ERR_INVALID_ARG);
    EXPECT_EQ(memcmp(&before, imgb, sizeof before), 0);
    EXPECT_EQ(qorv_imgb_rebirth(imgb, 16, 16, 12, 0, nullptr, nullptr), QORV_ERR_OUT_OF_MEMORY);
    EXPECT_EQ(qorv_imgb_rebirth(imgb, 16, 12, 12, 0, nullptr, nullptr), QORV_OK);
    // What was not added is not released.
    imgb->addref = nullptr;
    EXPECT_EQ(qorv_imgb_rebirth(imgb, 8, 8, 12, 0, nullptr, nullptr), QORV_OK);
    EXPECT_EQ(imgb->refcnt, 1);
    imgb->release(imgb);
}

}  // namespace
