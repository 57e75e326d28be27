// The list against a vector with a cursor, through random sequences of every operation.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstring>
#include <optional>
#include <vector>

#include "qorv_skia.h"
#include "support/allocation.h"
#include "support/random.h"

namespace {

// Items have an odd size, so that a copy of more or fewer bytes shows.
struct Item {
    char text[7];
    bool operator==(const Item &other) const { return memcmp(text, other.text, sizeof text) == 0; }
};

Item make_item(uint32_t number) {
    Item item;
    snprintf(item.text, sizeof item.text, "%06u", number % 1000000);
    return item;
}

std::vector<Item> freed;

int32_t record_free(void *item) {
    freed.push_back(*static_cast<Item *>(item));
    return -1;
}

std::optional<Item> value(const void *payload) {
    return payload != nullptr ? std::optional(*static_cast<const Item *>(payload)) : std::nullopt;
}

class ListModel : public testing::Test {
protected:
    void SetUp() override {
        freed.clear();
        before_ = test::live_allocations();
        list_ = qorv_list_create(sizeof(Item), record_free);
        ASSERT_NE(list_, nullptr);
    }
    void TearDown() override {
        const std::vector<Item> left = items_;
        freed.clear();
        qorv_list_delete(list_);
        EXPECT_EQ(freed, left);
        EXPECT_EQ(test::live_allocations(), before_);
    }

    int count() const { return static_cast<int>(items_.size()); }
    std::optional<Item> at(int index) const {
        return index >= 0 && index < count() ? std::optional(items_[static_cast<size_t>(index)]) : std::nullopt;
    }
    void insert(int index, const Item &item) {
        items_.insert(items_.begin() + index, item);
        if (cursor_ >= index) cursor_++;
    }
    // A cursor on the item moves to the next one, or nowhere.
    void remove(int index) {
        if (index < 0 || index >= count()) return;
        const bool last = index == count() - 1;
        removed_.push_back(*at(index));
        items_.erase(items_.begin() + index);
        if (cursor_ == index && last) cursor_ = -1;
        if (cursor_ > index) cursor_--;
    }
    void insert_at_either_end(const Item &item, int32_t index) {
        const void *payload = qorv_list_insert_at(list_, &item, index);
        const bool accepted = index < 0 || index == count();
        ASSERT_EQ(value(payload), accepted ? std::optional(item) : std::nullopt) << index << " of " << count();
        if (accepted) insert(index < 0 ? 0 : count(), item);
    }
    void remove_by_id(int index) {
        QORV_LIST_NODE *id = qorv_list_get_id(list_, index);
        ASSERT_EQ(id != nullptr, at(index).has_value());
        if (id == nullptr) return;
        ASSERT_EQ(value(qorv_list_get_atid(list_, id)), at(index));
        qorv_list_rem_atid(list_, id);
        remove(index);
        ASSERT_EQ(qorv_list_get_atid(list_, id), nullptr);
    }
    void move(int index, const void *payload) {
        cursor_ = at(index) ? index : -1;
        ASSERT_EQ(value(payload), at(cursor_));
    }
    void step(test::Random &random);
    void expect_same();

    QORV_LIST *list_ = nullptr;
    std::vector<Item> items_, removed_;
    int cursor_ = -1;

private:
    long before_ = 0;
};

void ListModel::step(test::Random &random) {
    const Item item = make_item(random());
    const int index = random.between(-2, count() + 1);
    switch (random.below(18)) {
        case 0:
        case 1:
            ASSERT_EQ(value(qorv_list_add(list_, &item)), item);
            return insert(count(), item);
        case 2:
        case 3:
            ASSERT_EQ(value(qorv_list_add_first(list_, &item)), item);
            return insert(0, item);
        case 4:
        case 5:
            return insert_at_either_end(item, index);
        case 6:
            return move(0, qorv_list_move_first(list_));
        case 7:
            return move(count() - 1, qorv_list_move_last(list_));
        case 8:
            return move(cursor_ < 0 ? -1 : cursor_ + 1, qorv_list_move_next(list_));
        case 9:
            return move(cursor_ - 1, qorv_list_move_prev(list_));
        case 10:
            return qorv_list_rem_at(list_, index), remove(index);
        case 11:
            return remove_by_id(index);
        case 12:
            return qorv_list_rem_first(list_), remove(0);
        case 13:
            return qorv_list_rem_last(list_), remove(count() - 1);
        case 14:
            return qorv_list_rem_cur(list_), remove(cursor_);
        case 15:
            return qorv_list_rem_prev(list_), remove((cursor_ < 0 ? count() : cursor_) - 1);
        case 16:
            return qorv_list_rem_next(list_), remove(cursor_ < 0 ? -1 : cursor_ + 1);
        default:
            if (random.below(10) != 0) return;
            qorv_list_rem_all(list_);
            removed_.insert(removed_.end(), items_.begin(), items_.end());
            items_.clear();
            cursor_ = -1;
    }
}

void ListModel::expect_same() {
    ASSERT_EQ(qorv_list_get_cnt(list_), count());
    for (int i = 0; i <= count(); i++) {
        ASSERT_EQ(value(qorv_list_get_at(list_, i)), at(i)) << i;
        ASSERT_EQ(qorv_list_get_id(list_, i) != nullptr, at(i).has_value());
    }
    ASSERT_EQ(qorv_list_get_id(list_, -1), nullptr);
    if (count() > 0) {
        ASSERT_EQ(value(qorv_list_get_at(list_, -3)), at(0));
    }
    ASSERT_EQ(value(qorv_list_get_first(list_)), at(0));
    ASSERT_EQ(value(qorv_list_get_last(list_)), at(count() - 1));
    ASSERT_EQ(value(qorv_list_get_cur(list_)), at(cursor_));
    ASSERT_EQ(freed, removed_);
}

TEST_F(ListModel, HoldsThroughRandomOperations) {
    test::Random random;
    for (int i = 0; i < 5000 && !HasFatalFailure(); i++) {
        step(random);
        expect_same();
    }
}

TEST_F(ListModel, FailedAllocationsChangeNothing) {
    const Item item = make_item(1);
    ASSERT_NO_FATAL_FAILURE(insert_at_either_end(item, 0));
    const test::FailAllocations failing(1);
    EXPECT_EQ(qorv_list_add(list_, &item), nullptr);
    EXPECT_EQ(qorv_list_add_first(list_, &item), nullptr);
    EXPECT_EQ(qorv_list_insert_at(list_, &item, 1), nullptr);
    expect_same();
}

TEST(List, NodesHaveRoomForTheirItem) {
    const char item[64] = {};
    for (int32_t bytes = 1; bytes <= 64; bytes++) {
        QORV_LIST *list = qorv_list_create(bytes, nullptr);
        const char *payload = static_cast<char *>(qorv_list_add(list, item));
        QORV_LIST_NODE *node = qorv_list_get_id(list, 0);
        const auto header = static_cast<size_t>(payload - reinterpret_cast<char *>(node));
        EXPECT_GE(malloc_usable_size(node), header + static_cast<size_t>(bytes));
        qorv_list_delete(list);
    }
}

TEST(List, DeletingNullIsAllowed) {
    qorv_list_delete(nullptr);
}

}  // namespace
