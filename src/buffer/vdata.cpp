#include <stdlib.h>
#include <string.h>

#include "qorv_skia.h"

namespace {
// Ends the copy as text of 8 and of 16 bits a character.
constexpr size_t kTerminator = 2;
}  // namespace

extern "C" int32_t qorv_vdata_set(QORV_VDATA *dst, const void *data, int32_t size, uint32_t type) {
    if (data == nullptr || size < 1) return QORV_ERR_INVALID_ARG;
    const size_t bytes = static_cast<size_t>(size);
    dst->data = malloc(bytes + kTerminator);
    if (dst->data == nullptr) return QORV_ERR_OUT_OF_MEMORY;
    memcpy(dst->data, data, bytes);
    memset(static_cast<char *>(dst->data) + bytes, 0, kTerminator);
    dst->type = type;
    dst->size = size;
    return QORV_OK;
}

extern "C" int32_t qorv_vdata_cpy(QORV_VDATA *dst, const QORV_VDATA *src) {
    return qorv_vdata_set(dst, src->data, src->size, src->type);
}

extern "C" void qorv_vdata_free(QORV_VDATA *vdata) {
    if (vdata == nullptr) return;
    free(vdata->data);
    *vdata = {};
}
