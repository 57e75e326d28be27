#include <stdlib.h>

#include "qorv_skia.h"

namespace {

using Node = QORV_RLIST_NODE;

void *payload(Node *node) {
    return node + 1;
}

// Appends a node to the back of the chain.
bool append(QORV_RLIST &rlist) {
    Node *node = static_cast<Node *>(malloc(sizeof(Node) + static_cast<size_t>(rlist.isize)));
    if (node == nullptr) return false;
    *node = {rlist.last, nullptr};
    if (rlist.last == nullptr) {
        rlist.first = node;
    } else {
        rlist.last->next = node;
    }
    rlist.last = node;
    return true;
}

}  // namespace

extern "C" QORV_RLIST *qorv_rlist_create(int32_t isize, int32_t count) {
    QORV_RLIST *rlist = static_cast<QORV_RLIST *>(calloc(1, sizeof *rlist));
    if (rlist == nullptr) return nullptr;
    rlist->max = count;
    rlist->isize = isize;
    int32_t made = 0;
    do {
        if (!append(*rlist)) {
            qorv_rlist_delete(rlist);
            return nullptr;
        }
    } while (++made < count);
    rlist->next_buf = rlist->last;
    return rlist;
}

extern "C" void qorv_rlist_delete(QORV_RLIST *rlist) {
    if (rlist == nullptr) return;
    for (Node *node = rlist->first; node != nullptr;) {
        Node *next = node->next;
        free(node);
        node = next;
    }
    free(rlist);
}

extern "C" void *qorv_rlist_get_buf(QORV_RLIST *rlist) {
    if (qorv_rlist_get_free_cnt(rlist) < 1) return nullptr;
    Node *node = rlist->next_buf;
    rlist->next_buf = node->prev;
    rlist->used++;
    return payload(node);
}

extern "C" void *qorv_rlist_get_data(const QORV_RLIST *rlist) {
    return rlist->used != 0 ? payload(rlist->last) : nullptr;
}

extern "C" void qorv_rlist_rem_data(QORV_RLIST *rlist) {
    if (rlist->used == 0) return;
    Node *node = rlist->last;
    // The only node of a pool stays where it is.
    if (node != rlist->first) {
        rlist->last = node->prev;
        rlist->last->next = nullptr;
        *node = {nullptr, rlist->first};
        rlist->first->prev = node;
        rlist->first = node;
    }
    if (rlist->next_buf == nullptr) rlist->next_buf = node;
    rlist->used--;
}

extern "C" void qorv_rlist_rem_all(QORV_RLIST *rlist) {
    while (rlist->used != 0) qorv_rlist_rem_data(rlist);
}

extern "C" int32_t qorv_rlist_get_used_cnt(const QORV_RLIST *rlist) {
    return static_cast<int32_t>(rlist->used);
}

extern "C" int32_t qorv_rlist_get_free_cnt(const QORV_RLIST *rlist) {
    return static_cast<int32_t>(static_cast<uint32_t>(rlist->max) - rlist->used);
}
