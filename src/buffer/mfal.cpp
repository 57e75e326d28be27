#include "buffer/reference.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {
void own_nothing(QORV_MFAL & /*mfal*/) {}
}  // namespace

extern "C" QORV_MFAL *qorv_mfal_create(uint64_t /*unused*/, int32_t *status) {
    return create_record<own_nothing, QORV_MFAL>(status, [](QORV_MFAL & /*mfal*/) { return QORV_OK; });
}
