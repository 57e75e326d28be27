// The pool against two queues of its buffers' addresses.
#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <set>

#include "qorv_skia.h"
#include "support/allocation.h"
#include "support/random.h"

namespace {

class Pool : public testing::TestWithParam<int32_t> {};

TEST_P(Pool, CirculatesFirstInFirstOut) {
    constexpr int32_t kBytes = 9;
    const long before = test::live_allocations();
    const int32_t size = GetParam();
    QORV_RLIST *rlist = qorv_rlist_create(kBytes, size);
    ASSERT_NE(rlist, nullptr);
    test::Random random;
    std::deque<void *> used, given_back;  // a buffer is handed out again only after all that were free before it
    std::set<void *> known;
    for (int i = 0; i < 3000; i++) {
        switch (random.below(i / 100 % 2 == 0 ? 4 : 6)) {
            case 0:
            case 1:
            case 2: {
                void *buf = qorv_rlist_get_buf(rlist);
                ASSERT_EQ(buf != nullptr, static_cast<int32_t>(used.size()) < size);
                if (buf == nullptr) break;
                if (known.insert(buf).second) {
                    ASSERT_LE(static_cast<int32_t>(known.size()), size);
                } else {
                    ASSERT_EQ(buf, given_back.front());
                    given_back.pop_front();
                }
                memset(buf, i, kBytes);
                used.push_back(buf);
                break;
            }
            default:
                if (random.below(50) == 0) {
                    qorv_rlist_rem_all(rlist);
                    given_back.insert(given_back.end(), used.begin(), used.end());
                    used.clear();
                    break;
                }
                qorv_rlist_rem_data(rlist);
                if (used.empty()) break;
                given_back.push_back(used.front());
                used.pop_front();
        }
        ASSERT_EQ(qorv_rlist_get_data(rlist), used.empty() ? nullptr : used.front());
        ASSERT_EQ(qorv_rlist_get_used_cnt(rlist), static_cast<int32_t>(used.size()));
        ASSERT_EQ(qorv_rlist_get_free_cnt(rlist), size - static_cast<int32_t>(used.size()));
    }
    EXPECT_EQ(static_cast<int32_t>(known.size()), size > 0 ? size : 0);
    qorv_rlist_delete(rlist);
    EXPECT_EQ(test::live_allocations(), before);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Pool, testing::Values(-3, 0, 1, 2, 3, 17));

TEST(RecyclingList, DeletingNullIsAllowed) {
    qorv_rlist_delete(nullptr);
}

TEST(RecyclingList, HandsOutNeverUsedBuffersBeforeReturnedOnes) {
    QORV_RLIST *rlist = qorv_rlist_create(4, 3);
    void *a = qorv_rlist_get_buf(rlist);
    void *b = qorv_rlist_get_buf(rlist);
    qorv_rlist_rem_data(rlist);
    EXPECT_EQ(qorv_rlist_get_data(rlist), b);
    void *c = qorv_rlist_get_buf(rlist);
    EXPECT_TRUE(c != a && c != b);
    EXPECT_EQ(qorv_rlist_get_buf(rlist), a);
    EXPECT_EQ(qorv_rlist_get_buf(rlist), nullptr);
    qorv_rlist_delete(rlist);
}

}  // namespace
