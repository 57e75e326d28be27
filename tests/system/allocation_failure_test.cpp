// Every function that creates something, with each of its allocations failing in turn: the library's own and those of
// the caller's allocator, the failing one alone and with all after it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "buffer/recording_allocator.h"
#include "qorv_skia.h"
#include "support/allocation.h"

namespace {

using test::RecordingAllocator;

constexpr int32_t kUntouched = 99;
constexpr uint32_t kPad[4] = {QORV_IMGB_WORD(2, 2), QORV_IMGB_WORD(2, 2), QORV_IMGB_WORD(2, 2), 0};

struct Creation {
    const char *name;
    void *(*create)(int32_t *status);
    void (*destroy)(void *made);
    std::vector<int32_t> statuses;  // by the number of the failing allocation
    bool reports = true;            // a status
};

template <class Record>
void release(void *made) {
    EXPECT_EQ(static_cast<Record *>(made)->release(static_cast<Record *>(made)), 0);
}

template <auto Delete, class Record>
void destroy(void *made) {
    Delete(static_cast<Record *>(made));
}

template <bool Own>
void *create_imgb(int32_t *status) {
    return qorv_imgb_create(8, 4, QORV_CS_YUV420, 3, nullptr, kPad, Own ? RecordingAllocator::alloc : nullptr,
                            Own ? RecordingAllocator::free : nullptr, status);
}

template <bool Own, int32_t Layout>
void *create_audb(int32_t *status) {
    return qorv_audb_create(100, 3, 16, 0, Layout, 0, Own ? RecordingAllocator::alloc : nullptr,
                            Own ? RecordingAllocator::free : nullptr, status);
}

template <bool Own>
void *create_bitb(int32_t *status) {
    return qorv_bitb_create(100, 0, 0, Own ? RecordingAllocator::alloc : nullptr,
                            Own ? RecordingAllocator::free : nullptr, status);
}

template <int32_t Mode>
void *create_irsz(int32_t *status) {
    static uint8_t dst[8 * 8 * 4];
    const QORV_IRSZ_PARAM param{29, Mode, 8, 8, 8, 4, 8, 8, 8, dst};
    return qorv_irsz_create(&param, status);
}

template <bool Copy>
void *set_vdata(int32_t *status) {
    QORV_VDATA text = {1, 4, const_cast<char *>("text")}, value = {5, 6, &text};
    const int32_t result = Copy ? qorv_vdata_cpy(&value, &text) : qorv_vdata_set(&value, "text", 4, 1);
    if (status != nullptr) *status = result;
    return value.data;
}

constexpr int32_t kNoRecord = QORV_ERR_OUT_OF_MEMORY, kNoBlock = QORV_ERR_ALLOC_FAILED;
constexpr int32_t kNoBytes = QORV_ERR_BITB_ALLOC_FAILED, kNoResizer = QORV_ERR_IRSZ_NOMEM;

const Creation kCreations[] = {
    {"imgb", create_imgb<false>, release<QORV_IMGB>, {kNoRecord, kNoBlock}},
    {"imgb, own blocks", create_imgb<true>, release<QORV_IMGB>, {kNoRecord, kNoBlock}},
    {"audb", create_audb<false, 0>, release<QORV_AUDB>, {kNoRecord, kNoBlock, kNoBlock, kNoBlock}},
    {"audb, own blocks", create_audb<true, 0>, release<QORV_AUDB>, {kNoRecord, kNoBlock, kNoBlock, kNoBlock}},
    {"audb, interleaved", create_audb<true, 1>, release<QORV_AUDB>, {kNoRecord, kNoBlock}},
    {"bitb", create_bitb<false>, release<QORV_BITB>, {kNoRecord, kNoBytes}},
    {"bitb, own blocks", create_bitb<true>, release<QORV_BITB>, {kNoRecord, kNoBytes}},
    {"mfal", [](int32_t *status) -> void * { return qorv_mfal_create(0, status); }, release<QORV_MFAL>, {kNoRecord}},
    {"vdata", set_vdata<false>, free, {QORV_ERR_OUT_OF_MEMORY}},
    {"vdata, a copy", set_vdata<true>, free, {QORV_ERR_OUT_OF_MEMORY}},
    {"irsz, pictures", create_irsz<10>, destroy<qorv_irsz_delete, QORV_IRSZ>, {kNoResizer}},
    {"irsz, bands", create_irsz<11>, destroy<qorv_irsz_delete, QORV_IRSZ>, {kNoResizer, kNoResizer}},
    {"list",
     [](int32_t *) -> void * { return qorv_list_create(4, nullptr); },
     destroy<qorv_list_delete, QORV_LIST>,
     {0, 0, 0},
     false},
    {"rlist",
     [](int32_t *) -> void * { return qorv_rlist_create(4, 3); },
     destroy<qorv_rlist_delete, QORV_RLIST>,
     {0, 0, 0, 0},
     false},
    {"rbuf",
     [](int32_t *) -> void * { return qorv_rbuf_create(8); },
     destroy<qorv_rbuf_delete, QORV_RBUF>,
     {0, 0},
     false},
    {"align32", [](int32_t *) { return qorv_malloc_align32(100); }, qorv_mfree_align32, {0}, false},
    {"fast_align32", [](int32_t *) { return qorv_malloc_fast_align32(100); }, qorv_mfree_fast_align32, {0}, false},
};

void fail_at(const Creation &c, int n, test::Failing failing, bool with_status) {
    SCOPED_TRACE(std::string(c.name) + ", allocation " + std::to_string(n));
    const bool succeeds = n > static_cast<int>(c.statuses.size());
    const long before = test::live_allocations();
    int32_t status = kUntouched;
    void *made;
    {
        const test::FailAllocations injection(n, failing);
        made = c.create(with_status ? &status : nullptr);
        EXPECT_EQ(injection.reached(), !succeeds);
    }
    ASSERT_EQ(made != nullptr, succeeds);
    if (c.reports && with_status) {
        EXPECT_EQ(status, succeeds ? QORV_OK : c.statuses[static_cast<size_t>(n) - 1]);
    } else {
        EXPECT_EQ(status, kUntouched);
    }
    if (succeeds) c.destroy(made);
    EXPECT_EQ(test::live_allocations(), before);
    EXPECT_TRUE(RecordingAllocator::live.empty());
    EXPECT_EQ(RecordingAllocator::bad_frees, 0);
}

TEST(AllocationFailure, OfAnyAllocationIsReportedAndLeaksNothing) {
    RecordingAllocator::reset();
    RecordingAllocator::next_aux = 0x1000;
    for (const Creation &c : kCreations) {
        for (int n = 1; n <= static_cast<int>(c.statuses.size()) + 1; n++) {
            for (const auto failing : {test::Failing::kFromThere, test::Failing::kOne}) {
                for (const bool with_status : {true, false}) fail_at(c, n, failing, with_status);
            }
        }
    }
}

}  // namespace
