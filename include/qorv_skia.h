/**
 * @file qorv_skia.h
 * @brief Base services for image and video codecs: the one public header of libqorv_skia, C11 and C++.
 *
 * Conventions that hold unless a function says otherwise:
 * - Nothing is validated that is not named as validated: pointers, sizes and strides are trusted.
 * - Widths and heights are in pixels or samples, strides are signed and in bytes, and a stride may be negative (the
 *   pointer then addresses the first row to be processed, which is the last one in memory).
 * - Not one byte outside the stated rows is written, and none is read.
 * - Every function may be called from any number of threads at once on disjoint objects. Only reference counts may be
 *   changed from several threads on one object.
 * - Results are the same bits on every processor.
 */
#ifndef QORV_SKIA_H
#define QORV_SKIA_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
/** Marks a declaration as exported from the shared library. */
#define QORV_API __attribute__((visibility("default")))
#else
#define QORV_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup version Version
 *  @{ */

/** Raised when the binary interface breaks. */
#define QORV_VERSION_MAJOR 1
/** Raised when something is added. */
#define QORV_VERSION_MINOR 0
/** Raised when something is mended. */
#define QORV_VERSION_PATCH 0

/**
 * The version text of the library that is loaded, which is empty: the QORV_VERSION_* macros are what to compare.
 * @return a constant area of 64 zero bytes that belongs to the library; always the same address, never null.
 */
QORV_API const char *qorv_version(void);

/** @} */

/** @defgroup status Status codes
 *  Zero is success, negative values are failures. A positive result of an add-reference, get-reference or release
 *  operation is a reference count.
 *  @{ */

/** The status codes; functions return them as int32_t. */
enum QORV_STATUS {
    /** Success. */
    QORV_OK = 0,
    /** Generic failure: nothing left to read, no room to write, not parsable, no hardware address. */
    QORV_ERR = -1,
    /** The bit reader's refill failed inside an Exp-Golomb code. */
    QORV_ERR_BSR_REFILL = -2,
    /** Resizer mode is neither 10 nor 11 (never meets #QORV_ERR_BSR_REFILL). */
    QORV_ERR_IRSZ_MODE = -2,
    /** The resizer could not be allocated. */
    QORV_ERR_IRSZ_NOMEM = -3,
    /** Resizer pixel format not supported. */
    QORV_ERR_UNSUPPORTED_FMT = -4,
    /** A control record or the copy of owned bytes could not be allocated, or a block is too small. */
    QORV_ERR_OUT_OF_MEMORY = -102,
    /** Null record, no bytes to copy, or an allocator without its release. */
    QORV_ERR_INVALID_ARG = -105,
    /** The sample-memory allocator returned null, or the sizes asked for do not fit their fields. */
    QORV_ERR_ALLOC_FAILED = -203,
    /** The bitstream buffer's allocator returned null. */
    QORV_ERR_BITB_ALLOC_FAILED = -204,
    /** Colour space or conversion pair not supported. */
    QORV_ERR_UNSUPPORTED_CS = -211
};

/** @} */

/** @defgroup alloc Aligned allocation and reference counts
 *  @{ */

/**
 * Allocates a block that starts on a 32-byte boundary.
 * @param size  bytes, 0 to 2^31 - 1. Not checked: -40 to -9 give a block too small for the address before it, which
 *              damages the heap; -8 to -1 give a block of no bytes, lower values null.
 * @return the block, or null when the system has no memory. Freed with qorv_mfree_align32(). The 8 bytes before the
 *         block hold the system allocator's address and must not be written.
 */
QORV_API void *qorv_malloc_align32(int32_t size);

/**
 * Frees a block of qorv_malloc_align32().
 * @param ptr  the block; null is ignored.
 */
QORV_API void qorv_mfree_align32(void *ptr);

/**
 * As qorv_malloc_align32(); a separate name so that a caller can route memory that must be fast differently.
 * @param size  bytes, as there.
 * @return the block, or null. Freed with qorv_mfree_fast_align32().
 */
QORV_API void *qorv_malloc_fast_align32(int32_t size);

/**
 * Frees a block of qorv_malloc_fast_align32().
 * @param ptr  the block; null is ignored.
 */
QORV_API void qorv_mfree_fast_align32(void *ptr);

/**
 * Adds 1 to a counter atomically (acquire and release ordering).
 * @param counter  shared counter, 4-byte aligned, not null.
 * @return the value after the addition; wraps from 2^31 - 1 to -2^31.
 */
QORV_API int32_t qorv_atomic_inc(int32_t *counter);

/**
 * Subtracts 1 from a counter atomically (acquire and release ordering).
 * @param counter  shared counter, 4-byte aligned, not null.
 * @return the value after the subtraction; wraps from -2^31 to 2^31 - 1.
 */
QORV_API int32_t qorv_atomic_dec(int32_t *counter);

/**
 * Allocates sample, audio or stream memory for a record.
 * @param size  bytes wanted.
 * @param aux   points to a 64-bit value, 0 on entry, into which the allocator may store a second address of the block
 *              (for instance a device address).
 * @return the block, or null on failure.
 */
typedef void *(*qorv_alloc_fn)(uint32_t size, uint64_t *aux);

/**
 * Releases a block of the #qorv_alloc_fn it is paired with.
 * @param block  the block.
 * @param aux    the value that the allocator stored.
 */
typedef void (*qorv_free_fn)(void *block, uint64_t aux);

/** @} */

/** @defgroup memory Memory kernels, wait and wake
 *  @{ */

/**
 * Fills memory with a byte in steps of 128 bytes: writes n rounded up to a multiple of 128, and 128 bytes even when n
 * is 0 or negative.
 * @param dst    first byte; room for the rounded size.
 * @param value  byte, low 8 bits.
 * @param n      bytes.
 */
QORV_API void qorv_mset_x128(void *dst, int32_t value, int32_t n);

/**
 * Fills exactly n bytes; made for multiples of 128 from 128 on.
 * @param dst    first byte, any alignment.
 * @param value  byte, low 8 bits.
 * @param n      bytes; 0 writes nothing.
 */
QORV_API void qorv_mset_x64(void *dst, int32_t value, size_t n);

/**
 * Fills exactly n bytes, any number of them.
 * @param dst    first byte, any alignment.
 * @param value  byte, low 8 bits.
 * @param n      bytes; 0 writes nothing.
 */
QORV_API void qorv_mset_x64a(void *dst, int32_t value, size_t n);

/**
 * Fills exactly n bytes; made for multiples of 32 from 32 on.
 * @param dst    first byte, any alignment.
 * @param value  byte, low 8 bits.
 * @param n      bytes; below 1 nothing is written.
 */
QORV_API void qorv_mset_x32(void *dst, int32_t value, int32_t n);

/**
 * Fills exactly n bytes; made for any number from 32 on.
 * @param dst    first byte, any alignment.
 * @param value  byte, low 8 bits.
 * @param n      bytes; below 1 nothing is written.
 */
QORV_API void qorv_mset_x32ax4(void *dst, int32_t value, int32_t n);

/**
 * Clears exactly n bytes; made for multiples of 64 from 64 on.
 * @param dst  first byte, any alignment.
 * @param n    bytes; below 1 nothing is written.
 */
QORV_API void qorv_mclr_x64(void *dst, int32_t n);

/**
 * Fills n samples of 16 bits.
 * @param dst    first sample, any alignment.
 * @param value  sample, stored in host order.
 * @param n      samples; below 1 nothing is written.
 */
QORV_API void qorv_mset16(void *dst, uint16_t value, int32_t n);

/**
 * Copies a picture row by row, or as one run when both strides equal the width.
 * @param dst         first row; must not overlap the source.
 * @param src         first row.
 * @param dst_stride  bytes between rows.
 * @param src_stride  bytes between rows.
 * @param width       bytes in a row; below 1 nothing is copied.
 * @param height      rows; below 1 nothing is copied.
 */
QORV_API void qorv_mcpy_pic(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                            int32_t height);

/**
 * As qorv_mcpy_pic() for 16-bit samples.
 * @param dst         first row, any alignment; must not overlap the source.
 * @param src         first row.
 * @param dst_stride  samples between rows.
 * @param src_stride  samples between rows.
 * @param width       samples in a row; below 1 nothing is copied.
 * @param height      rows; below 1 nothing is copied.
 */
QORV_API void qorv_mcpy_pic_16(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                               int32_t height);

/**
 * Copies a small block of one of the widths 2, 4, 6, 8, 12, 16, 24, 32 and 48 bytes. Every other width, 1 or 10 for
 * instance, copies 64 bytes of each row.
 * @param dst         first row, any alignment; must not overlap the source.
 * @param src         first row.
 * @param dst_stride  bytes between rows.
 * @param src_stride  bytes between rows.
 * @param width       bytes in a row, as above.
 * @param height      rows, any number; below 1 nothing is copied.
 */
QORV_API void qorv_mcpy_blk(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                            int32_t height);

/**
 * As qorv_mcpy_blk() for 16-bit samples: the same widths, in samples; every other width copies 64 samples of each row.
 * @param dst         first row, any alignment; must not overlap the source.
 * @param src         first row.
 * @param dst_stride  samples between rows.
 * @param src_stride  samples between rows.
 * @param width       samples in a row, as above.
 * @param height      rows, any number; below 1 nothing is copied.
 */
QORV_API void qorv_mcpy_blk_16(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                               int32_t height);

/**
 * Waits, without a time limit, until a word that threads or processes share holds a value or -1. What was written
 * before the qorv_sync_wake() that published the value is visible afterwards. A value that another one replaces before
 * the waiter has looked is missed. On AArch64 the waiter sleeps in the processor's event wait; elsewhere it spins for
 * some microseconds and then sleeps in the kernel, for 5 ms at a time: a plain store to the word, or a wake by another
 * process or another copy of the library, ends the wait no later than that. errno stays as it is.
 * @param word   shared word, 4-byte aligned.
 * @param value  value to wait for.
 * @return 0 when the word holds the value, -1 when it holds -1, which comes first and means that waiting is abandoned.
 */
QORV_API int32_t qorv_sync_wait(const int32_t *word, int32_t value);

/**
 * Publishes a value in a word and wakes every thread that waits on it. When the word holds the value already nothing is
 * stored, so that it may then lie in read-only memory.
 * @param word   shared word, 4-byte aligned.
 * @param value  value to store; -1 releases every waiter with the result -1.
 * @return 0.
 */
QORV_API int32_t qorv_sync_wake(int32_t *word, int32_t value);

/** @} */

/** @defgroup platform Platform queries
 *  @{ */

/**
 * The directory for temporary files.
 * @param path  receives "/tmp/" and its terminating zero; room for 6 bytes.
 * @return the length of the text, 5.
 */
QORV_API uint32_t qorv_get_temp_path(char *path);

/**
 * The hardware address of a wireless interface, from /sys/class/net/wlanN/address with N = index.
 * @param index  number of the interface: 0 for wlan0.
 * @param addr   8 bytes that receive the six octets and two zero bytes; all zero on failure.
 * @return #QORV_OK, or #QORV_ERR when there is no such file or it does not hold six octets.
 */
QORV_API int32_t qorv_get_mac_addr(int32_t index, uint8_t *addr);

/** @} */

/** @defgroup colourspace Colour spaces and plane geometry
 *  W and H are the picture's size; half(x) = (x + 1) >> 1 and quarter(x) = (x + 3) >> 2, so odd sizes round up.
 *  @{ */

/** Luma only, 8-bit. */
#define QORV_CS_YUV400 10
/** Planar, chroma half(W) x half(H), 8-bit. */
#define QORV_CS_YUV420 11
/** Planar, chroma half(W) x H, 8-bit. */
#define QORV_CS_YUV422 12
/** Planar, chroma W x H, 8-bit. */
#define QORV_CS_YUV444 13
/** Luma and one plane of interleaved chroma pairs, half(W) x half(H) pairs, 8-bit. */
#define QORV_CS_NV12 16
/** As #QORV_CS_NV12 with the other order in a pair. */
#define QORV_CS_NV21 17
/** Planar, chroma W x half(H), 8-bit. */
#define QORV_CS_YUV440 18
/** Luma only, 16-bit words. */
#define QORV_CS_YUV400_16 20
/** Planar, chroma quarter(W) x H, 8-bit. */
#define QORV_CS_YUV411 22
/** #QORV_CS_YUV420 and an alpha plane W x H. */
#define QORV_CS_YUVA420 41
/** #QORV_CS_YUV422 and an alpha plane W x H. */
#define QORV_CS_YUVA422 42
/** #QORV_CS_YUV444 and an alpha plane W x H. */
#define QORV_CS_YUVA444 43
/** #QORV_CS_YUV440 and an alpha plane W x H. */
#define QORV_CS_YUVA440 44
/** Planar 4:2:0 (three planes), 10-bit samples in the low bits of 16-bit words. */
#define QORV_CS_P010 60
/** Planar 4:2:2, 10-bit samples in 16-bit words. */
#define QORV_CS_P210 61
/** Planar 4:4:4, 10-bit samples in 16-bit words. */
#define QORV_CS_P410 62
/** Planar 4:2:0 in 16-bit words. */
#define QORV_CS_YUV420_16 63
/** Planar 4:2:2 in 16-bit words. */
#define QORV_CS_YUV422_16 64
/** Packed 16-bit words: red in bits 15..11, green in 10..5, blue in 4..0. */
#define QORV_CS_RGB565 200
/** Packed bytes R, G, B. */
#define QORV_CS_RGB888 400
/** Packed bytes B, G, R (no converter is registered for it). */
#define QORV_CS_BGR888 401
/** 5-6-5 words and alpha bytes, 3 bytes a pixel; see the converters. */
#define QORV_CS_RGBA5658 430
/** Packed bytes R, G, B, A. */
#define QORV_CS_RGBA8888 500
/** Packed bytes B, G, R, A. */
#define QORV_CS_BGRA8888 501
/** Packed bytes A, R, G, B. */
#define QORV_CS_ARGB8888 502
/** Planes R, G, B of bytes (converters only). */
#define QORV_CS_R8G8B8 600
/** Planes R, G, B, 10-bit in 16-bit words (converters only). */
#define QORV_CS_R10G10B10 603
/** A plane of 5-6-5 words and a plane of alpha bytes (converters only). */
#define QORV_CS_RGB565A8 650
/** Planes R, G, B, A of bytes (converters only). */
#define QORV_CS_R8G8B8A8 700

/**
 * The planes of a picture in the YUV family, or in #QORV_CS_RGB888.
 * @param cs           colour space: the identifiers 10 to 64 above, or #QORV_CS_RGB888. The image buffer alone knows
 *                     the other packed RGB identifiers.
 * @param widths       four elements. [0] is the picture's width W in pixels and is only read; on success the elements 1
 *                     to planes - 1 receive the other planes' widths in elements, the rest stay as they are.
 * @param heights      as widths, for the heights in rows.
 * @param plane_count  receives the number of planes, 1 to 4.
 * @param units        four elements; on success 0 to planes - 1 receive a unit word: upper 16 bits the bytes of one
 *                     horizontal element, lower 16 bits the rows of one element row (always 1).
 * @return #QORV_OK, or #QORV_ERR_UNSUPPORTED_CS with nothing written. Sizes are not checked.
 */
QORV_API int32_t qorv_imgb_get_dimension(uint32_t cs, uint32_t *widths, uint32_t *heights, uint32_t *plane_count,
                                         uint32_t *units);

/** @} */

/** @defgroup imgb Image buffer
 *  A reference-counted picture of up to four planes in one block of memory.
 *  @{ */

/** Clear the alignment margin of every plane. */
#define QORV_IMGB_OPT_ZERO_ALIGN 1u
/** Clear the padding of every plane. */
#define QORV_IMGB_OPT_ZERO_PAD 2u

/** Builds one element of an alignment or padding array: horizontal elements in the upper half, rows in the lower. */
#define QORV_IMGB_WORD(horizontal, vertical) (((uint32_t)(horizontal) << 16) | (uint32_t)(vertical))

typedef struct QORV_IMGB QORV_IMGB;

/** A picture. Made by qorv_imgb_create(); the fields are read by the user, only x and y are his to set. */
struct QORV_IMGB {
    /** Reference count; changed only by the three operations. */
    int32_t refcnt;
    /** Adds a reference: the new count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*addref)(QORV_IMGB *imgb);
    /** The count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*getref)(QORV_IMGB *imgb);
    /** Drops a reference: the count left, 0 once block and record are freed, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*release)(QORV_IMGB *imgb);
    /** Width of plane 0 in pixels, before alignment. */
    int32_t w;
    /** Height of plane 0 in rows, before alignment. */
    int32_t h;
    /** First column of the active region; 0 after create and rebirth. */
    int32_t x;
    /** First row of the active region; 0 after create and rebirth. */
    int32_t y;
    /** Colour space, QORV_CS_*. */
    uint32_t cs;
    /** Stride of each plane in bytes, padding included. */
    int32_t s[4];
    /** Rows allocated for each plane, padding included. */
    int32_t e[4];
    /** First visible sample of each plane. */
    void *a[4];
    /** The same four positions in the auxiliary address space. Where the block's auxiliary address is 0, as with the
     *  default allocator, [0] is 0, without the shift by the padding that the other planes have. */
    uint64_t pa[4];
    /** Zero after create, never touched by the library; kept across rebirth. */
    uint8_t opaque[80];
    /** Aligned width of plane 0 in pixels. */
    int32_t aw;
    /** Aligned height of plane 0 in rows. */
    int32_t ah;
    /** Allocator in use. */
    qorv_alloc_fn alloc;
    /** Its release function. */
    qorv_free_fn free;
    /** Storage of each plane (top-left corner of the padding); [0] the block. */
    void *baddr[4];
    /** The same in the auxiliary address space; with the default allocator plain byte offsets into the block. */
    uint64_t bpaddr[4];
    /** Bytes in the block. */
    uint32_t bsize;
};

/**
 * Creates a picture with a reference count of 1.
 *
 * A plane's width in elements is aligned up, multiplied by the bytes of an element and widened by the padding of both
 * sides to give its stride; its rows likewise. The planes lie one after the other in one block. Packed RGB identifiers
 * take 2 (100 to 299), 4 (300 to 399), 3 (400 to 499) or 4 (500 to 599) bytes a pixel; identifiers from 600 on are
 * refused.
 *
 * @param w       width in pixels.
 * @param h       height in rows.
 * @param cs      colour space, 10 to 599.
 * @param opt     QORV_IMGB_OPT_* flags; other bits are ignored.
 * @param align   null, or four alignment words (#QORV_IMGB_WORD): horizontal alignment in elements, vertical in rows,
 *                powers of two (1: none; 0 gives an aligned size of 0). Packed RGB reads element 0 only.
 * @param pad     null, or four padding words: elements on the left and on the right, rows above and below. Packed RGB
 *                reads element 0 only.
 * @param alloc   sample-memory allocator, or null for qorv_malloc_align32() (free is then ignored).
 * @param free    its release function.
 * @param status  null, or receives #QORV_OK, #QORV_ERR_INVALID_ARG (alloc without free), #QORV_ERR_OUT_OF_MEMORY (the
 *                record), #QORV_ERR_UNSUPPORTED_CS or #QORV_ERR_ALLOC_FAILED (the block; or the sizes do not fit: the
 *                sum of stride x rows is 2^32 bytes or more, or a stride or a number of rows is above 2^31 - 1, as that
 *                of a negative w or h is).
 * @return the picture, or null with nothing leaked. From 2^31 bytes on the default allocator fails.
 */
QORV_API QORV_IMGB *qorv_imgb_create(int32_t w, int32_t h, uint32_t cs, uint32_t opt, const uint32_t *align,
                                     const uint32_t *pad, qorv_alloc_fn alloc, qorv_free_fn free, int32_t *status);

/**
 * Clears the margins of a picture that is laid out; create and rebirth call it with the layout they computed.
 *
 * Alignment first: the bytes right of each visible row up to the aligned width, then the rows from the height to the
 * aligned height. In packed RGB only "aligned width" bytes (not pixels) of each bottom row are cleared. Then padding:
 * whole rows above and below, and the left and right margin of the rows between. The right margin is cleared at byte
 * (aligned width + horizontal padding) x unit.
 *
 * @param imgb             the picture.
 * @param opt              QORV_IMGB_OPT_* flags; 0 does nothing, other bits are ignored.
 * @param plane_count      planes, 1 to 4.
 * @param widths           of the planes, in elements; not used for packed RGB, whose size is the record's w and h.
 * @param heights          of the planes, in rows; not used for packed RGB.
 * @param aligned_widths   of the planes, in elements.
 * @param aligned_heights  of the planes, in rows.
 * @param pad              padding words of the planes; null stands for no padding.
 * @param units            unit words of the planes, see qorv_imgb_get_dimension().
 * @return #QORV_OK, or #QORV_ERR_UNSUPPORTED_CS when the alignment is to be cleared of a colour space outside 10 to 99
 *         and 100 to 599.
 */
QORV_API int32_t qorv_imgb_option(QORV_IMGB *imgb, uint32_t opt, uint32_t plane_count, const uint32_t *widths,
                                  const uint32_t *heights, const uint32_t *aligned_widths,
                                  const uint32_t *aligned_heights, const uint32_t *pad, const uint32_t *units);

/**
 * Lays a picture out again in its own block, for a new size or colour space. Count, block, bsize, allocator pair and
 * opaque area stay; x and y become 0.
 * @param imgb   the picture; no other thread may use it meanwhile.
 * @param w      new width in pixels.
 * @param h      new height in rows.
 * @param cs     new colour space, as for create.
 * @param opt    QORV_IMGB_OPT_* flags. Without a padding array none of them is applied, the alignment flag included.
 * @param align  null, or four alignment words.
 * @param pad    null, or four padding words.
 * @return #QORV_OK; or, with no field changed, #QORV_ERR_UNSUPPORTED_CS, #QORV_ERR_ALLOC_FAILED for sizes that do not
 *         fit (see qorv_imgb_create()), #QORV_ERR_INVALID_ARG for a null picture, or #QORV_ERR_OUT_OF_MEMORY when the
 *         block is too small for the new layout.
 */
QORV_API int32_t qorv_imgb_rebirth(QORV_IMGB *imgb, int32_t w, int32_t h, uint32_t cs, uint32_t opt,
                                   const uint32_t *align, const uint32_t *pad);

/** @} */

/** @defgroup border Border expansion
 *  @{ */

/**
 * Fills the padding round every plane: each row's first sample to its left, its last sample to its right, then the
 * first and the last row, margins included, upwards and downwards.
 *
 * The planes' sizes follow from the aligned picture, aw x ah: with 4:2:0 a chroma plane counts as half(aw) x half(ah).
 * Where a finer alignment than luma's made the plane itself smaller than that, each row's right margin reaches by the
 * difference into the next row's storage, and the margin below by the difference in rows beyond the plane's; of the
 * last plane both may end past the block. One alignment word for all planes avoids it. Odd ends:
 * - With unequal halves of a padding word the left run begins `vertical` samples left of the row and is `horizontal`
 *   samples long, so it ends inside the row when the horizontal half is the larger one, and leaves a gap when it is the
 *   smaller one.
 * - The chroma plane of #QORV_CS_NV12 and #QORV_CS_NV21 is treated as half(aw) single bytes a row, half of what a row
 *   has: the right margin is written over the visible pairs of its right half, and pairs are not kept together. Expand
 *   no picture of these layouts that is still to be shown.
 * - The copies up and down are a whole stride long. Where they begin inside the reserved margin (in semi-planar chroma,
 *   and with less horizontal padding than was reserved) each runs into the left margin of the row after it, after the
 *   last row into what follows in the block; the block's end is kept.
 *
 * @param imgb  the picture, with the padding reserved at creation.
 * @param pad   one padding word (#QORV_IMGB_WORD) for each plane, normally those given at creation; larger ones write
 *              outside the block. 0 leaves the plane unchanged.
 * @return #QORV_OK, or #QORV_ERR_UNSUPPORTED_CS with nothing written for anything but the YUV identifiers (10 to 64).
 */
QORV_API int32_t qorv_imgb_expand(QORV_IMGB *imgb, const uint32_t *pad);

/**
 * Repeats one byte of each row: `count` bytes at dst + r x stride take the byte at src + r x stride.
 * @param src     the byte of row 0.
 * @param dst     the run of row 0.
 * @param rows    rows; below 1 nothing is written.
 * @param stride  bytes between rows, of source and destination.
 * @param count   bytes in a run; below 1 nothing is written.
 */
QORV_API void qorv_imgb_expand_ver(const void *src, void *dst, int32_t rows, int32_t stride, int32_t count);

/**
 * As qorv_imgb_expand_ver() for 16-bit samples.
 * @param src     the sample of row 0, any alignment.
 * @param dst     the run of row 0, any alignment.
 * @param rows    rows; below 1 nothing is written.
 * @param stride  bytes between rows; an odd stride counts as the even one above it.
 * @param count   samples in a run; below 1 nothing is written.
 */
QORV_API void qorv_imgb_expand_ver_16(const void *src, void *dst, int32_t rows, int32_t stride, int32_t count);

/**
 * Writes `count` copies of a run of bytes one after the other.
 * @param src    the run; must not overlap the copies.
 * @param dst    room for len x count bytes.
 * @param len    bytes in the run; below 1 nothing is written.
 * @param count  copies; below 1 nothing is written.
 */
QORV_API void qorv_imgb_expand_hor(const void *src, void *dst, int32_t len, int32_t count);

/** @} */

/** @defgroup buffers Audio, bitstream and bare buffers, owned bytes
 *  @{ */

typedef struct QORV_AUDB QORV_AUDB;
typedef struct QORV_BITB QORV_BITB;
typedef struct QORV_MFAL QORV_MFAL;

/** Audio samples, in one buffer for all channels or in one for each. Made by qorv_audb_create(). */
struct QORV_AUDB {
    /** Reference count; changed only by the three operations. */
    int32_t refcnt;
    /** Adds a reference: the new count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*addref)(QORV_AUDB *audb);
    /** The count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*getref)(QORV_AUDB *audb);
    /** Drops a reference: the count left, 0 once buffers and record are freed, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*release)(QORV_AUDB *audb);
    /** Samples per channel that each buffer holds; 0 where there is none. */
    uint32_t samples[8];
    /** Bytes in each buffer. */
    uint32_t size[8];
    /** The buffers; null where there is none. */
    void *buf[8];
    /** What the allocator stored for each buffer. */
    uint64_t aux[8];
    /** Channels. */
    int32_t channels;
    /** Bits per sample. */
    uint32_t bits;
    /** The creator's, stored only. */
    uint32_t attr;
    /** 1: all channels share buffer 0; 0: one buffer a channel. */
    uint32_t interleaved;
    /** The creator's; 1 to 99 selected interleaved. */
    int32_t layout;
    /** Zero after create, never touched by the library. */
    uint8_t opaque[80];
    /** Allocator in use. */
    qorv_alloc_fn alloc;
    /** Its release function. */
    qorv_free_fn free;
};

/** A buffer of compressed bytes. Made by qorv_bitb_create(); its capacity is not kept. */
struct QORV_BITB {
    /** Reference count; changed only by the three operations. */
    int32_t refcnt;
    /** Adds a reference: the new count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*addref)(QORV_BITB *bitb);
    /** The count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*getref)(QORV_BITB *bitb);
    /** Drops a reference: the count left, 0 once buffer and record are freed, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*release)(QORV_BITB *bitb);
    /** The bytes. */
    void *buf;
    /** What the allocator stored. */
    uint64_t aux;
    /** Zero after create, never touched by the library. */
    uint8_t opaque_head[8];
    /** The creator's, stored only. */
    uint32_t type;
    /** Zero after create, never touched by the library. */
    uint8_t opaque[80];
    /** Allocator in use. */
    qorv_alloc_fn alloc;
    /** Its release function; null: the bytes are not freed. */
    qorv_free_fn free;
};

/** A bare reference-counted record. Made by qorv_mfal_create(). */
struct QORV_MFAL {
    /** Reference count; changed only by the three operations. */
    int32_t refcnt;
    /** Adds a reference: the new count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*addref)(QORV_MFAL *mfal);
    /** The count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*getref)(QORV_MFAL *mfal);
    /** Drops a reference: the count left, 0 once the record is freed, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*release)(QORV_MFAL *mfal);
    /** Zero after create, never touched by the library. */
    uint8_t opaque[80];
};

/** Bytes owned by whoever holds the record. All zero is the empty value; must be emptied with qorv_vdata_free() before
 * it is set again, since set and copy overwrite the address. */
typedef struct QORV_VDATA {
    /** The holder's, copied along with the bytes. */
    uint32_t type;
    /** Bytes. */
    int32_t size;
    /** The copy, followed by two zero bytes that end it as text of 8 or 16 bits a character. */
    void *data;
} QORV_VDATA;

/**
 * Creates an audio buffer with a reference count of 1. A sample takes (bits + 7) >> 3 bytes.
 * @param samples   samples per channel.
 * @param channels  channels, at most 8 (not checked); below 1 without interleaving makes a record without buffers.
 * @param bits      bits per sample.
 * @param attr      stored only.
 * @param layout    1 to 99: one buffer of samples x channels, otherwise one buffer of samples for each channel.
 * @param unused    ignored.
 * @param alloc     allocator, or null for qorv_malloc_align32() (free is then ignored).
 * @param free      its release function; taken as given, so it must not be null beside an allocator.
 * @param status    null, or receives #QORV_OK, #QORV_ERR_OUT_OF_MEMORY (the record) or #QORV_ERR_ALLOC_FAILED (a
 *                  channel's memory; or one buffer would take 2^32 bytes or more).
 * @return the buffer, or null with nothing leaked. From 2^31 bytes a buffer on the default allocator fails.
 */
QORV_API QORV_AUDB *qorv_audb_create(uint32_t samples, int32_t channels, uint32_t bits, uint32_t attr, int32_t layout,
                                     uint64_t unused, qorv_alloc_fn alloc, qorv_free_fn free, int32_t *status);

/**
 * Creates a bitstream buffer with a reference count of 1.
 * @param capacity  bytes.
 * @param type      stored only.
 * @param unused    ignored.
 * @param alloc     allocator, or null for the system's (free is then ignored).
 * @param free      its release function; null keeps the bytes from being freed.
 * @param status    null, or receives #QORV_OK, #QORV_ERR_OUT_OF_MEMORY (the record) or #QORV_ERR_BITB_ALLOC_FAILED.
 * @return the buffer, or null with nothing leaked.
 */
QORV_API QORV_BITB *qorv_bitb_create(uint32_t capacity, uint32_t type, uint64_t unused, qorv_alloc_fn alloc,
                                     qorv_free_fn free, int32_t *status);

/**
 * Creates a bare record with a reference count of 1.
 * @param unused  ignored.
 * @param status  null, or receives #QORV_OK or #QORV_ERR_OUT_OF_MEMORY.
 * @return the record, or null.
 */
QORV_API QORV_MFAL *qorv_mfal_create(uint64_t unused, int32_t *status);

/**
 * Makes a value own a copy of another one's bytes, type included.
 * @param dst  an empty value; what it owned before is not freed.
 * @param src  the value to copy.
 * @return #QORV_OK; #QORV_ERR_INVALID_ARG, with dst unchanged, for a source of fewer than 1 byte or without an address;
 *         #QORV_ERR_OUT_OF_MEMORY with dst->data null.
 */
QORV_API int32_t qorv_vdata_cpy(QORV_VDATA *dst, const QORV_VDATA *src);

/**
 * Makes a value own a copy of bytes.
 * @param dst   an empty value; what it owned before is not freed.
 * @param data  the bytes.
 * @param size  how many, from 1 on.
 * @param type  stored only.
 * @return #QORV_OK; #QORV_ERR_INVALID_ARG, with dst unchanged, for a null address or a size below 1;
 *         #QORV_ERR_OUT_OF_MEMORY with dst->data null.
 */
QORV_API int32_t qorv_vdata_set(QORV_VDATA *dst, const void *data, int32_t size, uint32_t type);

/**
 * Frees what a value owns and makes it the empty value.
 * @param vdata  the value; null is ignored.
 */
QORV_API void qorv_vdata_free(QORV_VDATA *vdata);

/** @} */

/** @defgroup bsr Bit reader
 *  Reads a byte buffer as a stream of bits, the most significant bit of each byte first, through a 32-bit cache word
 *  that a replaceable function refills. The caller owns record and buffer; there is nothing to free.
 *
 *  Stream position in bits: 8 x (cur - beg) - leftbits. A refill that fails at the end of the data empties the cache;
 *  from then on `cur` stays and every read that needs a refill fails.
 *
 *  leftbits may become negative, a debt: by a read or a skip across the end of the data, as many bits as were missing,
 *  and by qorv_bsr_read_un() and qorv_bsr_read_tu(), whose counts end with the cache word. The next refill pays it: a
 *  read of n bits then takes the bits of the debt and n more from the new word, and gives them all. Until then
 *  qorv_bsr_read1() refills nothing, as it looks for leftbits 0 alone: after a read of 12 bits of a byte it gives 0 for
 *  ever, and each call moves the position. Look at leftbits or the position where the data may have ended. After a
 *  unary code that took a whole word the cache may also hold ones below the bits that count, which show in the next
 *  value alone. Shift counts act modulo 32 wherever a debt leads outside 0 to 31.
 *  @{ */

typedef struct QORV_BSR QORV_BSR;

/**
 * A refill. It replaces `code` by the next n = min(count, bytes left) bytes, the first in bits 31..24, zero bits below,
 * advances `cur` past what it consumed and sets `leftbits` to 8 n. It may drop or transform bytes on the way, such as
 * emulation-prevention bytes; the record may then be the first member of a larger one that holds its state. No
 * operation but qorv_bsr_peek() and qorv_bsr_skip_peek() looks at the buffer itself.
 * @param bsr    the reader; the bits still in `code` have been taken care of by the caller.
 * @param count  bytes wanted, 1 to 4; more only when qorv_bsr_peek() meets a debt of 8 bits or more, and the word then
 *               holds the first four.
 * @return 0; or #QORV_ERR when no byte is left, with `code` and `leftbits` 0.
 */
typedef int32_t (*QORV_BSR_FN_FLUSH)(QORV_BSR *bsr, int32_t count);

/** A bit reader, set up by qorv_bsr_init(). */
struct QORV_BSR {
    /** Cache word: the next unread bits from bit 31 downwards, zeros below them. */
    uint32_t code;
    /** Unread bits in `code`, 0 to 32; negative: bits to be dropped from the next word. */
    int32_t leftbits;
    /** Next byte to load. */
    const uint8_t *cur;
    /** Last byte of the buffer: beg + size - 1. */
    const uint8_t *end;
    /** First byte of the buffer. */
    const uint8_t *beg;
    /** Bytes in the buffer. */
    int32_t size;
    /** The refill. */
    QORV_BSR_FN_FLUSH fn_flush;
};

/**
 * Sets a reader to the beginning of a buffer. Loads nothing yet.
 * @param bsr       the reader; whatever it held is forgotten.
 * @param buf       the buffer, never written to.
 * @param size      its bytes, 0 to 2^31 - 1.
 * @param fn_flush  the refill, or null for qorv_bsr_flush().
 */
QORV_API void qorv_bsr_init(QORV_BSR *bsr, const void *buf, int32_t size, QORV_BSR_FN_FLUSH fn_flush);

/**
 * The default refill: loads bytes as they are. See #QORV_BSR_FN_FLUSH.
 * @param bsr    the reader.
 * @param count  bytes wanted, 1 to 4 (of more, those after the fourth are passed over).
 * @return 0, or #QORV_ERR when no byte is left.
 */
QORV_API int32_t qorv_bsr_flush(QORV_BSR *bsr, int32_t count);

/**
 * Drops bits. Returns early, with an empty cache, when a refill is needed and fails.
 * @param bsr  the reader.
 * @param n    bits, 1 to 32. When the refill brings fewer than are needed, leftbits becomes negative by the shortfall
 *             (when a whole word was to be dropped of the refill, the cache is just empty).
 */
QORV_API void qorv_bsr_skip(QORV_BSR *bsr, int32_t n);

/**
 * qorv_bsr_skip() followed by qorv_bsr_peek().
 * @param bsr   the reader.
 * @param skip  bits to drop, 1 to 32.
 * @param n     bits to look at, 1 to 32.
 * @return the n bits; 0 when the refill for the skip fails.
 */
QORV_API uint32_t qorv_bsr_skip_peek(QORV_BSR *bsr, int32_t skip, int32_t n);

/**
 * Looks at the next bits without consuming them. The cache is topped up with whole bytes; where it has no room for one,
 * the last bits (at most 7) come straight from the byte at `cur`, past the refill.
 * @param bsr  the reader.
 * @param n    bits, 1 to 32.
 * @return the n bits right-aligned; those beyond the end of the data are 0.
 */
QORV_API uint32_t qorv_bsr_peek(QORV_BSR *bsr, int32_t n);

/**
 * Reads a field.
 * @param bsr  the reader.
 * @param n    bits, 1 to 32. When the refill brings fewer than are needed, the missing low bits read as 0 and leftbits
 *             becomes negative by the shortfall (when a whole word was needed of the refill, the cache is just empty).
 * @return the n bits right-aligned; 0xFFFFFFFF when a refill is needed and fails.
 */
QORV_API uint32_t qorv_bsr_read(QORV_BSR *bsr, int32_t n);

/**
 * Reads one bit.
 * @param bsr  the reader.
 * @return 0 or 1; 0xFFFFFFFF when a refill is needed and fails.
 */
QORV_API uint32_t qorv_bsr_read1(QORV_BSR *bsr);

/**
 * Leading zero bits of a word.
 * @param code  any word.
 * @return 0 to 32; 32 for 0.
 */
QORV_API uint32_t qorv_bsr_clz_in_code(uint32_t code);

/**
 * Drops the bits up to the next byte boundary, none when the position is on one.
 * @param bsr  the reader.
 */
QORV_API void qorv_bsr_skip_align8(QORV_BSR *bsr);

/**
 * Reads the bits up to the next byte boundary.
 * @param bsr    the reader.
 * @param count  null, or receives the number of bits, 0 to 7.
 * @return the bits right-aligned; 0 when there are none.
 */
QORV_API uint32_t qorv_bsr_read_align8(QORV_BSR *bsr, uint32_t *count);

/**
 * Reads an unsigned Exp-Golomb code, ue(v) of ITU-T H.264 and H.265: z zeros, a one and z bits b stand for 2^z - 1 + b.
 * @param bsr  the reader.
 * @return 0 to 65534; larger code numbers are not supported and give an unspecified value. 0xFFFFFFFE
 *         (#QORV_ERR_BSR_REFILL) when the data ends inside the code and no byte is left to refill with. Where the last
 *         refill still brings a part of the code, its missing bits read as 0 and leave a debt, as those of a field.
 */
QORV_API uint32_t qorv_bsr_read_ue(QORV_BSR *bsr);

/**
 * Reads a signed Exp-Golomb code, se(v): the code numbers 0, 1, 2, 3, 4 stand for 0, 1, -1, 2, -2.
 * @param bsr  the reader.
 * @return -32767 to 32767. The end of the data gives 1, as 0xFFFFFFFE is mapped like any other number.
 */
QORV_API int32_t qorv_bsr_read_se(QORV_BSR *bsr);

/**
 * Reads a truncated Exp-Golomb code, te(v).
 * @param bsr  the reader.
 * @param max  largest value that can occur. 1: a single inverted bit; from 2 on qorv_bsr_read_ue(); below 1 nothing is
 *             read.
 * @return the value; 0 for max below 1; 2 when the single bit cannot be refilled.
 */
QORV_API uint32_t qorv_bsr_read_te(QORV_BSR *bsr, int32_t max);

/**
 * Reads a unary code: ones, ended by a zero.
 *
 * The count ends with the cache word. When the cached bits (1 to 31 of them) are all ones the result is their number
 * and leftbits becomes -1, whatever follows: the next operation that refills drops the first bit of the new word. A
 * full cache of 32 bits that begins with a one is taken for 32 ones, unseen. The ones of a new word are counted to its
 * end as well: 31 of them and a zero, or 32, leave ones in the cache and leftbits 0 or -1.
 * @param bsr  the reader.
 * @return the number of ones. The end of the data is not reported: the ones counted so far.
 */
QORV_API uint32_t qorv_bsr_read_un(QORV_BSR *bsr);

/**
 * Reads a truncated unary code: up to max ones, ended by a zero when there are fewer. The cache word limits the count
 * as in qorv_bsr_read_un(). Exactly max ones followed by a zero consume the zero too; when more ones follow in the
 * cache, max bits are consumed.
 * @param bsr  the reader.
 * @param max  largest value that can occur. 0 consumes a bit if it is a zero and is in the cache, otherwise nothing.
 * @return the number of ones, at most max.
 */
QORV_API uint32_t qorv_bsr_read_tu(QORV_BSR *bsr, int32_t max);

/**
 * Base-2 logarithm, rounded up.
 * @param v  any value.
 * @return 0 to 32; 0 for 0.
 */
QORV_API int32_t qorv_ceil_log2(uint32_t v);

/**
 * Base-2 logarithm, rounded down.
 * @param v  any value.
 * @return 0 to 31; -1 for 0.
 */
QORV_API int32_t qorv_floor_log2(uint32_t v);

/** @} */

/** @defgroup bsw Bit writer
 *  Writes bits into a byte buffer, the most significant bit of each byte first, through a 32-bit cache word that a
 *  replaceable function stores. The caller owns record and buffer. Bytes written after a sink: cur - beg.
 *  Shift counts act modulo 32.
 *  @{ */

typedef struct QORV_BSW QORV_BSW;

/**
 * A flush. It stores the bytes of `code` that hold written bits, (39 - leftbits) >> 3 of them from bits 31..24
 * downwards, at `cur` and advances `cur`. The room has been checked by the caller, who also resets the cache
 * afterwards. The default flush checks nothing and shifts `code` by what it stored.
 * @param bsw  the writer.
 * @return a status; the default flush gives 0. Only qorv_bsw_deinit() hands it on, the others ignore it.
 */
typedef int32_t (*QORV_BSW_FN_FLUSH)(QORV_BSW *bsw);

/** A bit writer, set up by qorv_bsw_init(). */
struct QORV_BSW {
    /** Cache word: bits not yet stored, from bit 31 downwards, zeros below them. */
    uint32_t code;
    /** Free bits in `code`: 32 when it is empty, 0 when it is full. */
    int32_t leftbits;
    /** Next byte to store. */
    uint8_t *cur;
    /** Last byte of the buffer: beg + size - 1. */
    uint8_t *end;
    /** First byte of the buffer. */
    uint8_t *beg;
    /** Bytes in the buffer. */
    int32_t size;
    /** The flush. */
    QORV_BSW_FN_FLUSH fn_flush;
};

/**
 * Sets a writer to the beginning of a buffer.
 * @param bsw       the writer; whatever it held is forgotten.
 * @param buf       the buffer.
 * @param size      its bytes: one more than will be written, since the last byte is not always used. See
 *                  qorv_bsw_write() and qorv_bsw_write1() for how close to the end they go.
 * @param fn_flush  the flush, or null for the default.
 * @return bsw.
 */
QORV_API QORV_BSW *qorv_bsw_init(QORV_BSW *bsw, void *buf, int32_t size, QORV_BSW_FN_FLUSH fn_flush);

/**
 * Ends writing: calls the flush once for the pending bits, without a check for room, and resets nothing.
 * @param bsw  the writer.
 * @return what the flush returned.
 */
QORV_API int32_t qorv_bsw_deinit(QORV_BSW *bsw);

/**
 * Writes one bit. A cache that fills up is stored as long as one byte of room is left, so where more is written than
 * there is room for, up to three bytes go past the buffer.
 * @param bsw  the writer.
 * @param bit  bit 0 is written, the others are ignored.
 * @return #QORV_OK; or #QORV_ERR when the cache is full and `cur` is past `end`, the bit being kept in the cache.
 */
QORV_API int32_t qorv_bsw_write1(QORV_BSW *bsw, uint32_t bit);

/**
 * Writes a field. Never writes past the buffer: a cache that fills up is stored only while five bytes of room are left.
 * @param bsw    the writer.
 * @param value  the field, below 2^n.
 * @param n      bits, 1 to 32. A 32-bit field that meets an empty cache is stored and left in the cache as well, which
 *               counts as empty: the next bits are or-ed into it. Write such a field in two halves.
 * @return #QORV_OK; or #QORV_ERR when the cache is full and fewer than five bytes remain, with the bits that fitted
 *         kept in the cache and nothing else changed.
 */
QORV_API int32_t qorv_bsw_write(QORV_BSW *bsw, uint32_t value, int32_t n);

/**
 * Writes an unsigned Exp-Golomb code, see qorv_bsr_read_ue(). Lack of room is not reported: see qorv_bsw_write() for
 * where it begins.
 * @param bsw    the writer.
 * @param value  0 to 65534; the output for larger ones is unspecified.
 */
QORV_API void qorv_bsw_write_ue(QORV_BSW *bsw, uint32_t value);

/**
 * Writes a signed Exp-Golomb code, see qorv_bsr_read_se(). Lack of room is not reported.
 * @param bsw    the writer.
 * @param value  -32767 to 32767; the output for others is unspecified.
 */
QORV_API void qorv_bsw_write_se(QORV_BSW *bsw, int32_t value);

/**
 * Writes a truncated Exp-Golomb code, see qorv_bsr_read_te(). Lack of room is not reported.
 * @param bsw    the writer.
 * @param value  the value, at most max.
 * @param max    largest value that can occur. 1: the inverse of bit 0 as one bit, stored as by qorv_bsw_write1(); from
 *               2 on qorv_bsw_write_ue(); below 1 nothing is written.
 */
QORV_API void qorv_bsw_write_te(QORV_BSW *bsw, uint32_t value, int32_t max);

/**
 * Stores the pending bits, the last byte filled up with zero bits, and empties the cache; no stop bit is added. Writing
 * may go on, from a byte boundary.
 * @param bsw  the writer.
 * @return #QORV_OK; or #QORV_ERR, with nothing changed, unless one byte more than is pending is free.
 */
QORV_API int32_t qorv_bsw_sink(QORV_BSW *bsw);

/**
 * Length of an unsigned Exp-Golomb code.
 * @param value  0 to 65534.
 * @return bits, 1 to 31.
 */
QORV_API int32_t qorv_bsw_size_ue(uint32_t value);

/**
 * Length of a signed Exp-Golomb code.
 * @param value  -32767 to 32767.
 * @return bits, 1 to 31.
 */
QORV_API int32_t qorv_bsw_size_se(int32_t value);

/** @} */

/** @defgroup csc Colour converters
 *  Every converter has the type #qorv_csc_fn. Ask qorv_imgp_get_fn_csc() for one, or call it by name.
 *
 *  Interleaved layouts are handed over as one pointer and one stride for each channel: for #QORV_CS_RGB888 the three
 *  entries point at the R, G and B byte of the first pixel (normally base, base + 1, base + 2). Any other arrangement
 *  of the channel pointers works too, more slowly. A 5-6-5 plane is written as host-order 16-bit words and advances by
 *  stride >> 1 words a row, so an odd stride loses its last byte.
 *
 *  A destination that overlaps a source, another destination or, with a small stride, itself gives the result of the
 *  per-pixel loop: rows from the first, pixels from the left, all samples of a pixel read before its first is written.
 *  That is exact, at the speed of such a loop in C; faster where strips of pixels are seen to be safe, as when
 *  destinations lie exactly on sources or rows keep clear of each other. The arrays of pointers and strides
 *  themselves are trusted to lie in no destination.
 *
 *  Converters take no memory from the heap; those that do not scale take at most 12 KiB of stack.
 *  @{ */

/**
 * A converter.
 * @param src         plane or channel pointers of the source layout (three or four; one for 5-6-5).
 * @param src_w       width in pixels; below 1 nothing is written.
 * @param src_h       height in rows; below 1 nothing is touched.
 * @param src_stride  bytes between rows, one for each entry of src (samples where a converter says so).
 * @param unused      read by no converter.
 * @param dst         plane or channel pointers of the destination layout.
 * @param dst_w       destination width, read by the scaling converters only.
 * @param dst_h       destination height, read by the scaling converters only.
 * @param dst_stride  bytes between rows, one for each entry of dst that the converter writes through.
 * @param dst_cs      destination colour space, read by the plane copier only.
 */
typedef void (*qorv_csc_fn)(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                            uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h, const int32_t *dst_stride,
                            int32_t dst_cs);

/**
 * Converters to RGB layouts by [0: equal sizes, 1: differing sizes][source][destination]; null where there is none.
 * Sources: 0 R8G8B8, 1 R8G8B8A8, 2 YUV444, 3 YUVA444, 4 P410, 5 R10G10B10. Destinations: 0 RGB888, 1 RGBA8888, 2
 * RGB565, 3 RGBA5658, 4 RGB565A8, 5 ARGB8888, 6 BGRA8888, 7 BGR888 (empty), 8 R8G8B8, 9 none (empty), 10 R10G10B10. Two
 * cells surprise: R8G8B8A8 to RGBA5658 holds qorv_csc_r8g8b8a8_to_rgba8888(), and R10G10B10 to R10G10B10 holds
 * qorv_csc_r10g10b10_to_p410().
 */
extern QORV_API const qorv_csc_fn qorv_tbl_fn_csc_to_rgb[2][6][11];

/**
 * Converters to planar YUV by [0: equal sizes, 1: differing sizes (empty)][source][destination]; null where there is
 * none. Sources: 0 R8G8B8, 1 R8G8B8A8 (never found by the lookup), 2 YUV444, 3 YUVA444, 4 RGB565, 5 R10G10B10, 6
 * RGB888, 7 RGBA8888. Destinations: 0 YUV444, 1 YUVA444, 2 P410.
 */
extern QORV_API const qorv_csc_fn qorv_tbl_fn_csc_to_yuvplanar[2][8][3];

/**
 * Finds the converter between two colour spaces.
 * @param src_w   source width; the sizes are only compared.
 * @param src_h   source height.
 * @param src_cs  source colour space, QORV_CS_*.
 * @param dst_w   destination width. Where it or the height differs from the source's, a scaling converter is wanted.
 * @param dst_h   destination height.
 * @param dst_cs  destination colour space: 200 to 799 looks in #qorv_tbl_fn_csc_to_rgb, 10 to 99 in
 *                #qorv_tbl_fn_csc_to_yuvplanar.
 * @param err     null, or receives #QORV_ERR_UNSUPPORTED_CS on failure; left as it was on success.
 * @return the converter, or null when there is none for the pair.
 */
QORV_API qorv_csc_fn qorv_imgp_get_fn_csc(int32_t src_w, int32_t src_h, int32_t src_cs, int32_t dst_w, int32_t dst_h,
                                          int32_t dst_cs, int32_t *err);

/** @name YUV to RGB
 *  Full-range ITU-R BT.601 in units of 1/256, with u = U - 128, v = V - 128 and arithmetic shifts:
 *  R = Y + ((359 v + 128) >> 8), G = Y - ((183 v + 88 u + 128) >> 8), B = Y + ((454 u + 128) >> 8), each clamped to
 *  0..255. A 5-6-5 word is made of the high bits of the three, without rounding.
 *  @{ */
/** Planes Y, U, V to interleaved bytes; dst: R, G, B channel pointers, 3 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444_to_rgb888(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to interleaved bytes; dst: R, G, B, A channel pointers, 4 bytes a pixel. Alpha is 255.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Planes Y, U, V to interleaved bytes without blue. Writes red through dst[1], green through dst[2] and 255 through
 *  dst[3], 4 bytes a pixel. There is no blue; dst[0] and its stride are not read, and the byte there is left as it was.
 *  With the pointers A, R, G, B of other converters that is the alpha byte, and the blue one becomes 255. For a picture
 *  with all four channels use the source with alpha, qorv_csc_yuv444a8_to_argb8888().
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444_to_argb8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to interleaved bytes; dst: B, G, R, A channel pointers, 4 bytes a pixel. Alpha is 255.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444_to_bgra8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to a plane of 5-6-5 words in dst[0]. @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444_to_rgb565(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to a plane of 5-6-5 words in dst[0] and a plane of alpha bytes, 255, in dst[1].
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444_to_rgb565a8(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to planes R, G, B. @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444_to_r8g8b8(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to interleaved bytes; dst: R, G, B, A channel pointers, 4 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444a8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to interleaved bytes; dst: A, R, G, B channel pointers, 4 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444a8_to_argb8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to interleaved bytes; dst: B, G, R, A channel pointers, 4 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444a8_to_bgra8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to a plane of 5-6-5 words in dst[0] and a plane of alpha bytes in dst[1].
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444a8_to_rgb565a8(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Planes Y, U, V, A to 5-6-5 words through dst[0], packed two bytes a pixel, and alpha bytes through dst[1], three
 *  bytes apart. The bytes between the alpha bytes are left as they were.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444a8_to_rgba5658(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** @} */

/** @name RGB to YUV
 *  Full-range ITU-R BT.601 in units of 1/256, arithmetic shifts: Y = (77 R + 150 G + 29 B + 128) >> 8,
 *  U = ((-43 R - 85 G + 128 B + 128) >> 8) + 128, V = ((128 R - 107 G - 21 B + 128) >> 8) + 128. Pure blue (U) and pure
 *  red (V), which would give 256, give 255. Alpha is copied.
 *  @{ */
/** Planes R, G, B to planes Y, U, V. @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8_to_yuv444(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Interleaved bytes to planes Y, U, V; src: R, G, B channel pointers, 3 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rgb888_to_yuv444(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/**
 *  A plane of 5-6-5 words to planes Y, U, V. The words are widened with zero low bits: R = (p >> 8) & 0xF8,
 *  G = (p >> 3) & 0xFC, B = (p & 31) << 3, so white is (248, 252, 248).
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rgb565_to_yuv444(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Interleaved bytes to planes Y, U, V, A; src: R, G, B, A channel pointers, 4 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rgba8888_to_yuv444a8(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A to planes Y, U, V, A. @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8a8_to_yuv444a8(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** @} */

/** @name RGB repacking
 *  No arithmetic: bytes are reordered, or packed to 5-6-5 words by dropping the low bits of each channel.
 *  @{ */
/** Planes R, G, B to interleaved bytes; dst: R, G, B channel pointers, 3 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8_to_rgb888(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to interleaved bytes; dst: R, G, B, A channel pointers, 4 bytes a pixel. Alpha is 255.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to interleaved bytes; dst: A, R, G, B channel pointers, 4 bytes a pixel. Alpha is 255.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8_to_argb8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to interleaved bytes; dst: B, G, R, A channel pointers, 4 bytes a pixel. Alpha is 255.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8_to_bgra8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to a plane of 5-6-5 words in dst[0]. @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8_to_rgb565(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Three planes, whatever they mean, to the top, middle and bottom field of 5-6-5 words in dst[0], and a plane of alpha
 *  bytes, 255, in dst[1].
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_x8y8z8_to_xyz565a8(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A to interleaved bytes; dst: R, G, B, A channel pointers, 4 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8a8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A to interleaved bytes; dst: A, R, G, B channel pointers, 4 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8a8_to_argb8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A to interleaved bytes; dst: B, G, R, A channel pointers, 4 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8a8_to_bgra8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Planes R, G, B, A to 5-6-5 words through dst[0], packed two bytes a pixel, and alpha bytes through dst[1], three
 *  bytes apart. The bytes between the alpha bytes are left as they were. In no table.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r8g8b8a8_to_rgba5658(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Three planes to 5-6-5 words in dst[0] as qorv_csc_x8y8z8_to_xyz565a8(), and plane src[3] to the alpha bytes of
 *  dst[1].
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_x8y8z8a8_to_xyz565a8(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** @} */

/** @name 10-bit and plane converters
 *  @{ */
/**
 *  Planes Y, U, V of 10-bit samples in words to planes R, G, B of the same. Strides count samples. With u = U - 512,
 *  v = V - 512: R = Y + ((1436 v + 512) >> 10), G = Y - ((732 v + 352 u + 512) >> 10), B = Y + ((1816 u + 512) >> 10),
 *  each clamped to 0..1023. Samples above 1023 are taken as they are.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_p410_to_r10g10b10(const void *const *src, int32_t src_w, int32_t src_h,
                                         const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                         int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Planes R, G, B of 10-bit samples in words to planes Y, U, V of the same. Strides count samples.
 *  Y = (308 R + 600 G + 116 B + 512) >> 10, at most 1023; U = ((-172 R - 340 G + 512 B + 512) >> 10) + 512 and
 *  V = ((512 R - 428 G - 84 B + 512) >> 10) + 512, at least 0 and at most 1535: pure blue gives a U and pure red a V of
 *  1024, one above the 10-bit range. Samples above 1023 are taken as they are.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_r10g10b10_to_p410(const void *const *src, int32_t src_w, int32_t src_h,
                                         const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                         int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Three planes of 10-bit 4:2:0 in words to three planes of bytes: (sample >> 2) & 255, no rounding, no clamping.
 *  Source strides are in bytes and rounded down to even, destination strides in bytes. Chroma planes are src_w >> 1
 *  wide and src_h >> 1 high: an odd picture's last chroma column and row are not converted. In no table.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_p010_to_yuv420(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                      uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                      const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Copies planes Y, U, V of bytes, and the alpha plane when dst_cs is #QORV_CS_YUVA444 and src[3] is not null. Each row
 *  is copied byte by byte from the left: a destination 1 to src_w - 1 bytes behind its source repeats the row's
 *  beginning.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_yuv444x_to_yuv444x(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** @} */

/** @name Conversion with scaling
 *  Planes are sampled bilinearly on the grid of the resizer (see there for steps, decimation and weights), each sample
 *  (w0 A + w1 B + w2 C + w3 D) >> 6, and the samples converted as by the converter of the same name without "rsz".
 *  Sides up to 32768 are right; with a width or height below 1, of the source or the destination, nothing is touched.
 *  Equal sizes are not a copy: the step is slightly below one pixel. At most 32 KiB of stack are taken.
 *  @{ */
/** Planes R, G, B to interleaved bytes; dst: R, G, B channel pointers, 3 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rsz_r8g8b8_to_rgb888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to interleaved bytes; dst: R, G, B, A channel pointers. Alpha is 255.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rsz_r8g8b8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                              const int32_t *src_stride, uint64_t unused, void *const *dst,
                                              int32_t dst_w, int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A, all sampled, to interleaved bytes; dst: R, G, B, A channel pointers.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rsz_r8g8b8a8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                                const int32_t *src_stride, uint64_t unused, void *const *dst,
                                                int32_t dst_w, int32_t dst_h, const int32_t *dst_stride,
                                                int32_t dst_cs);

/** Planes Y, U, V to interleaved bytes; dst: R, G, B channel pointers, 3 bytes a pixel.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rsz_yuv444_to_rgb888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to interleaved bytes; dst: R, G, B, A channel pointers. Alpha is 255.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rsz_yuv444_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                              const int32_t *src_stride, uint64_t unused, void *const *dst,
                                              int32_t dst_w, int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A, all sampled, to interleaved bytes; dst: R, G, B, A channel pointers.
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rsz_yuv444a8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                                const int32_t *src_stride, uint64_t unused, void *const *dst,
                                                int32_t dst_w, int32_t dst_h, const int32_t *dst_stride,
                                                int32_t dst_cs);

/** Planes Y, U, V to a plane of 5-6-5 words in dst[0].
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rsz_yuv444_to_rgb565(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to a plane of 5-6-5 words in dst[0] and sampled alpha bytes in dst[1].
 *  @copydetails qorv_csc_fn */
QORV_API void qorv_csc_rsz_yuv444a8_to_rgb565a8(const void *const *src, int32_t src_w, int32_t src_h,
                                                const int32_t *src_stride, uint64_t unused, void *const *dst,
                                                int32_t dst_w, int32_t dst_h, const int32_t *dst_stride,
                                                int32_t dst_cs);

/** @} */

/** @} */

/** @defgroup irsz Resizer
 *  Bilinear resizing of packed pictures on a grid of eighths of a pixel.
 *
 *  Steps, for each direction with source size S and destination size D: ratio r = min(S / D, 31); of the source only
 *  every 2^s-th sample is looked at, s being the smallest shift with r <= 2 * 2^s, at most 4 (so large reductions skip
 *  samples on purpose); step = (((S - 1) >> s) << 18) / D with 18 fraction bits, 0 when D is 0. The last destination
 *  sample falls short of the last source sample, so neighbours always exist, and equal sizes are not a copy.
 *
 *  Destination row j, column i: with y = j * step_y the source row is (y >> 18) << shift_y and fy = (y >> 15) & 7;
 *  columns likewise with fx. The four samples A B / C D are that one, its neighbour 2^shift_x pixels to the right, and
 *  the same two 2^shift_y rows below. The result is (w0 A + w1 B + w2 C + w3 D) >> 6, truncated, for each channel, with
 *  the weights of entry fx * 8 + fy of #qorv_irsz_tbl_rsz_weight. A neighbour of weight 0 is not read where it need not
 *  exist: a source may be one pixel wide or high.
 *
 *  Sides up to 32768 samples are right; positions are 64 bits wide, as from 8193 samples on they must be.
 *
 *  Source and destination may overlap: pixels are then read and written one by one, rows from the top, each from the
 *  left. So a picture may be made smaller in its own memory. That takes ten times as long, more or less.
 *
 *  The kernels take no memory from the heap and at most 32 KiB of stack.
 *
 *  | format | pixels                                   | pitches of the record and of _full |
 *  |--------|------------------------------------------|------------------------------------|
 *  | 20     | one 8-bit sample                         | bytes                              |
 *  | 21     | three 8-bit samples                      | bytes                              |
 *  | 23     | three 8-bit samples to one 5-6-5 word    | bytes                              |
 *  | 25     | one 5-6-5 word                           | 16-bit words                       |
 *  | 29     | four 8-bit samples                       | bytes                              |
 *  @{ */

/**
 * Weights of the four neighbours by entry fx * 8 + fy, fx and fy being 0 to 7 eighths:
 * ((8 - fx)(8 - fy), fx (8 - fy), (8 - fx) fy, fx fy) for top left, top right, bottom left, bottom right. They sum
 * to 64.
 */
extern QORV_API const uint8_t qorv_tbl_bilinear_rszw[64][4];

/** The same table; its entry fy is what the _line functions take as weights. */
extern QORV_API const uint8_t qorv_irsz_tbl_rsz_weight[64][4];

/** What qorv_irsz_create() is told. */
typedef struct QORV_IRSZ_PARAM {
    /** 20, 21, 23, 25 or 29, see the table of the group. */
    int32_t format;
    /** 10: whole pictures; 11: one picture in bands of rows. */
    int32_t mode;
    /** Source width in pixels. */
    int32_t src_w;
    /** Source height in rows. */
    int32_t src_h;
    /** Pixels from one source row to the next; in band mode at least src_w. */
    int32_t src_stride;
    /** Band mode: rows of a band, at least 1. */
    int32_t band_h;
    /** Destination width in pixels. */
    int32_t dst_w;
    /** Destination height in rows. */
    int32_t dst_h;
    /** Pixels from one destination row to the next. */
    int32_t dst_stride;
    /** First destination row. */
    void *dst;
} QORV_IRSZ_PARAM;

typedef struct QORV_IRSZ QORV_IRSZ;

/** A resizer. Made by qorv_irsz_create(); its user reads, but does not change it. */
struct QORV_IRSZ {
    /** From the parameters. */
    int32_t format;
    /** From the parameters. */
    int32_t mode;
    /** Decimated source pixels from column to column, 18 fraction bits. */
    uint32_t step_x;
    /** Decimated source rows from row to row, 18 fraction bits. */
    uint32_t step_y;
    /** Band mode: position of destination row dst_row, modulo 2^32. */
    uint32_t pos_y;
    /** Pixels to the right neighbour, 1 << shift_x. */
    int32_t pel_step;
    /** Size of a source row in the format's unit. */
    int32_t src_pitch;
    /** Destination width in pixels. */
    int32_t dst_w;
    /** Destination height in rows. */
    int32_t dst_h;
    /** Size of a destination row in the format's unit. */
    int32_t dst_pitch;
    /** Decimation shift of columns, 0 to 4. */
    int32_t shift_x;
    /** Decimation shift of rows, 0 to 4. */
    int32_t shift_y;
    /** From a row to its lower neighbour, src_pitch << shift_y. */
    int32_t row_step;
    /**
     * Band mode: while row_cached is 1, where the lower row will lie from the start of the next band, in the unit of
     * src_pitch.
     */
    int32_t saved_off;
    /**
     * Band mode: 1 while a destination row is pending: its upper source row is in line_buf, its lower one has not come.
     */
    int32_t row_cached;
    /** band_h * src_pitch. */
    int32_t band_bytes;
    /** Band mode: the next destination row; a pending one counts as produced. */
    int32_t dst_row;
    /** 1 when the destination is wider or higher than the source. */
    int32_t upscale;
    /**
     * Band mode: 1 when, with upscale 1, the two positions before and at pos_y lie in one row of a band: so the rows
     * after a pending one share its pair. 0 again once a row is produced whose next lies in another band. Defined for
     * band heights that are powers of two; what is written does not depend on it.
     */
    int32_t band_flag;
    /** The format's kernel. */
    int32_t (*fn_rsz)(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h);
    /** Band mode: one source row; null otherwise. */
    uint8_t *line_buf;
    /** From the parameters. */
    void *dst;
};

/**
 * Creates a resizer. Sizes are not checked; a destination size of 0 gives a resizer that writes nothing.
 * @param param   what to do; only read.
 * @param status  null, or receives #QORV_OK, #QORV_ERR_IRSZ_NOMEM, #QORV_ERR_IRSZ_MODE or #QORV_ERR_UNSUPPORTED_FMT.
 * @return the resizer, or null with nothing leaked. Freed with qorv_irsz_delete().
 */
QORV_API QORV_IRSZ *qorv_irsz_create(const QORV_IRSZ_PARAM *param, int32_t *status);

/**
 * Resizes a picture, or takes the next band of one.
 *
 * Band mode: the bands of a picture are given in order, from its first row to its last, without gaps; their memory need
 * not outlive the call. Every destination row is written once, as soon as both its source rows have come, the lower one
 * even where its weight is 0; together they are what picture mode writes. Any band height works, also one that changes
 * from call to call. A resizer in band mode serves one picture.
 * @param rsz        the resizer.
 * @param src        first row of the picture or of the band.
 * @param first_row  band mode: number of that row in the picture; otherwise not used.
 * @param band_h     band mode: rows in the band (the last band may say more than the picture has, they are not read);
 *                   otherwise not used.
 * @return #QORV_OK.
 */
QORV_API int32_t qorv_irsz(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h);

/**
 * Frees a resizer.
 * @param rsz  the resizer; null is ignored.
 */
QORV_API void qorv_irsz_delete(QORV_IRSZ *rsz);

/**
 * Computes the steps that the _full functions take: (step << 3) | shift for each direction.
 * @param src_w   source width.
 * @param src_h   source height.
 * @param dst_w   destination width; 0 gives a step of 0.
 * @param dst_h   destination height; 0 gives a step of 0.
 * @param step_x  receives the packed step of columns.
 * @param step_y  receives the packed step of rows.
 */
QORV_API void bilinear_rsz_step_size(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h, uint32_t *step_x,
                                     uint32_t *step_y);

/**
 * The kernel of a resizer of format 20: one 8-bit sample a pixel; qorv_irsz() calls it.
 * @param rsz        the resizer.
 * @param src        as for qorv_irsz().
 * @param first_row  as for qorv_irsz().
 * @param band_h     as for qorv_irsz().
 * @return #QORV_OK.
 */
QORV_API int32_t qorv_irsz8b(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h);

/**
 * Resizes a whole picture as qorv_irsz8b() does, without a resizer.
 * @param src        first source row.
 * @param src_pitch  bytes from one source row to the next.
 * @param dst_w      destination width in pixels; below 1 nothing is written.
 * @param dst_h      destination height in rows; below 1 nothing is written.
 * @param dst_pitch  bytes from one destination row to the next.
 * @param dst        first destination row.
 * @param step_x     packed step of bilinear_rsz_step_size().
 * @param step_y     packed step of bilinear_rsz_step_size().
 */
QORV_API void qorv_irsz8b_full(const uint8_t *src, uint32_t src_pitch, int32_t dst_w, int32_t dst_h, int32_t dst_pitch,
                               uint8_t *dst, int32_t step_x, int32_t step_y);

/**
 * Makes one destination row of qorv_irsz8b().
 * @param rows      upper and lower source row. The lower one is not read when fy is 0.
 * @param weights   entry fy of #qorv_irsz_tbl_rsz_weight.
 * @param dst_w     destination width in pixels; below 1 nothing is written.
 * @param shift_x   decimation shift of columns.
 * @param pel_step  pixels to the right neighbour, 1 << shift_x.
 * @param step_x    step of columns, not packed.
 * @param dst       destination row.
 */
QORV_API void qorv_irsz8b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t shift_x,
                               int32_t pel_step, uint32_t step_x, uint8_t *dst);

/**
 * The kernel of a resizer of format 21: three 8-bit samples a pixel; qorv_irsz() calls it.
 * @param rsz        the resizer.
 * @param src        as for qorv_irsz().
 * @param first_row  as for qorv_irsz().
 * @param band_h     as for qorv_irsz().
 * @return #QORV_OK.
 */
QORV_API int32_t qorv_irsz8b8b8b(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h);

/**
 * Resizes a whole picture as qorv_irsz8b8b8b() does, without a resizer.
 * @param src        first source row.
 * @param src_pitch  bytes from one source row to the next.
 * @param dst_w      destination width in pixels; below 1 nothing is written.
 * @param dst_h      destination height in rows; below 1 nothing is written.
 * @param dst_pitch  bytes from one destination row to the next.
 * @param dst        first destination row.
 * @param step_x     packed step of bilinear_rsz_step_size().
 * @param step_y     packed step of bilinear_rsz_step_size().
 */
QORV_API void qorv_irsz8b8b8b_full(const uint8_t *src, uint32_t src_pitch, int32_t dst_w, int32_t dst_h,
                                   int32_t dst_pitch, uint8_t *dst, int32_t step_x, int32_t step_y);

/**
 * Makes one destination row of qorv_irsz8b8b8b().
 * @param rows      upper and lower source row. The lower one is not read when fy is 0.
 * @param weights   entry fy of #qorv_irsz_tbl_rsz_weight.
 * @param dst_w     destination width in pixels; below 1 nothing is written.
 * @param shift_x   decimation shift of columns.
 * @param pel_step  pixels to the right neighbour, 1 << shift_x.
 * @param step_x    step of columns, not packed.
 * @param dst       destination row.
 */
QORV_API void qorv_irsz8b8b8b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t shift_x,
                                   int32_t pel_step, uint32_t step_x, uint8_t *dst);

/**
 * The kernel of a resizer of format 23: three 8-bit samples to a 5-6-5 word; qorv_irsz() calls it.
 * The first sample goes to bits 15..11, the second to 10..5, the third to 4..0, each sum losing its low bits: S0 >> 9,
 * S1 >> 8, S2 >> 9 of sums that are at most 16320. Words are stored low byte first.
 * @param rsz        the resizer.
 * @param src        as for qorv_irsz().
 * @param first_row  as for qorv_irsz().
 * @param band_h     as for qorv_irsz().
 * @return #QORV_OK.
 */
QORV_API int32_t qorv_irsz8b8b8b_5b6b5b(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h);

/**
 * Resizes a whole picture as qorv_irsz8b8b8b_5b6b5b() does, without a resizer.
 * @param src        first source row.
 * @param src_pitch  bytes from one source row to the next.
 * @param dst_w      destination width in pixels; below 1 nothing is written.
 * @param dst_h      destination height in rows; below 1 nothing is written.
 * @param dst_pitch  bytes from one destination row to the next.
 * @param dst        first destination row.
 * @param step_x     packed step of bilinear_rsz_step_size().
 * @param step_y     packed step of bilinear_rsz_step_size().
 */
QORV_API void qorv_irsz8b8b8b_5b6b5b_full(const uint8_t *src, uint32_t src_pitch, int32_t dst_w, int32_t dst_h,
                                          int32_t dst_pitch, uint8_t *dst, int32_t step_x, int32_t step_y);

/**
 * Makes one destination row of qorv_irsz8b8b8b_5b6b5b().
 * @param rows      upper and lower source row. The lower one is not read when fy is 0.
 * @param weights   entry fy of #qorv_irsz_tbl_rsz_weight.
 * @param dst_w     destination width in pixels; below 1 nothing is written.
 * @param shift_x   decimation shift of columns.
 * @param pel_step  pixels to the right neighbour, 1 << shift_x.
 * @param step_x    step of columns, not packed.
 * @param dst       destination row.
 */
QORV_API void qorv_irsz8b8b8b_5b6b5b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w,
                                          int32_t shift_x, int32_t pel_step, uint32_t step_x, uint8_t *dst);

/**
 * The kernel of a resizer of format 25: 5-6-5 words; qorv_irsz() calls it.
 * Fields are widened with zero low bits, sampled, and packed by dropping the low bits. Words are stored low byte first
 * and need no alignment.
 * @param rsz        the resizer.
 * @param src        as for qorv_irsz().
 * @param first_row  as for qorv_irsz().
 * @param band_h     as for qorv_irsz().
 * @return #QORV_OK.
 */
QORV_API int32_t qorv_irsz5b6b5b(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h);

/**
 * Resizes a whole picture as qorv_irsz5b6b5b() does, without a resizer.
 * @param src        first source row.
 * @param src_pitch  16-bit words from one source row to the next.
 * @param dst_w      destination width in pixels; below 1 nothing is written.
 * @param dst_h      destination height in rows; below 1 nothing is written.
 * @param dst_pitch  16-bit words from one destination row to the next.
 * @param dst        first destination row.
 * @param step_x     packed step of bilinear_rsz_step_size().
 * @param step_y     packed step of bilinear_rsz_step_size().
 */
QORV_API void qorv_irsz5b6b5b_full(const uint8_t *src, uint32_t src_pitch, int32_t dst_w, int32_t dst_h,
                                   int32_t dst_pitch, uint8_t *dst, int32_t step_x, int32_t step_y);

/**
 * Makes one destination row of qorv_irsz5b6b5b().
 * @param rows      upper and lower source row. The lower one is not read when fy is 0.
 * @param weights   entry fy of #qorv_irsz_tbl_rsz_weight.
 * @param dst_w     destination width in pixels; below 1 nothing is written.
 * @param shift_x   decimation shift of columns.
 * @param pel_step  pixels to the right neighbour, 1 << shift_x.
 * @param step_x    step of columns, not packed.
 * @param dst       destination row.
 */
QORV_API void qorv_irsz5b6b5b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t shift_x,
                                   int32_t pel_step, uint32_t step_x, uint8_t *dst);

/**
 * The kernel of a resizer of format 29: four 8-bit samples a pixel; qorv_irsz() calls it.
 * All four channels are sampled alike.
 * @param rsz        the resizer.
 * @param src        as for qorv_irsz().
 * @param first_row  as for qorv_irsz().
 * @param band_h     as for qorv_irsz().
 * @return #QORV_OK.
 */
QORV_API int32_t qorv_irsz8b8b8b8b(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h);

/**
 * Resizes a whole picture as qorv_irsz8b8b8b8b() does, without a resizer.
 * @param src        first source row.
 * @param src_pitch  bytes from one source row to the next.
 * @param dst_w      destination width in pixels; below 1 nothing is written.
 * @param dst_h      destination height in rows; below 1 nothing is written.
 * @param dst_pitch  bytes from one destination row to the next.
 * @param dst        first destination row.
 * @param step_x     packed step of bilinear_rsz_step_size().
 * @param step_y     packed step of bilinear_rsz_step_size().
 */
QORV_API void qorv_irsz8b8b8b8b_full(const uint8_t *src, uint32_t src_pitch, int32_t dst_w, int32_t dst_h,
                                     int32_t dst_pitch, uint8_t *dst, int32_t step_x, int32_t step_y);

/**
 * Makes one destination row of qorv_irsz8b8b8b8b().
 * @param rows      upper and lower source row. The lower one is not read when fy is 0.
 * @param weights   entry fy of #qorv_irsz_tbl_rsz_weight.
 * @param dst_w     destination width in pixels; below 1 nothing is written.
 * @param shift_x   decimation shift of columns.
 * @param pel_step  pixels to the right neighbour, 1 << shift_x.
 * @param step_x    step of columns, not packed.
 * @param dst       destination row.
 */
QORV_API void qorv_irsz8b8b8b8b_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t shift_x,
                                     int32_t pel_step, uint32_t step_x, uint8_t *dst);

/** @} */

/** @defgroup sad Sum of absolute differences
 *  The sum over all samples of |A - B|. A member is named by its size, columns x rows, and by its samples:
 *  - no suffix: both blocks unsigned 8-bit;
 *  - `_16`: both signed 16-bit;
 *  - `_bi`: A signed 16-bit values that the caller has formed of two predictions, B unsigned 8-bit;
 *  - `_bi_16`: the same numbers as `_16`, under a name of its own.
 *
 *  Strides count samples of the block they belong to, so those of a `_bi` member are in different units. Nothing
 *  outside the two blocks is read. The sum is exact, but that of 16-bit samples more than 32768 apart an odd difference
 *  d adds d - 2 if it is positive and -d + 2 if it is negative. Blocks of up to 12 bits are the fast ones.
 *  @{ */

/**
 * SAD of a block of any size, 8-bit.
 * @param w         columns; below 1 the result is 0.
 * @param h         rows; below 1 the result is 0.
 * @param a         first sample of block A.
 * @param b         first sample of block B.
 * @param stride_a  samples from a row of A to the next; may be negative.
 * @param stride_b  samples from a row of B to the next; may be negative.
 * @return the sum, modulo 2^32.
 */
QORV_API uint32_t qorv_sad(int32_t w, int32_t h, const uint8_t *a, const uint8_t *b, int32_t stride_a,
                           int32_t stride_b);

/**
 * SAD of a block of any size, 16-bit. @copydetails qorv_sad
 */
QORV_API uint32_t qorv_sad_16(int32_t w, int32_t h, const int16_t *a, const int16_t *b, int32_t stride_a,
                              int32_t stride_b);

/**
 * SAD, 2 columns by 2 rows, 8-bit.
 * @param a         first sample of block A.
 * @param b         first sample of block B.
 * @param stride_a  samples from a row of A to the next; may be negative.
 * @param stride_b  samples from a row of B to the next; may be negative.
 * @return the sum.
 */
QORV_API uint32_t qorv_sad2x2(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 2 columns by 4 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad2x4(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 4 columns by 2 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad4x2(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 4 columns by 4 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad4x4(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 4 columns by 8 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad4x8(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 4 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x4(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 8 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x8(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 16 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x16(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 8 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x8(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 16 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x16(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 32 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x32(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 16 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x16(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 32 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x32(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 64 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x64(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 64 columns by 32 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad64x32(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 64 columns by 64 rows, 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad64x64(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 2 columns by 2 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad2x2_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 2 columns by 4 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad2x4_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 4 columns by 2 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad4x2_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 4 columns by 4 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad4x4_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 4 columns by 8 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad4x8_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 4 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x4_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 8 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x8_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 16 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x16_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 8 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x8_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 16 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x16_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 32 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x32_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 16 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x16_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 32 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x32_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 64 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x64_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 64 columns by 32 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad64x32_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 64 columns by 64 rows, 16-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad64x64_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 4 columns by 8 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad4x8_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 4 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x4_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 8 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x8_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 16 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x16_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 8 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x8_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 16 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x16_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 32 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x32_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 16 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x16_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 32 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x32_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 64 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x64_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 64 columns by 32 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad64x32_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 64 columns by 64 rows, A 16-bit, B 8-bit. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad64x64_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 4 columns by 8 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad4x8_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 4 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x4_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 8 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x8_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 8 columns by 16 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad8x16_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 8 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x8_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 16 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x16_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 16 columns by 32 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad16x32_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 16 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x16_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 32 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x32_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 32 columns by 64 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad32x64_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 64 columns by 32 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad64x32_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** SAD, 64 columns by 64 rows, as the _16 member. @copydetails qorv_sad2x2 */
QORV_API uint32_t qorv_sad64x64_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** @} */

/** @defgroup diff Residual differences
 *  out = A - B for every sample, as a signed 16-bit value; of 16-bit samples the low 16 bits of the difference. Members
 *  are named as in @ref sad; the `_bi` ones exist for 4x4 alone.
 *
 *  Strides count samples of the block they belong to. Nothing outside the blocks is read, and nothing between the rows
 *  of the output is written. An output that overlaps an input gives the result of the plain loop: rows from the first,
 *  columns from the left, each value written before the next samples are read.
 *  @{ */

/**
 * Residual of a block of any size, 8-bit.
 * @param w           columns; below 1 nothing is written.
 * @param h           rows; below 1 nothing is written.
 * @param a           first sample of block A.
 * @param b           first sample of block B.
 * @param stride_a    samples from a row of A to the next; may be negative.
 * @param stride_b    samples from a row of B to the next; may be negative.
 * @param stride_out  16-bit values from a row of the output to the next; may be negative.
 * @param out         first value of the output.
 */
QORV_API void qorv_diff(int32_t w, int32_t h, const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b,
                        int32_t stride_out, int16_t *out);

/**
 * Residual of a block of any size, 16-bit. @copydetails qorv_diff
 */
QORV_API void qorv_diff_16(int32_t w, int32_t h, const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                           int32_t stride_out, int16_t *out);

/**
 * Residual, 2 columns by 2 rows, 8-bit.
 * @param a           first sample of block A.
 * @param b           first sample of block B.
 * @param stride_a    samples from a row of A to the next; may be negative.
 * @param stride_b    samples from a row of B to the next; may be negative.
 * @param stride_out  16-bit values from a row of the output to the next; may be negative.
 * @param out         first value of the output.
 */
QORV_API void qorv_diff2x2(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                           int16_t *out);

/** Residual, 2 columns by 4 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff2x4(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                           int16_t *out);

/** Residual, 4 columns by 2 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x2(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                           int16_t *out);

/** Residual, 4 columns by 4 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x4(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                           int16_t *out);

/** Residual, 4 columns by 8 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x8(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                           int16_t *out);

/** Residual, 8 columns by 4 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff8x4(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                           int16_t *out);

/** Residual, 8 columns by 8 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff8x8(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                           int16_t *out);

/** Residual, 8 columns by 16 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff8x16(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                            int16_t *out);

/** Residual, 16 columns by 8 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff16x8(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                            int16_t *out);

/** Residual, 16 columns by 16 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff16x16(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                             int16_t *out);

/** Residual, 16 columns by 32 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff16x32(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                             int16_t *out);

/** Residual, 32 columns by 16 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff32x16(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                             int16_t *out);

/** Residual, 32 columns by 32 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff32x32(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                             int16_t *out);

/** Residual, 32 columns by 64 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff32x64(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                             int16_t *out);

/** Residual, 64 columns by 32 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff64x32(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                             int16_t *out);

/** Residual, 64 columns by 64 rows, 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff64x64(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
                             int16_t *out);

/** Residual, 2 columns by 2 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff2x2_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 2 columns by 4 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff2x4_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 4 columns by 2 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x2_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 4 columns by 4 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x4_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 4 columns by 8 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x8_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 8 columns by 4 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff8x4_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 8 columns by 8 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff8x8_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 8 columns by 16 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff8x16_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                               int32_t stride_out, int16_t *out);

/** Residual, 16 columns by 8 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff16x8_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                               int32_t stride_out, int16_t *out);

/** Residual, 16 columns by 16 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff16x16_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                int32_t stride_out, int16_t *out);

/** Residual, 16 columns by 32 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff16x32_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                int32_t stride_out, int16_t *out);

/** Residual, 32 columns by 16 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff32x16_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                int32_t stride_out, int16_t *out);

/** Residual, 32 columns by 32 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff32x32_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                int32_t stride_out, int16_t *out);

/** Residual, 32 columns by 64 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff32x64_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                int32_t stride_out, int16_t *out);

/** Residual, 64 columns by 32 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff64x32_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                int32_t stride_out, int16_t *out);

/** Residual, 64 columns by 64 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff64x64_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                int32_t stride_out, int16_t *out);

/** Residual, 2 columns by 8 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff2x8_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 4 columns by 16 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x16_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                               int32_t stride_out, int16_t *out);

/** Residual, 8 columns by 32 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff8x32_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                               int32_t stride_out, int16_t *out);

/** Residual, 16 columns by 64 rows, 16-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff16x64_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                int32_t stride_out, int16_t *out);

/** Residual, 4 columns by 4 rows, A 16-bit, B 8-bit. @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x4_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b,
                              int32_t stride_out, int16_t *out);

/** Residual, 4 columns by 4 rows, as qorv_diff4x4_16(). @copydetails qorv_diff2x2 */
QORV_API void qorv_diff4x4_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b,
                                 int32_t stride_out, int16_t *out);

/** @} */

/** @defgroup satd SSD, Hadamard and SATD
 *  Sums of squared differences, and of the magnitudes of the Hadamard transform of a residual. Strides count samples of
 *  the block they belong to. Nothing outside the two blocks is read. Results are exact whatever the samples; residuals
 *  of up to 12 bits and their sign (4x4) or 10 bits and their sign (8x8) are the fast ones.
 *  @{ */

/**
 * SSD of a block of any size, 8-bit: the sum over all samples of (A - B)^2.
 * @param w         columns; below 1 the result is 0.
 * @param h         rows; below 1 the result is 0.
 * @param a         first sample of block A.
 * @param b         first sample of block B.
 * @param stride_a  samples from a row of A to the next; may be negative.
 * @param stride_b  samples from a row of B to the next; may be negative.
 * @return the sum, modulo 2^32: it is exact up to 66051 samples of any content.
 */
QORV_API uint32_t qorv_ssd(int32_t w, int32_t h, const uint8_t *a, const uint8_t *b, int32_t stride_a,
                           int32_t stride_b);

/**
 * SSD of a block of any size, signed 16-bit. Of samples more than 32768 apart the magnitude that is squared is the one
 * described at @ref sad.
 * @param w         columns; below 1 the result is 0.
 * @param h         rows; below 1 the result is 0.
 * @param a         first sample of block A.
 * @param b         first sample of block B.
 * @param stride_a  samples from a row of A to the next; may be negative.
 * @param stride_b  samples from a row of B to the next; may be negative.
 * @return the sum, modulo 2^32: of 10-bit content it is exact up to 4104 samples, of 12-bit content up to 256.
 */
QORV_API uint32_t qorv_ssd_16(int32_t w, int32_t h, const int16_t *a, const int16_t *b, int32_t stride_a,
                              int32_t stride_b);

/**
 * Half the sum of the magnitudes of the 16 coefficients of a 4x4 Walsh-Hadamard transform without scaling. The sum is
 * always even.
 * @param residual  16 values, row by row.
 * @return the half sum.
 */
QORV_API uint32_t qorv_hadamard4x4(const int16_t *residual);

/**
 * Sum of the 4x4 SATDs of the tiles of a block, 8-bit.
 * @param w         columns; below 1 the result is 0. The last tile of a row is a whole one: samples up to the next
 *                  multiple of 4 are read, and count.
 * @param h         rows; below 1 the result is 0. Rounded up in the same way.
 * @param a         first sample of block A.
 * @param b         first sample of block B.
 * @param stride_a  samples from a row of A to the next; may be negative.
 * @param stride_b  samples from a row of B to the next; may be negative.
 * @return the sum, modulo 2^32.
 */
QORV_API uint32_t qorv_satd(int32_t w, int32_t h, const uint8_t *a, const uint8_t *b, int32_t stride_a,
                            int32_t stride_b);

/**
 * Sum of the 4x4 SATDs of the tiles of a block, 16-bit: as qorv_satd() with the tiles of qorv_satd4x4_16().
 * @copydetails qorv_satd
 */
QORV_API uint32_t qorv_satd_16(int32_t w, int32_t h, const int16_t *a, const int16_t *b, int32_t stride_a,
                               int32_t stride_b);

/**
 * 4x4 SATD, 8-bit: qorv_hadamard4x4() of the residual A - B.
 * @param a         first sample of block A.
 * @param b         first sample of block B.
 * @param stride_a  samples from a row of A to the next; may be negative.
 * @param stride_b  samples from a row of B to the next; may be negative.
 * @return the SATD.
 */
QORV_API uint32_t qorv_satd4x4(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** 4x4 SATD, 16-bit, of the low 16 bits of the residual read as signed. @copydetails qorv_satd4x4 */
QORV_API uint32_t qorv_satd4x4_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/** 4x4 SATD, A signed 16-bit, B 8-bit, of the low 16 bits of the residual. @copydetails qorv_satd4x4 */
QORV_API uint32_t qorv_satd4x4_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** 4x4 SATD, the same numbers as qorv_satd4x4_16(). @copydetails qorv_satd4x4 */
QORV_API uint32_t qorv_satd4x4_bi_16(const int16_t *a, const int16_t *b, int32_t stride_a, int32_t stride_b);

/**
 * 8x8 SATD, 8-bit: (S + 2) >> 2, S being the sum of the magnitudes of the 64 coefficients of the 8x8 Walsh-Hadamard
 * transform of A - B without scaling. A measure of its own, not the sum of four 4x4 SATDs.
 * @param a         first sample of block A.
 * @param b         first sample of block B.
 * @param stride_a  samples from a row of A to the next; may be negative.
 * @param stride_b  samples from a row of B to the next; may be negative.
 * @return the SATD.
 */
QORV_API uint32_t qorv_satd8x8(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** 8x8 SATD, both blocks unsigned 16-bit; the residual does not wrap. @copydetails qorv_satd8x8 */
QORV_API uint32_t qorv_satd8x8_16(const uint16_t *a, const uint16_t *b, int32_t stride_a, int32_t stride_b);

/** 8x8 SATD, A signed 16-bit, B 8-bit; the residual does not wrap. @copydetails qorv_satd8x8 */
QORV_API uint32_t qorv_satd8x8_bi(const int16_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b);

/** 8x8 SATD, A signed and B unsigned 16-bit; the residual does not wrap. @copydetails qorv_satd8x8 */
QORV_API uint32_t qorv_satd8x8_bi_16(const int16_t *a, const uint16_t *b, int32_t stride_a, int32_t stride_b);

/** @} */

/** @defgroup list Linked list
 *  @{ */

/** The links of a node; an item's bytes (its payload) follow them in the same block. A node's address is its id. */
typedef struct QORV_LIST_NODE {
    /** The node before; the front sentinel points at itself. */
    struct QORV_LIST_NODE *prev;
    /** The node after; the back sentinel points at itself. */
    struct QORV_LIST_NODE *next;
} QORV_LIST_NODE;

/**
 * Called with an item's payload when the item leaves the list, just before its memory is freed.
 * @param item  the payload.
 * @return ignored.
 */
typedef int32_t (*qorv_item_free_fn)(void *item);

/** A doubly linked list of items of one size, stored by value, with a cursor. Made by qorv_list_create(). */
typedef struct QORV_LIST {
    /** Bytes of an item. */
    int32_t isize;
    /** Items. */
    int32_t cnt;
    /** Front sentinel. */
    QORV_LIST_NODE *head;
    /** Back sentinel. */
    QORV_LIST_NODE *tail;
    /** The cursor's node, or null. */
    QORV_LIST_NODE *cur;
    /** Called for each item that is removed, or null. */
    qorv_item_free_fn item_free;
} QORV_LIST;

/**
 * Creates an empty list.
 * @param isize      bytes of an item, from 0 on.
 * @param item_free  null, or called for each item that is removed.
 * @return the list, or null when the system has no memory. Freed with qorv_list_delete().
 */
QORV_API QORV_LIST *qorv_list_create(int32_t isize, qorv_item_free_fn item_free);

/**
 * Removes all items, front to back, and frees the list.
 * @param list  the list; null is ignored.
 */
QORV_API void qorv_list_delete(QORV_LIST *list);

/**
 * Removes all items, front to back; the cursor is null afterwards.
 * @param list  the list.
 */
QORV_API void qorv_list_rem_all(QORV_LIST *list);

/**
 * Appends a copy of an item.
 * @param list  the list.
 * @param item  isize bytes.
 * @return the copy, or null with nothing changed when the system has no memory.
 */
QORV_API void *qorv_list_add(QORV_LIST *list, const void *item);

/**
 * Prepends a copy of an item.
 * @param list  the list.
 * @param item  isize bytes.
 * @return the copy, or null with nothing changed when the system has no memory.
 */
QORV_API void *qorv_list_add_first(QORV_LIST *list, const void *item);

/**
 * Inserts a copy of an item at an end of the list. Places between items are refused: an index from 0 to cnt - 1 inserts
 * nothing, cnt appends, a negative one prepends.
 * @param list  the list.
 * @param item  isize bytes.
 * @param idx   the index.
 * @return the copy; null with nothing changed for any other index, or when the system has no memory.
 */
QORV_API void *qorv_list_insert_at(QORV_LIST *list, const void *item, int32_t idx);

/**
 * The item at an index.
 * @param list  the list.
 * @param idx   0 to cnt - 1. A negative index counts as 0, and on an empty list gives an address that must not be used.
 * @return the payload, or null for an index from cnt on.
 */
QORV_API void *qorv_list_get_at(const QORV_LIST *list, int32_t idx);

/**
 * The id of the item at an index, for qorv_list_get_atid() and qorv_list_rem_atid(); valid until the item is removed.
 * @param list  the list.
 * @param idx   0 to cnt - 1.
 * @return the id, or null for any other index.
 */
QORV_API QORV_LIST_NODE *qorv_list_get_id(const QORV_LIST *list, int32_t idx);

/**
 * The item of an id, looked for from the front.
 * @param list  the list.
 * @param id    the id.
 * @return the payload, or null when the list has no such item.
 */
QORV_API void *qorv_list_get_atid(const QORV_LIST *list, const QORV_LIST_NODE *id);

/**
 * The first item.
 * @param list  the list.
 * @return its payload, or null when the list is empty.
 */
QORV_API void *qorv_list_get_first(const QORV_LIST *list);

/**
 * The last item.
 * @param list  the list.
 * @return its payload, or null when the list is empty.
 */
QORV_API void *qorv_list_get_last(const QORV_LIST *list);

/**
 * The number of items.
 * @param list  the list.
 * @return cnt.
 */
QORV_API int32_t qorv_list_get_cnt(const QORV_LIST *list);

/**
 * The cursor's item.
 * @param list  the list.
 * @return its payload, or null when the cursor is not set.
 */
QORV_API void *qorv_list_get_cur(const QORV_LIST *list);

/**
 * Moves the cursor to the first item.
 * @param list  the list.
 * @return the item's payload; null, with the cursor unset, when the list is empty.
 */
QORV_API void *qorv_list_move_first(QORV_LIST *list);

/**
 * Moves the cursor to the last item.
 * @param list  the list.
 * @return the item's payload; null, with the cursor unset, when the list is empty.
 */
QORV_API void *qorv_list_move_last(QORV_LIST *list);

/**
 * Moves the cursor one item towards the back.
 * @param list  the list.
 * @return the item's payload; null, with the cursor unset, from the last item on.
 */
QORV_API void *qorv_list_move_next(QORV_LIST *list);

/**
 * Moves the cursor one item towards the front.
 * @param list  the list.
 * @return the item's payload; null, with the cursor unset, from the first item on.
 */
QORV_API void *qorv_list_move_prev(QORV_LIST *list);

/**
 * Removes the item at an index. A cursor on it moves to the next item, or is unset at the last one.
 * @param list  the list.
 * @param idx   0 to cnt - 1; nothing is removed for any other index.
 */
QORV_API void qorv_list_rem_at(QORV_LIST *list, int32_t idx);

/**
 * Removes the item of an id. A cursor on it moves to the next item, or is unset at the last one.
 * @param list  the list.
 * @param id    an item of this list, which is not checked.
 */
QORV_API void qorv_list_rem_atid(QORV_LIST *list, QORV_LIST_NODE *id);

/**
 * Removes the first item, if any. A cursor on it moves to the next item, or is unset at the last one.
 * @param list  the list.
 */
QORV_API void qorv_list_rem_first(QORV_LIST *list);

/**
 * Removes the last item, if any. A cursor on it is unset.
 * @param list  the list.
 */
QORV_API void qorv_list_rem_last(QORV_LIST *list);

/**
 * Removes the cursor's item, if any; the cursor moves to the next item, or is unset at the last one.
 * @param list  the list.
 */
QORV_API void qorv_list_rem_cur(QORV_LIST *list);

/**
 * Removes the item before the cursor, if any. Without a cursor the last item is removed.
 * @param list  the list.
 */
QORV_API void qorv_list_rem_prev(QORV_LIST *list);

/**
 * Removes the item after the cursor, if any. Without a cursor nothing is removed.
 * @param list  the list.
 */
QORV_API void qorv_list_rem_next(QORV_LIST *list);

/** @} */

/** @defgroup rlist Recycling list
 *  @{ */

/** The links of a buffer; its bytes (the payload) follow them in the same block. */
typedef struct QORV_RLIST_NODE {
    /** Towards the free end; null at the front. */
    struct QORV_RLIST_NODE *prev;
    /** Towards the oldest used buffer; null at the back. */
    struct QORV_RLIST_NODE *next;
} QORV_RLIST_NODE;

/**
 * A fixed pool of equal buffers that circulate first in, first out. They form one chain: the free ones in front, the
 * used ones behind them, the oldest at the back. Made by qorv_rlist_create().
 */
typedef struct QORV_RLIST {
    /** Buffers asked for at creation. */
    int32_t max;
    /** Bytes of a buffer. */
    int32_t isize;
    /** Buffers handed out and not yet given back. */
    uint32_t used;
    /** Back of the chain: the oldest used buffer, when there is one. */
    QORV_RLIST_NODE *last;
    /** Front of the chain. */
    QORV_RLIST_NODE *first;
    /** Private: the buffer to be handed out next, null when all are used. */
    QORV_RLIST_NODE *next_buf;
} QORV_RLIST;

/**
 * Creates a pool with all buffers free.
 * @param isize  bytes of a buffer, from 0 on.
 * @param count  buffers. Below 1 the pool is valid but never hands one out.
 * @return the pool, or null with nothing leaked when the system has no memory. Freed with qorv_rlist_delete().
 */
QORV_API QORV_RLIST *qorv_rlist_create(int32_t isize, int32_t count);

/**
 * Frees a pool and all its buffers, used ones included.
 * @param rlist  the pool; null is ignored.
 */
QORV_API void qorv_rlist_delete(QORV_RLIST *rlist);

/**
 * Hands out a free buffer, which becomes the newest used one. Takes the same time however many are used.
 * @param rlist  the pool.
 * @return the buffer's isize bytes, or null when all are used.
 */
QORV_API void *qorv_rlist_get_buf(QORV_RLIST *rlist);

/**
 * The oldest used buffer, which stays used.
 * @param rlist  the pool.
 * @return its bytes, or null when none is used.
 */
QORV_API void *qorv_rlist_get_data(const QORV_RLIST *rlist);

/**
 * Gives the oldest used buffer back; it will be handed out again after those that are free now. Does nothing when none
 * is used.
 * @param rlist  the pool.
 */
QORV_API void qorv_rlist_rem_data(QORV_RLIST *rlist);

/**
 * Gives all used buffers back, the oldest first.
 * @param rlist  the pool.
 */
QORV_API void qorv_rlist_rem_all(QORV_RLIST *rlist);

/**
 * The number of used buffers.
 * @param rlist  the pool.
 * @return used.
 */
QORV_API int32_t qorv_rlist_get_used_cnt(const QORV_RLIST *rlist);

/**
 * The number of free buffers.
 * @param rlist  the pool.
 * @return max - used; negative for a pool made with a negative count.
 */
QORV_API int32_t qorv_rlist_get_free_cnt(const QORV_RLIST *rlist);

/** @} */

/** @defgroup rbuf Ring buffer
 *  @{ */

/**
 * A ring of bytes. Made by qorv_rbuf_create(). One byte stays free: the ring is empty when wr = rd and full when
 * wr = (rd + size - 1) mod size.
 *
 * The positions are defined by the formulas of each function, and two of them leave 0 to size - 1. A put that exactly
 * fills the storage while rd is 0 leaves wr at size; who never holds more than size - 1 bytes does not meet it.
 * Taking a line moves rd to size when the line ends with the storage: until the next put or get, an empty ring (wr 0)
 * then has qorv_rbuf_is_empty() 0, qorv_rbuf_get_fill_len() -1 and a region of length 0 from qorv_rbuf_get_tail().
 * Lines that end in CR LF arrive whole and once all the same. After a line that ends in LF alone rd may also lie one
 * past wr or one past size, after which one length or result may be -1.
 */
typedef struct QORV_RBUF {
    /** Write position. */
    int32_t wr;
    /** Read position. */
    int32_t rd;
    /** Bytes of storage; the capacity is one less. */
    int32_t size;
    /** The storage. */
    uint8_t *buf;
} QORV_RBUF;

/**
 * Creates an empty ring.
 * @param size  bytes of storage, from 1 on.
 * @return the ring, or null when the system has no memory. Freed with qorv_rbuf_delete().
 */
QORV_API QORV_RBUF *qorv_rbuf_create(int32_t size);

/**
 * Frees a ring and its storage.
 * @param rbuf  the ring; null is ignored.
 */
QORV_API void qorv_rbuf_delete(QORV_RBUF *rbuf);

/**
 * Discards the contents: rd = wr.
 * @param rbuf  the ring.
 */
QORV_API void qorv_rbuf_empty(QORV_RBUF *rbuf);

/**
 * Stores all bytes or none.
 *
 * Odd ends: with rd = 0, n = size - wr bytes are accepted although that leaves wr at size. When the bytes would wrap
 * and then not fit, those up to the end of the storage are overwritten although the put is refused.
 * @param rbuf  the ring.
 * @param data  the bytes.
 * @param n     how many, from 0 on.
 * @return n, or 0 when they do not fit.
 */
QORV_API int32_t qorv_rbuf_put(QORV_RBUF *rbuf, const void *data, int32_t n);

/**
 * Takes as many bytes as there are, up to n.
 * @param rbuf  the ring.
 * @param dest  room for n bytes.
 * @param n     bytes wanted, from 0 on.
 * @return bytes taken.
 */
QORV_API int32_t qorv_rbuf_get(QORV_RBUF *rbuf, void *dest, int32_t n);

/**
 * Takes one line of text: up to a line feed, with its ending made CR LF and a zero byte after it.
 *
 * Odd ends. A line that ends in LF alone is followed by the loss of one byte: rd moves past the line and one byte more,
 * which may take it past wr (the ring then appears to hold size - 2 bytes) or past the storage. When the contents wrap:
 * - a dsize of at most t, the bytes from rd to the end of the storage, does not limit the line: up to t bytes are
 * looked at, and nothing beyond them;
 * - a zero byte before the end of the storage is passed over, as are the bytes between it and the end;
 * - a CR as the last byte of the storage and an LF, held, as its first one end the line with length t + 2, although the
 * text is t + 1 bytes long, a byte that is left as it was follows it, and the zero byte comes after that one.
 * @param rbuf   the ring.
 * @param dest   receives the line. Room for the larger of dsize and the ring's size, and 2 bytes more: a rewritten
 *               ending and the zero byte may reach index dsize + 1.
 * @param dsize  limit of the search: dsize - 1 bytes when the contents are in one piece, dsize bytes when they wrap.
 * @return length of the text with its ending; 0, with nothing taken but dest written, when the ring is empty, when
 *         there is no line feed within the limit, or when a zero byte comes first.
 */
QORV_API int32_t qorv_rbuf_get_one_line(QORV_RBUF *rbuf, char *dest, int32_t dsize);

/**
 * The free region that begins at the write position, to be written in place; then qorv_rbuf_skip_head().
 * @param rbuf  the ring.
 * @param ptr   receives the region's address, null when the ring is full.
 * @param len   receives its length as qorv_rbuf_get_freec_len(), 0 when the ring is full.
 * @return 0.
 */
QORV_API int32_t qorv_rbuf_get_head(const QORV_RBUF *rbuf, void **ptr, int32_t *len);

/**
 * The filled region that begins at the read position, to be read in place; then qorv_rbuf_skip_tail().
 * @param rbuf  the ring.
 * @param ptr   receives the region's address, null when the ring is empty.
 * @param len   receives its length as qorv_rbuf_get_fillc_len(), 0 when the ring is empty.
 * @return 0.
 */
QORV_API int32_t qorv_rbuf_get_tail(const QORV_RBUF *rbuf, void **ptr, int32_t *len);

/**
 * Commits bytes written in place. Odd end: with rd = 0 and n >= size - wr nothing is committed, although the result is
 * min(size - wr - 1, n).
 * @param rbuf  the ring.
 * @param n     bytes, from 0 on.
 * @return bytes committed, but for the odd end.
 */
QORV_API int32_t qorv_rbuf_skip_head(QORV_RBUF *rbuf, int32_t n);

/**
 * Commits bytes read in place.
 * @param rbuf  the ring.
 * @param n     bytes, from 0 on.
 * @return bytes committed, at most as many as there are.
 */
QORV_API int32_t qorv_rbuf_skip_tail(QORV_RBUF *rbuf, int32_t n);

/**
 * The free bytes, by formula: rd - wr - 1 when rd > wr, else rd - wr + size + 1. The latter is 2 more than a put
 * accepts, 1 more while rd is 0 (an empty ring reports size + 1).
 * @param rbuf  the ring.
 * @return the formula's value.
 */
QORV_API int32_t qorv_rbuf_get_free_len(const QORV_RBUF *rbuf);

/**
 * The free bytes in one piece at the write position: rd - wr - 1 when rd > wr, else size - wr, less 1 when rd = 0.
 * @param rbuf  the ring.
 * @return the formula's value.
 */
QORV_API int32_t qorv_rbuf_get_freec_len(const QORV_RBUF *rbuf);

/**
 * The filled bytes, by formula: wr - rd when wr >= rd, else wr + size - rd - 1, which is 1 fewer than there are.
 * @param rbuf  the ring.
 * @return the formula's value.
 */
QORV_API int32_t qorv_rbuf_get_fill_len(const QORV_RBUF *rbuf);

/**
 * The filled bytes in one piece at the read position: (size when rd > wr, else wr) - rd.
 * @param rbuf  the ring.
 * @return the formula's value.
 */
QORV_API int32_t qorv_rbuf_get_fillc_len(const QORV_RBUF *rbuf);

/**
 * The capacity.
 * @param rbuf  the ring.
 * @return size - 1.
 */
QORV_API int32_t qorv_rbuf_get_tot_len(const QORV_RBUF *rbuf);

/**
 * Whether the ring is full.
 * @param rbuf  the ring.
 * @return 1 or 0.
 */
QORV_API int32_t qorv_rbuf_is_full(const QORV_RBUF *rbuf);

/**
 * Whether the ring is empty.
 * @param rbuf  the ring.
 * @return 1 or 0.
 */
QORV_API int32_t qorv_rbuf_is_empty(const QORV_RBUF *rbuf);

/** @} */

/** @defgroup text Strings and URIs
 *  @{ */

/* Strings end with a zero byte and are shorter than 2^31 bytes; L is a string's length. Blanks are space, tab, LF and
 * CR. Results point into the caller's string. */

/**
 * The first byte that is not blank.
 * @param str  the string, or null.
 * @return that byte, or null when there is none.
 */
QORV_API const char *qorv_str_move_to_validw(const char *str);

/**
 * The last byte of the first word. Odd ends: a string, or a word at its end, of one byte is its own result whatever the
 * byte; the string's last byte is not looked at, so that a word that ends the string, or that only one blank follows,
 * gives null.
 * @param str  the string.
 * @return that byte, or null.
 */
QORV_API const char *qorv_str_move_to_eow(const char *str);

/**
 * The first byte that is not blank, the string's last byte not looked at.
 * @param str  the string.
 * @return that byte, or null.
 */
QORV_API const char *qorv_str_move_to_nextw(const char *str);

/**
 * The end of the line: its LF, the LF of its CR LF, or its lone CR (not the byte after it). A line end that is the
 * string's last byte is not found.
 * @param str  the string.
 * @return the last byte of the line's ending, or null.
 */
QORV_API const char *qorv_str_move_to_nextl(const char *str);

/**
 * Cuts a field at a byte, or at the first CR or LF. Without any of them the whole string is the field.
 * @param str   the string.
 * @param c     the byte.
 * @param len   receives the field's length, 0 on failure.
 * @param next  null, or receives the byte after the one that ended the field (of CR LF that is the LF); null when the
 *              string ends there.
 * @return 0, or -1 for an empty string.
 */
QORV_API int32_t qorv_str_parse_by_ctok(const char *str, char c, uint32_t *len, const char **next);

/**
 * Cuts a field at a token, or at the first CR or LF. Unlike qorv_str_parse_by_ctok() it fails without any of them.
 * @param str   the string.
 * @param tok   the token; an empty one gives a field of length 0.
 * @param len   receives the field's length, 0 on failure.
 * @param next  null, or receives the byte after the token or after the CR or LF; null when the string ends there.
 * @return 0, or -1.
 */
QORV_API int32_t qorv_str_parse_by_stok(const char *str, const char *tok, uint32_t *len, const char **next);

/**
 * Cuts a line at LF or CR LF.
 * @param str   the string.
 * @param len   receives the line's length without its ending. Odd end: without an ending it receives L although the
 *              call fails. 0 on other failures.
 * @param next  null, or receives the byte after the ending, null when the string ends there.
 * @return 0; -1 for an empty string, one without a line ending, or one whose first CR has no LF after it.
 */
QORV_API int32_t qorv_str_parse_one_line(const char *str, uint32_t *len, const char **next);

/**
 * Does nothing.
 * @param str  not read, may be null.
 * @return 0.
 */
QORV_API int32_t qorv_str_get_one_az09(const char *str);

/**
 * Copies a string with every space made "%20". No other byte is escaped.
 * @param src  the string.
 * @param dst  room for 3 L + 1 bytes; must not overlap the source.
 * @return the length of the copy.
 */
QORV_API int32_t qorv_str_conv_a2uri(const char *src, char *dst);

/**
 * Copies a string with every "%" and the two bytes after it made one byte.
 *
 * Odd ends: the two are read as decimal digits d1 and d2 and give 16 d1 + d2; any other byte, hexadecimal letters
 * included, counts as 0, so "%2F" gives a space. Bytes missing at the string's end count as 0 too; "%00" and the like
 * put a zero byte into the copy. "+" is left alone.
 * @param src  the string.
 * @param dst  room for L + 1 bytes; must not overlap the source.
 * @return the bytes written before the terminating zero.
 */
QORV_API int32_t qorv_str_conv_uri2a(const char *src, char *dst);

/**
 * Splits scheme "://" host ":" port "/" path, after leading blanks. Each output is text; the port is not converted.
 *
 * Odd ends, kept because callers rely on the outputs as they are:
 * - A CR or LF before any "://" ends the scheme, and the rest begins after it.
 * - The first ":" or CR or LF of the rest that has text after it separates host and port: a colon in the path does, and
 *   so does the CR of a CR LF that ends the URI. The port is then empty, which fails: "rtsp://srv/x/y" CR LF gives -1,
 *   with "srv/x/y" for the host.
 * - With a port, the path's length is that of the text from "/" to the end of the line, but its bytes are those of the
 *   next line, at most up to that one's end of string; without a next line the path is empty.
 * - A CR without LF in the path's text leaves the path empty, and so does no text after the "/".
 * - Without a port, a rest that begins with "/" (or is a single line end) is copied to path as a whole, line end
 *   included.
 * A path that does not begin with "/" gets one.
 *
 * @param uri     the string, or null.
 * @param scheme  receives the scheme; this and the next three have room for L + 2 bytes each, do not overlap the string
 *                and are empty where nothing is stored, on failure too.
 * @param host    receives the host.
 * @param port    receives the port.
 * @param path    receives the path.
 * @param next    receives the text after the URI's line, null when there is none.
 * @return 0; -1 for null, a blank string, a string without "://" or line end, nothing after it, or an empty port.
 */
QORV_API int32_t qorv_str_parse_uri(const char *uri, char *scheme, char *host, char *port, char *path,
                                    const char **next);

/** @} */

/** @defgroup media Media types and key frames
 *  @{ */

/** Known to no class. */
#define QORV_MT_NONE 0
/** MPEG-4 part 2: DX50 dx50 DIV4 div4 DIVX divx XVID xvid FMP4 M4S2 m4s2 MP4V mp4v. */
#define QORV_MT_VID_MPEG4 102
/** H.263: H263 h263 d263 s263. */
#define QORV_MT_VID_H263 103
/** H.264: AVC1 avc1 avcC H264 h264 x264. */
#define QORV_MT_VID_H264 104
/** Windows Media Video 7: WMV1 wmv1. */
#define QORV_MT_VID_WMV1 105
/** Windows Media Video 8: WMV2 wmv2. */
#define QORV_MT_VID_WMV2 106
/** Windows Media Video 9: WMV3 wmv3. */
#define QORV_MT_VID_WMV3 107
/** MS-MPEG-4 version 3: DIV3 div3. */
#define QORV_MT_VID_DIV3 110
/** H.263 under another name: no tag leads here, a caller may set it. */
#define QORV_MT_VID_H263_OTHER 111
/** RealVideo 1: RV10. */
#define QORV_MT_VID_RV10 113
/** RealVideo 2: RV20. */
#define QORV_MT_VID_RV20 114
/** RealVideo 3: RV30. */
#define QORV_MT_VID_RV30 115
/** RealVideo 4: RV40. */
#define QORV_MT_VID_RV40 116
/** MS-MPEG-4 version 3 under its own tag: MP43 mp43. */
#define QORV_MT_VID_MP43 117
/** VC-1 advanced profile: WVC1 wvc1. */
#define QORV_MT_VID_VC1 118
/** VP8: VP80. */
#define QORV_MT_VID_VP8 119
/** HEVC: HVC1 hvc1 hvcC H265 h265 x265. */
#define QORV_MT_VID_HEVC 120
/** HuffYUV: HFYU. */
#define QORV_MT_VID_HFYU 122
/** No video tag. */
#define QORV_MT_VID_UNKNOWN 299

/** PCM: WAVE tag 1. */
#define QORV_MT_AUD_PCM 300
/** G.711 A-law: WAVE tag 6. */
#define QORV_MT_AUD_ALAW 301
/** G.711 mu-law: WAVE tag 7. */
#define QORV_MT_AUD_MULAW 302
/** MPEG audio layers 1 and 2: WAVE tag 80. */
#define QORV_MT_AUD_MPEG 304
/** MPEG audio layer 3: WAVE tag 85. */
#define QORV_MT_AUD_MP3 305
/** AAC: WAVE tag 255, "aac " mp4a. */
#define QORV_MT_AUD_AAC 306
/** AC-3: WAVE tag 8192. */
#define QORV_MT_AUD_AC3 307
/** DTS: WAVE tag 8193. */
#define QORV_MT_AUD_DTS 308
/** AMR narrow band: samr. */
#define QORV_MT_AUD_AMR_NB 309
/** AMR wide band: sawb. */
#define QORV_MT_AUD_AMR_WB 310
/** QCELP: sqcp dqcp. */
#define QORV_MT_AUD_QCELP 311
/** Windows Media Audio: WAVE tags 352, 353. */
#define QORV_MT_AUD_WMA 312
/** Windows Media Audio Professional: WAVE tag 354. */
#define QORV_MT_AUD_WMA_PRO 313
/** Windows Media Audio Lossless: WAVE tag 355. */
#define QORV_MT_AUD_WMA_LOSSLESS 314
/** EVRC: evrc. */
#define QORV_MT_AUD_EVRC 321
/** RealAudio SIPR: sipr. */
#define QORV_MT_AUD_SIPR 331
/** RealAudio Cook: cook. */
#define QORV_MT_AUD_COOK 332
/** No audio tag. */
#define QORV_MT_AUD_UNKNOWN 499

/** DivX protection: divx DIVX. */
#define QORV_MT_DRM_DIVX 1100
/** No DRM tag. */
#define QORV_MT_DRM_UNKNOWN 1299

/** SubRip: SSRT. */
#define QORV_MT_SUB_SRT 3000
/** 3GPP timed text: TX3G tx3g SBTL sbtl. */
#define QORV_MT_SUB_TX3G 3006
/** Advanced SubStation Alpha: SASS. */
#define QORV_MT_SUB_ASS 3007
/** SubStation Alpha: SSSA. */
#define QORV_MT_SUB_SSA 3008
/** No subtitle tag. */
#define QORV_MT_SUB_UNKNOWN 3199

/** Builds a four-character code: the first character in the least significant byte. */
#define QORV_FCC(a, b, c, d) \
    ((uint32_t)(uint8_t)(a) | (uint32_t)(uint8_t)(b) << 8 | (uint32_t)(uint8_t)(c) << 16 | (uint32_t)(uint8_t)(d) << 24)

/**
 * The media type of an audio tag.
 * @param tag  WAVE format tag (a small number) or four-character code (#QORV_FCC), exactly as listed at the ids.
 * @return QORV_MT_AUD_*; #QORV_MT_AUD_UNKNOWN for others.
 */
QORV_API int32_t qorv_fcc2mt_aud(uint32_t tag);

/**
 * The media type of a video code.
 * @param fcc  four-character code (#QORV_FCC), exactly as listed at the ids.
 * @return QORV_MT_VID_*; #QORV_MT_VID_UNKNOWN for others.
 */
QORV_API int32_t qorv_fcc2mt_vid(uint32_t fcc);

/**
 * The media type of a subtitle code.
 * @param fcc  four-character code (#QORV_FCC), exactly as listed at the ids.
 * @return QORV_MT_SUB_*; #QORV_MT_SUB_UNKNOWN for others.
 */
QORV_API int32_t qorv_fcc2mt_sub(uint32_t fcc);

/**
 * The media type of a DRM code.
 * @param fcc  four-character code (#QORV_FCC), exactly as listed at the ids.
 * @return #QORV_MT_DRM_DIVX or #QORV_MT_DRM_UNKNOWN.
 */
QORV_API int32_t qorv_fcc2mt_drm(uint32_t fcc);

/**
 * The media type of a tag of any class: the first of audio, video, subtitle and DRM that knows it. The codes of DRM are
 * video codes too, so that #QORV_MT_DRM_DIVX never results.
 * @param tag  WAVE format tag or four-character code.
 * @return QORV_MT_*; #QORV_MT_NONE for tags that no class knows.
 */
QORV_API int32_t qorv_fcc2mt(uint32_t tag);

/**
 * Tells whether a compressed frame is a key frame, from its first start codes or its first byte.
 *
 * - H.264: the first slice NAL unit (type 1 or 5) decides; it is one of type 5. HEVC: the first NAL unit of all
 * decides; types 19 and 20 are key frames, so a frame that begins with a parameter set is none. Both with Annex B start
 * codes.
 * - MPEG-4 part 2: the first VOP or short header decides, but for short headers with an extended picture type, which
 * are passed over. H.263: the first picture header.
 * - WMV1, WMV2, DIV3: the first one or two bits of the frame. HFYU: always. Any other id: never.
 *
 * @param id    media type, QORV_MT_VID_*.
 * @param data  the frame. For the H.263 ids the byte after the last one may be read, when a header with extended
 *              picture type and full update begins 7 bytes before the end; for WMV1, WMV2 and DIV3 the first byte is
 *              read even of an empty frame.
 * @param size  its bytes.
 * @return 1 for a key frame, 0 otherwise and when nothing decides.
 */
QORV_API int32_t qorv_is_vkeyfrm(int32_t id, const uint8_t *data, int32_t size);

/** @} */

/** @defgroup md5 MD5
 *  The digest of RFC 1321, of bytes, of 16-bit samples and of pictures.
 *  @{ */

/** A digest being computed, set up by qorv_md5_init(). */
typedef struct QORV_MD5 {
    /** Chaining values A, B, C, D. */
    uint32_t state[4];
    /** The incomplete block; it holds (count[0] >> 3) & 63 bytes. */
    uint8_t buffer[64];
    /** Length of the message so far in bits: low word, high word. */
    uint32_t count[2];
} QORV_MD5;

/**
 * Begins a digest. The buffer is left as it is.
 * @param md5  the context, in the caller's memory; it owns nothing.
 * @return md5.
 */
QORV_API QORV_MD5 *qorv_md5_init(QORV_MD5 *md5);

/**
 * Adds bytes to the message.
 * @param md5   the context.
 * @param data  the bytes; may be null when len is 0.
 * @param len   their number, any 32-bit value.
 */
QORV_API void qorv_md5_update(QORV_MD5 *md5, const void *data, uint32_t len);

/**
 * Adds 16-bit samples to the message, each as two bytes, the low one first.
 * @param md5      the context.
 * @param samples  the samples.
 * @param n        their number, at most 256; split longer rows.
 */
QORV_API void qorv_md5_update_16(QORV_MD5 *md5, const uint16_t *samples, uint32_t n);

/**
 * Ends the message. The whole context is zero afterwards and must be initialised before it is used again.
 * @param md5     the context.
 * @param digest  receives the 16 bytes of the digest.
 */
QORV_API void qorv_md5_finish(QORV_MD5 *md5, uint8_t *digest);

/**
 * The digest of a picture: plane 0, rows y to h - 1 with w - x bytes each, and then, but for #QORV_CS_YUV400, planes 1
 * and 2, rows y >> 1 to half(h) - 1 with half(w - x) bytes each. Every colour space is walked with this geometry of
 * 8-bit 4:2:0, whatever its own is, and rows begin at their first sample even when x is not 0. Alpha is not hashed.
 * @param imgb    the picture; only cs, w, h, x, y, s and a are read.
 * @param digest  receives the 16 bytes of the digest.
 * @return #QORV_OK; or #QORV_ERR_UNSUPPORTED_CS, with the digest untouched, for a colour space outside 10 to 99.
 */
QORV_API int32_t qorv_md5_imgb(const QORV_IMGB *imgb, uint8_t *digest);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* QORV_SKIA_H */
