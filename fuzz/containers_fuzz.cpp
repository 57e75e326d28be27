// Operation sequences on the list, the recycling list and the ring buffer.
#include <cstring>

#include "input.h"
#include "qorv_skia.h"

using fuzz::Input;
using fuzz::require;

namespace {

void run_list(Input &input) {
    QORV_LIST *list = qorv_list_create(4, nullptr);
    while (!input.empty()) {
        const uint32_t item = input.byte();
        const int32_t cnt = qorv_list_get_cnt(list);
        const int32_t idx = cnt > 0 ? input.between(-1, cnt) : cnt;
        switch (input.byte() % 17) {
            case 0:
                qorv_list_add(list, &item);
                break;
            case 1:
                qorv_list_add_first(list, &item);
                break;
            case 2:
                qorv_list_insert_at(list, &item, idx);
                break;
            case 3:
                if (cnt > 0) qorv_list_get_at(list, idx);
                break;
            case 4: {
                QORV_LIST_NODE *id = qorv_list_get_id(list, idx);
                if (id != nullptr) require(qorv_list_get_atid(list, id) != nullptr, "a live item is found by its id");
                break;
            }
            case 5:
                qorv_list_move_first(list);
                break;
            case 6:
                qorv_list_move_last(list);
                break;
            case 7:
                qorv_list_move_next(list);
                break;
            case 8:
                qorv_list_move_prev(list);
                break;
            case 9:
                qorv_list_rem_at(list, idx);
                break;
            case 10: {
                QORV_LIST_NODE *id = qorv_list_get_id(list, idx);
                if (id != nullptr) qorv_list_rem_atid(list, id);
                break;
            }
            case 11:
                qorv_list_rem_first(list);
                break;
            case 12:
                qorv_list_rem_last(list);
                break;
            case 13:
                qorv_list_rem_cur(list);
                break;
            case 14:
                qorv_list_rem_prev(list);
                break;
            case 15:
                qorv_list_rem_next(list);
                break;
            default:
                qorv_list_rem_all(list);
                break;
        }
        int32_t nodes = 0;
        for (int32_t i = 0; qorv_list_get_id(list, i) != nullptr; i++) nodes++;
        require(nodes == qorv_list_get_cnt(list), "the count is the number of items");
    }
    qorv_list_delete(list);
}

void run_rlist(Input &input) {
    const int32_t count = input.between(0, 9);
    QORV_RLIST *rlist = qorv_rlist_create(8, count);
    while (!input.empty()) {
        void *buf;
        switch (input.byte() % 4) {
            case 0:
                buf = qorv_rlist_get_buf(rlist);
                if (buf != nullptr) std::memset(buf, 1, 8);
                break;
            case 1:
                qorv_rlist_get_data(rlist);
                break;
            case 2:
                qorv_rlist_rem_data(rlist);
                break;
            default:
                qorv_rlist_rem_all(rlist);
                break;
        }
        const int32_t used = qorv_rlist_get_used_cnt(rlist);
        require(used >= 0 && used + qorv_rlist_get_free_cnt(rlist) == count, "every buffer is used or free");
    }
    qorv_rlist_delete(rlist);
}

void run_rbuf(Input &input) {
    const int32_t size = input.between(2, 40);
    QORV_RBUF *rbuf = qorv_rbuf_create(size);
    while (!input.empty()) {
        const int32_t n = input.between(0, 48);
        void *region;
        int32_t len;
        std::vector<uint8_t> bytes;
        switch (input.byte() % 7) {
            case 0:
                bytes = input.bytes(static_cast<size_t>(n));
                qorv_rbuf_put(rbuf, bytes.data(), n);
                break;
            case 1:
                bytes.resize(static_cast<size_t>(n));
                qorv_rbuf_get(rbuf, bytes.data(), n);
                break;
            case 2: {
                // As much room as the wrapped case may take, whatever the stated size.
                std::vector<char> line(static_cast<size_t>(size + n + 4));
                qorv_rbuf_get_one_line(rbuf, line.data(), n + 1);
                break;
            }
            case 3:
                qorv_rbuf_get_head(rbuf, &region, &len);
                if (region != nullptr && len > 0) {
                    std::memset(region, input.byte(), static_cast<size_t>(len));
                    qorv_rbuf_skip_head(rbuf, n < len ? n : len);
                }
                break;
            case 4:
                qorv_rbuf_get_tail(rbuf, &region, &len);
                if (region != nullptr && len > 0) {
                    bytes.assign(static_cast<uint8_t *>(region), static_cast<uint8_t *>(region) + len);
                    qorv_rbuf_skip_tail(rbuf, n < len ? n : len);
                }
                break;
            case 5:
                qorv_rbuf_empty(rbuf);
                break;
            default:
                qorv_rbuf_get_fill_len(rbuf);
                break;
        }
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
