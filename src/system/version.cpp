#include "qorv_skia.h"

namespace {
constexpr char kVersionText[64] = {};
}

extern "C" const char *qorv_version(void) {
    return kVersionText;
}
