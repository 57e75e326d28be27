// The audio, bitstream and bare buffers, owned bytes, and the reference operations of all four records.
#include <gtest/gtest.h>

#include <malloc.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "buffer/recording_allocator.h"
#include "qorv_skia.h"
#include "support/allocation.h"

namespace {

using test::RecordingAllocator;

class Buffers : public testing::Test {
protected:
    void SetUp() override {
        RecordingAllocator::reset();
        before_ = test::live_allocations();
    }
    void TearDown() override {
        EXPECT_TRUE(RecordingAllocator::live.empty());
        EXPECT_EQ(RecordingAllocator::bad_frees, 0);
        EXPECT_EQ(test::live_allocations(), before_);
    }

private:
    long before_ = 0;
};

// Makes each record with the recording allocator, or with the library's when `own` is false.
template <class Record>
Record *make(bool own, int32_t *status);
template <>
QORV_IMGB *make(bool own, int32_t *status) {
    return qorv_imgb_create(8, 4, 11, 0, nullptr, nullptr, own ? RecordingAllocator::alloc : nullptr,
                            own ? RecordingAllocator::free : nullptr, status);
}
template <>
QORV_AUDB *make(bool own, int32_t *status) {
    return qorv_audb_create(100, 3, 16, 0, 0, 0, own ? RecordingAllocator::alloc : nullptr,
                            own ? RecordingAllocator::free : nullptr, status);
}
template <>
QORV_BITB *make(bool own, int32_t *status) {
    return qorv_bitb_create(100, 0, 0, own ? RecordingAllocator::alloc : nullptr,
                            own ? RecordingAllocator::free : nullptr, status);
}
template <>
QORV_MFAL *make(bool, int32_t *status) {
    return qorv_mfal_create(0, status);
}

template <class Record>
class References : public Buffers {};
using Records = testing::Types<QORV_IMGB, QORV_AUDB, QORV_BITB, QORV_MFAL>;
TYPED_TEST_SUITE(References, Records);

TYPED_TEST(References, CountUpAndDownAndFreeAtZero) {
    for (bool own : {false, true}) {
        int32_t status = 99;
        TypeParam *record = make<TypeParam>(own, &status);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(status, QORV_OK);
        EXPECT_EQ(record->getref(record), 1);
        EXPECT_EQ(record->addref(record), 2);
        EXPECT_EQ(record->getref(record), 2);
        for (auto operation : {record->addref, record->getref, record->release}) {
            EXPECT_EQ(operation(nullptr), QORV_ERR_INVALID_ARG);
        }
        EXPECT_EQ(std::string(record->opaque, record->opaque + 80), std::string(80, '\0'));
        EXPECT_EQ(record->release(record), 1);
        EXPECT_EQ(record->release(record), 0);
        EXPECT_TRUE(RecordingAllocator::live.empty());
    }
}

TYPED_TEST(References, AreSafeBetweenThreads) {
    TypeParam *record = make<TypeParam>(false, nullptr);
    std::vector<std::thread> threads;
    std::atomic<int> frees = 0;  // releases that brought the count to 0
    for (int t = 0; t < 4; t++) {
        record->addref(record);
        threads.emplace_back([record, &frees] {
            for (int i = 0; i < 2000; i++) {
                record->addref(record);
                EXPECT_GT(record->getref(record), 1);
                EXPECT_GT(record->release(record), 0);
            }
            frees += record->release(record) == 0;
        });
    }
    frees += record->release(record) == 0;
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(frees, 1);
}

TEST_F(Buffers, AudioIsInterleavedForLayouts1To99) {
    struct Case {
        uint32_t samples;
        int32_t channels;
        uint32_t bits;
        int32_t layout;
        uint32_t buffers, bytes;
    };
    for (const Case &c : {Case{1024, 2, 16, 0, 2, 2048},
                          {1024, 2, 16, 1, 1, 4096},
                          {10, 8, 12, 100, 8, 20},
                          {10, 6, 1, 99, 1, 60},
                          {7, 1, 32, -1, 1, 28},
                          {5, 3, 24, 50, 1, 45},
                          {5, 0, 24, 0, 0, 0}}) {
        RecordingAllocator::next_aux = 0x1000;
        QORV_AUDB *audb = qorv_audb_create(c.samples, c.channels, c.bits, 77, c.layout, 1, RecordingAllocator::alloc,
                                           RecordingAllocator::free, nullptr);
        ASSERT_NE(audb, nullptr);
        const bool interleaved = c.layout >= 1 && c.layout <= 99;
        EXPECT_EQ(std::tuple(audb->channels, audb->bits, audb->attr, audb->layout, audb->interleaved),
                  std::tuple(c.channels, c.bits, 77u, c.layout, interleaved ? 1u : 0u));
        for (uint32_t i = 0; i < 8; i++) {
            const bool present = i < c.buffers;
            EXPECT_EQ(audb->samples[i], present ? c.samples : 0u);
            EXPECT_EQ(audb->size[i], present ? c.bytes : 0u);
            EXPECT_EQ(audb->aux[i], present ? 0x1000u + 0x10000u * i : 0u);
            ASSERT_EQ(audb->buf[i] != nullptr, present);
            if (present) {
                EXPECT_EQ(RecordingAllocator::live.at(audb->buf[i]).memory.size(), c.bytes);
            }
        }
        EXPECT_EQ(audb->release(audb), 0);
    }
}

TEST_F(Buffers, AudioReportsSizesThatDoNotFit) {
    struct Case {
        uint32_t samples;
        int32_t channels;
        uint32_t bits;
        int32_t layout;
    };
    for (const Case &c : {Case{1u << 30, 1, 32, 0},
                          {1u << 31, 1, 9, 1},
                          {0xFFFFFFFF, 2, 8, 1},
                          {2, 1 << 30, 16, 50},
                          {1, -1, 16, 7},
                          {16, 1, 0xFFFFFFFF, 0}}) {
        int32_t status = 99;
        EXPECT_EQ(qorv_audb_create(c.samples, c.channels, c.bits, 0, c.layout, 0, RecordingAllocator::alloc,
                                   RecordingAllocator::free, &status),
                  nullptr);
        EXPECT_EQ(status, QORV_ERR_ALLOC_FAILED) << c.samples << " samples";
    }
}

TEST_F(Buffers, BitstreamKeepsTypeAndAuxiliaryValue) {
    RecordingAllocator::next_aux = 0x2000;
    QORV_BITB *bitb = qorv_bitb_create(33, 9, 1, RecordingAllocator::alloc, RecordingAllocator::free, nullptr);
    ASSERT_NE(bitb, nullptr);
    EXPECT_EQ(std::tuple(bitb->type, bitb->aux), std::tuple(9u, uint64_t{0x2000}));
    EXPECT_EQ(RecordingAllocator::live.at(bitb->buf).memory.size(), 33u);
    EXPECT_EQ(bitb->release(bitb), 0);

    // Without a release function the bytes outlive the record.
    RecordingAllocator::next_aux = 0;
    bitb = qorv_bitb_create(33, 9, 1, RecordingAllocator::alloc, nullptr, nullptr);
    void *bytes = bitb->buf;
    EXPECT_EQ(bitb->release(bitb), 0);
    RecordingAllocator::free(bytes, 0);
}

TEST_F(Buffers, OwnedBytesAreCopiedAndTerminated) {
    QORV_VDATA first = {1, 2, nullptr}, second = {};
    EXPECT_EQ(qorv_vdata_set(&first, "abc", 0, 7), QORV_ERR_INVALID_ARG);
    EXPECT_EQ(qorv_vdata_set(&first, "abc", -1, 7), QORV_ERR_INVALID_ARG);
    EXPECT_EQ(qorv_vdata_set(&first, nullptr, 3, 7), QORV_ERR_INVALID_ARG);
    EXPECT_EQ(qorv_vdata_cpy(&first, &second), QORV_ERR_INVALID_ARG);
    EXPECT_EQ(std::tuple(first.type, first.size, first.data), std::tuple(1u, 2, nullptr));

    const char text[] = {'a', 'b', 'c', 'x', 'x'};
    EXPECT_EQ(qorv_vdata_set(&first, text, 3, 7), QORV_OK);
    EXPECT_EQ(qorv_vdata_cpy(&second, &first), QORV_OK);
    EXPECT_NE(first.data, second.data);
    for (QORV_VDATA *value : {&first, &second}) {
        EXPECT_EQ(std::tuple(value->type, value->size), std::tuple(7u, 3));
        EXPECT_EQ(memcmp(value->data, "abc\0\0", 5), 0);
        qorv_vdata_free(value);
        EXPECT_EQ(std::tuple(value->type, value->size, value->data), std::tuple(0u, 0, nullptr));
        qorv_vdata_free(value);
    }
    qorv_vdata_free(nullptr);

    // Whatever the allocator rounds up to, the terminator has its room.
    const std::vector<char> long_text(64, 'y');
    for (int32_t size = 1; size <= 64; size++) {
        EXPECT_EQ(qorv_vdata_set(&first, long_text.data(), size, 7), QORV_OK);
        EXPECT_GE(malloc_usable_size(first.data), static_cast<size_t>(size) + 2);
        qorv_vdata_free(&first);
    }

    char stale;
    first.data = &stale;
    const test::FailAllocations failing(1);
    EXPECT_EQ(qorv_vdata_set(&first, text, 3, 7), QORV_ERR_OUT_OF_MEMORY);
    EXPECT_EQ(first.data, nullptr);
}

}  // namespace
