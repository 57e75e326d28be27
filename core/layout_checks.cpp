// The binary layout of the public records where longs and pointers have 64 bits. A record that changes here breaks
// every program that was compiled before.
#include "qorv_skia.h"

#if defined(__LP64__)

#define QORV_AT(record, field, offset) static_assert(offsetof(record, field) == offset)
#define QORV_SIZE(record, bytes) static_assert(sizeof(record) == bytes)

QORV_AT(QORV_IMGB, refcnt, 0);
QORV_AT(QORV_IMGB, addref, 8);
QORV_AT(QORV_IMGB, getref, 16);
QORV_AT(QORV_IMGB, release, 24);
QORV_AT(QORV_IMGB, w, 32);
QORV_AT(QORV_IMGB, h, 36);
QORV_AT(QORV_IMGB, x, 40);
QORV_AT(QORV_IMGB, y, 44);
QORV_AT(QORV_IMGB, cs, 48);
QORV_AT(QORV_IMGB, s, 52);
QORV_AT(QORV_IMGB, e, 68);
QORV_AT(QORV_IMGB, a, 88);
QORV_AT(QORV_IMGB, pa, 120);
QORV_AT(QORV_IMGB, opaque, 152);
QORV_AT(QORV_IMGB, aw, 232);
QORV_AT(QORV_IMGB, ah, 236);
QORV_AT(QORV_IMGB, alloc, 240);
QORV_AT(QORV_IMGB, free, 248);
QORV_AT(QORV_IMGB, baddr, 256);
QORV_AT(QORV_IMGB, bpaddr, 288);
QORV_AT(QORV_IMGB, bsize, 320);
QORV_SIZE(QORV_IMGB, 328);

#endif
