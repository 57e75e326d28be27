#include <stdlib.h>
#include <string.h>

#include "qorv_skia.h"

namespace {

using Node = QORV_LIST_NODE;

void *payload(Node *node) {
    return node + 1;
}

bool is_last(const QORV_LIST &list, const Node *node) {
    return node->next == list.tail;
}

Node *make_node(size_t payload_bytes) {
    return static_cast<Node *>(malloc(sizeof(Node) + payload_bytes));
}

// The node at an index, walked to from the nearer end. Index 0 of an empty list is the back sentinel.
Node *node_at(const QORV_LIST &list, int32_t idx) {
    Node *node;
    if (idx <= list.cnt / 2) {
        node = list.head->next;
        for (int32_t i = 0; i < idx; i++) node = node->next;
    } else {
        node = list.tail;
        for (int32_t i = list.cnt; i > idx; i--) node = node->prev;
    }
    return node;
}

void *insert_after(QORV_LIST &list, Node *before, const void *item) {
    const size_t bytes = static_cast<size_t>(list.isize);
    Node *node = make_node(bytes);
    if (node == nullptr) return nullptr;
    memcpy(payload(node), item, bytes);
    node->prev = before;
    node->next = before->next;
    before->next->prev = node;
    before->next = node;
    list.cnt++;
    return payload(node);
}

// A cursor on the node moves to the next item, or is unset at the last one.
void remove(QORV_LIST &list, Node *node) {
    if (list.cur == node) list.cur = is_last(list, node) ? nullptr : node->next;
    node->prev->next = node->next;
    node->next->prev = node->prev;
    if (list.item_free != nullptr) list.item_free(payload(node));
    free(node);
    list.cnt--;
}

// Puts the cursor on a node and returns its payload; a sentinel, or null, unsets it.
void *move_to(QORV_LIST &list, Node *node) {
    list.cur = node == list.head || node == list.tail ? nullptr : node;
    return qorv_list_get_cur(&list);
}

}  // namespace

extern "C" QORV_LIST *qorv_list_create(int32_t isize, qorv_item_free_fn item_free) {
    QORV_LIST *list = static_cast<QORV_LIST *>(calloc(1, sizeof *list));
    Node *head = make_node(0);
    Node *tail = make_node(0);
    if (list == nullptr || head == nullptr || tail == nullptr) {
        free(list);
        free(head);
        free(tail);
        return nullptr;
    }
    *head = {head, tail};
    *tail = {head, tail};
    list->isize = isize;
    list->head = head;
    list->tail = tail;
    list->item_free = item_free;
    return list;
}

extern "C" void qorv_list_delete(QORV_LIST *list) {
    if (list == nullptr) return;
    qorv_list_rem_all(list);
    free(list->head);
    free(list->tail);
    free(list);
}

extern "C" void qorv_list_rem_all(QORV_LIST *list) {
    while (list->cnt > 0) remove(*list, list->head->next);
    list->cur = nullptr;
}

extern "C" void *qorv_list_add(QORV_LIST *list, const void *item) {
    return insert_after(*list, list->tail->prev, item);
}

extern "C" void *qorv_list_add_first(QORV_LIST *list, const void *item) {
    return insert_after(*list, list->head, item);
}

extern "C" void *qorv_list_insert_at(QORV_LIST *list, const void *item, int32_t idx) {
    if (idx < 0) return qorv_list_add_first(list, item);
    return idx == list->cnt ? qorv_list_add(list, item) : nullptr;
}

extern "C" void *qorv_list_get_at(const QORV_LIST *list, int32_t idx) {
    if (idx >= 0 && idx >= list->cnt) return nullptr;
    return payload(node_at(*list, idx));
}

extern "C" QORV_LIST_NODE *qorv_list_get_id(const QORV_LIST *list, int32_t idx) {
    return idx >= 0 && idx < list->cnt ? node_at(*list, idx) : nullptr;
}

extern "C" void *qorv_list_get_atid(const QORV_LIST *list, const QORV_LIST_NODE *id) {
    for (Node *node = list->head->next; node != list->tail; node = node->next) {
        if (node == id) return payload(node);
    }
    return nullptr;
}

extern "C" void *qorv_list_get_first(const QORV_LIST *list) {
    return list->cnt != 0 ? payload(list->head->next) : nullptr;
}

extern "C" void *qorv_list_get_last(const QORV_LIST *list) {
    return list->cnt != 0 ? payload(list->tail->prev) : nullptr;
}

extern "C" int32_t qorv_list_get_cnt(const QORV_LIST *list) {
    return list->cnt;
}

extern "C" void *qorv_list_get_cur(const QORV_LIST *list) {
    return list->cur != nullptr ? payload(list->cur) : nullptr;
}

extern "C" void *qorv_list_move_first(QORV_LIST *list) {
    return move_to(*list, list->head->next);
}

extern "C" void *qorv_list_move_last(QORV_LIST *list) {
    return move_to(*list, list->tail->prev);
}

extern "C" void *qorv_list_move_next(QORV_LIST *list) {
    return move_to(*list, list->cur != nullptr ? list->cur->next : nullptr);
}

extern "C" void *qorv_list_move_prev(QORV_LIST *list) {
    return move_to(*list, list->cur != nullptr ? list->cur->prev : nullptr);
}

extern "C" void qorv_list_rem_at(QORV_LIST *list, int32_t idx) {
    if (idx >= 0 && idx < list->cnt) remove(*list, node_at(*list, idx));
}

extern "C" void qorv_list_rem_atid(QORV_LIST *list, QORV_LIST_NODE *id) {
    remove(*list, id);
}

extern "C" void qorv_list_rem_first(QORV_LIST *list) {
    if (list->cnt > 0) remove(*list, list->head->next);
}

extern "C" void qorv_list_rem_last(QORV_LIST *list) {
    if (list->cnt > 0) remove(*list, list->tail->prev);
}

extern "C" void qorv_list_rem_cur(QORV_LIST *list) {
    if (list->cur != nullptr) remove(*list, list->cur);
}

extern "C" void qorv_list_rem_prev(QORV_LIST *list) {
    Node *before = (list->cur != nullptr ? list->cur : list->tail)->prev;
    if (before != list->head) remove(*list, before);
}

extern "C" void qorv_list_rem_next(QORV_LIST *list) {
    if (list->cur != nullptr && !is_last(*list, list->cur)) remove(*list, list->cur->next);
}
