// Holds the public records to their binary layout wherever the library is built.
#include "qorv_skia.h"

#if defined(__LP64__)
#define QORV_AT(record, field, offset) static_assert(offsetof(record, field) == offset);
#define QORV_SIZE(record, bytes) static_assert(sizeof(record) == bytes);
#include "core/record_layouts.inc"
#endif
