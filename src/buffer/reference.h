// What the reference-counted records share: a head of count and operations, each operation taking the record's own
// type, and a record that is zero until it is built.
#pragma once

#include <stdlib.h>

#include "qorv_skia.h"

namespace qorv {

template <class Record>
int32_t add_reference(Record *record) {
    return record == nullptr ? QORV_ERR_INVALID_ARG : qorv_atomic_inc(&record->refcnt);
}

template <class Record>
int32_t get_reference(Record *record) {
    return record == nullptr ? QORV_ERR_INVALID_ARG : __atomic_load_n(&record->refcnt, __ATOMIC_RELAXED);
}

// `Dispose` frees what the record owns beside itself.
template <auto Dispose, class Record>
int32_t release_reference(Record *record) {
    if (record == nullptr) return QORV_ERR_INVALID_ARG;
    const int32_t left = qorv_atomic_dec(&record->refcnt);
    if (left != 0) return left;
    Dispose(*record);
    free(record);
    return 0;
}

// Allocates a record and has `build` fill it, which returns a status and owns nothing when that is a failure.
template <auto Dispose, class Record, class Build>
Record *create_record(int32_t *status, Build build) {
    Record *record = static_cast<Record *>(calloc(1, sizeof(Record)));
    const int32_t result = record != nullptr ? build(*record) : QORV_ERR_OUT_OF_MEMORY;
    if (status != nullptr) *status = result;
    if (result != QORV_OK) {
        free(record);
        return nullptr;
    }
    record->addref = add_reference<Record>;
    record->getref = get_reference<Record>;
    record->release = release_reference<Dispose, Record>;
    record->refcnt = 1;
    return record;
}

}  // namespace qorv
