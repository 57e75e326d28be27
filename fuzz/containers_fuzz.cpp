// Operation sequences on the list, the recycling list and the ring buffer, beside models of them.
#include <algorithm>
#include <cstring>
#include <deque>

#include "input.h"
#include "qorv_skia.h"
#include "support/ring_model.h"

using fuzz::Input;
using fuzz::require;

namespace {

std::vector<uint32_t> freed;

int32_t record_free(void *item) {
    freed.push_back(*static_cast<uint32_t *>(item));
    return 0;
}

// A vector of the values with the cursor's index, or -1.
struct ListModel {
    std::vector<uint32_t> items, removed;
    int cursor = -1;

    int count() const { return static_cast<int>(items.size()); }
    const uint32_t *at(int i) const { return i >= 0 && i < count() ? &items[static_cast<size_t>(i)] : nullptr; }
    const uint32_t *insert(int i, uint32_t item) {
        items.insert(items.begin() + i, item);
        if (cursor >= i) cursor++;
        return at(i);
    }
    // A cursor on the item moves to the next one, or nowhere.
    void remove(int i) {
        if (at(i) == nullptr) return;
        removed.push_back(*at(i));
        items.erase(items.begin() + i);
        if (cursor > i) cursor--;
        if (cursor == count()) cursor = -1;
    }
    const uint32_t *move(int i) {
        cursor = at(i) != nullptr ? i : -1;
        return at(cursor);
    }
    void remove_all() {
        while (count() > 0) remove(0);
        cursor = -1;
    }
};

void require_same(const void *payload, const uint32_t *expected) {
    require((payload != nullptr) == (expected != nullptr), "an item is given where there is one");
    if (payload != nullptr) require(*static_cast<const uint32_t *>(payload) == *expected, "the item is the right one");
}

void require_same_list(const QORV_LIST *list, const ListModel &model) {
    require(qorv_list_get_cnt(list) == model.count(), "the count is the number of items");
    for (int i = 0; i <= model.count(); i++) {
        const QORV_LIST_NODE *id = qorv_list_get_id(list, i);
        require((id != nullptr) == (i < model.count()), "every item has an id");
        require_same(qorv_list_get_at(list, i), model.at(i));
        if (id != nullptr) require_same(qorv_list_get_atid(list, id), model.at(i));
    }
    require_same(qorv_list_get_first(list), model.at(0));
    require_same(qorv_list_get_last(list), model.at(model.count() - 1));
    require_same(qorv_list_get_cur(list), model.at(model.cursor));
    require(freed == model.removed, "items are freed as they are removed");
}

// Adds and moves: what they give is what the model gives.
void add_or_move(Input &input, QORV_LIST *list, ListModel &model, int op, int32_t idx) {
    const uint32_t item = input.byte();
    switch (op) {
        case 0:
            return require_same(qorv_list_add(list, &item), model.insert(model.count(), item));
        case 1:
            return require_same(qorv_list_add_first(list, &item), model.insert(0, item));
        case 2: {
            const bool taken = idx < 0 || idx == model.count();
            return require_same(qorv_list_insert_at(list, &item, idx),
                                taken ? model.insert(idx < 0 ? 0 : idx, item) : nullptr);
        }
        case 3:
            return require_same(qorv_list_move_first(list), model.move(0));
        case 4:
            return require_same(qorv_list_move_last(list), model.move(model.count() - 1));
        case 5:
            return require_same(qorv_list_move_next(list), model.move(model.cursor < 0 ? -1 : model.cursor + 1));
        default:
            return require_same(qorv_list_move_prev(list), model.move(model.cursor - 1));
    }
}

void remove(QORV_LIST *list, ListModel &model, int op, int32_t idx) {
    QORV_LIST_NODE *id = qorv_list_get_id(list, idx);
    switch (op) {
        case 0:
            return qorv_list_rem_at(list, idx), model.remove(idx);
        case 1:
            if (id != nullptr) qorv_list_rem_atid(list, id);
            return model.remove(idx);
        case 2:
            return qorv_list_rem_first(list), model.remove(0);
        case 3:
            return qorv_list_rem_last(list), model.remove(model.count() - 1);
        case 4:
            return qorv_list_rem_cur(list), model.remove(model.cursor);
        case 5:
            return qorv_list_rem_prev(list), model.remove((model.cursor < 0 ? model.count() : model.cursor) - 1);
        case 6:
            return qorv_list_rem_next(list), model.remove(model.cursor < 0 ? -1 : model.cursor + 1);
        default:
            return qorv_list_rem_all(list), model.remove_all();
    }
}

void run_list(Input &input) {
    QORV_LIST *list = qorv_list_create(sizeof(uint32_t), record_free);
    ListModel model;
    freed.clear();
    while (!input.empty()) {
        const int op = input.byte() % 22;
        const int32_t idx = input.between(-1, model.count() + 1);
        op < 14 ? add_or_move(input, list, model, op % 7, idx) : remove(list, model, op - 14, idx);
        require_same_list(list, model);
    }
    qorv_list_delete(list);
    model.remove_all();
    require(freed == model.removed, "the rest is freed with the list");
}

// Two queues of the buffers: those in use, each with the byte that fills it, and those given back.
struct PoolModel {
    struct Used {
        uint8_t *buf, content;
    };
    std::deque<Used> used;
    std::deque<uint8_t *> given_back;
    int32_t unused;

    // Buffers never used come before those given back.
    void take(uint8_t *buf, uint8_t content) {
        if (unused > 0) {
            unused--;
            for (const Used &u : used) require(u.buf != buf, "a buffer is given once");
            for (const uint8_t *g : given_back) require(g != buf, "buffers never used come first");
        } else {
            require(!given_back.empty() && buf == given_back.front(), "buffers come back in their order");
            given_back.pop_front();
        }
        used.push_back({buf, content});
    }
    void give_back() {
        if (used.empty()) return;
        given_back.push_back(used.front().buf);
        used.pop_front();
    }
};

void run_rlist(Input &input) {
    constexpr int32_t kBytes = 9;
    const int32_t count = input.between(0, 9);
    QORV_RLIST *rlist = qorv_rlist_create(kBytes, count);
    PoolModel model{{}, {}, count};
    while (!input.empty()) {
        const uint8_t op = input.byte();
        if (op % 4 < 2) {
            auto *buf = static_cast<uint8_t *>(qorv_rlist_get_buf(rlist));
            require((buf != nullptr) == (static_cast<int32_t>(model.used.size()) < count), "a free buffer is given");
            if (buf == nullptr) continue;
            std::memset(buf, op, kBytes);
            model.take(buf, op);
        } else if (op % 64 != 3) {
            qorv_rlist_rem_data(rlist);
            model.give_back();
        } else {
            qorv_rlist_rem_all(rlist);
            while (!model.used.empty()) model.give_back();
        }
        const auto *oldest = static_cast<const uint8_t *>(qorv_rlist_get_data(rlist));
        require(oldest == (model.used.empty() ? nullptr : model.used.front().buf), "the data is the oldest");
        for (const PoolModel::Used &u : model.used) {
            require(std::count(u.buf, u.buf + kBytes, u.content) == kBytes, "a buffer in use keeps its content");
        }
        const auto used = static_cast<int32_t>(model.used.size());
        require(qorv_rlist_get_used_cnt(rlist) == used, "used buffers are counted");
        require(qorv_rlist_get_free_cnt(rlist) == count - used, "free buffers are counted");
    }
    qorv_rlist_delete(rlist);
}

void require_same_ring(const QORV_RBUF *rbuf, const test::RingModel &model) {
    require(rbuf->wr == model.wr && rbuf->rd == model.rd, "the positions follow the formulas");
    require(std::equal(model.buf.begin(), model.buf.end(), rbuf->buf), "the storage holds what was put");
    const bool full = model.full(), empty = model.wr == model.rd;
    require(qorv_rbuf_is_full(rbuf) == full && qorv_rbuf_is_empty(rbuf) == empty, "full and empty are told");
    require(qorv_rbuf_get_free_len(rbuf) == model.free_len() && qorv_rbuf_get_fill_len(rbuf) == model.fill_len(),
            "the lengths follow the formulas");
    void *region;
    int32_t length;
    qorv_rbuf_get_head(rbuf, &region, &length);
    require(region == (full ? nullptr : rbuf->buf + model.wr) && length == (full ? 0 : model.freec_len()),
            "the head follows the formulas");
    qorv_rbuf_get_tail(rbuf, &region, &length);
    require(region == (empty ? nullptr : rbuf->buf + model.rd) && length == (empty ? 0 : model.fillc_len()),
            "the tail follows the formulas");
}

void take_line(QORV_RBUF *rbuf, test::RingModel &model, int32_t dsize) {
    // No more room than is asked for; the model's line begins one byte later.
    std::vector<uint8_t> line(static_cast<size_t>(std::max(dsize, model.size) + 2), 0xEE);
    test::Bytes expected(line.size() + 1, 0xEE);
    require(qorv_rbuf_get_one_line(rbuf, reinterpret_cast<char *>(line.data()), dsize) == model.line(dsize, expected),
            "a line has its length");
    require(std::equal(line.begin(), line.end(), expected.begin() + 1), "a line has its text");
}

void write_in_place(Input &input, QORV_RBUF *rbuf, test::RingModel &model, int32_t n) {
    void *region;
    int32_t length;
    qorv_rbuf_get_head(rbuf, &region, &length);
    for (int32_t i = 0; i < std::min(n, length); i++) {
        static_cast<uint8_t *>(region)[i] = model.at(model.wr + i) = input.byte();
    }
    require(qorv_rbuf_skip_head(rbuf, n) == model.skip_head(n), "what fits is committed");
}

constexpr uint8_t kText[] = {'a', '\r', '\n', 0};

void run_rbuf(Input &input) {
    const int32_t size = input.between(1, 40);
    QORV_RBUF *rbuf = qorv_rbuf_create(size);
    test::RingModel model(size);
    while (!input.empty()) {
        const uint8_t op = input.byte();
        const int32_t n = input.between(0, size + 3);
        switch (op % 8) {
            case 0:
            case 1: {
                std::vector<uint8_t> bytes = input.bytes(static_cast<size_t>(n));
                // Line ends and zero bytes among them.
                for (uint8_t &byte : bytes) byte = (op & 8) != 0 ? kText[byte % 4] : byte;
                require(qorv_rbuf_put(rbuf, bytes.data(), n) == model.put(bytes), "all is put or nothing");
                break;
            }
            case 2: {
                std::vector<uint8_t> bytes(static_cast<size_t>(n));
                test::Bytes expected;
                require(qorv_rbuf_get(rbuf, bytes.data(), n) == model.get(n, expected), "what there is is taken");
                require(std::equal(expected.begin(), expected.end(), bytes.begin()), "the bytes come in order");
                break;
            }
            case 3:
            case 4:
                take_line(rbuf, model, n);
                break;
            case 5:
                write_in_place(input, rbuf, model, n);
                break;
            case 6:
                require(qorv_rbuf_skip_tail(rbuf, n) == model.skip_tail(n), "what there is is skipped");
                break;
            default:
                if (op % 64 == 7) {
                    qorv_rbuf_empty(rbuf);
                    model.rd = model.wr;
                }
        }
        require_same_ring(rbuf, model);
    }
    qorv_rbuf_delete(rbuf);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input input(data, size);
    switch (input.byte() % 3) {
        case 0:
            run_list(input);
            break;
        case 1:
            run_rlist(input);
            break;
        default:
            run_rbuf(input);
            break;
    }
    return 0;
}
