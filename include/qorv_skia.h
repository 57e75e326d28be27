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

#define QORV_VERSION_MAJOR 1 /**< Raised when the binary interface breaks. */
#define QORV_VERSION_MINOR 0 /**< Raised when something is added. */
#define QORV_VERSION_PATCH 0 /**< Raised when something is mended. */

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

#define QORV_OK 0                        /**< Success. */
#define QORV_ERR (-1)                    /**< Generic failure: nothing left to read, no room to write, not parsable. */
#define QORV_ERR_BSR_REFILL (-2)         /**< The bit reader's refill failed inside an Exp-Golomb code. */
#define QORV_ERR_IRSZ_MODE (-2)          /**< Resizer mode is neither 10 nor 11 (never meets #QORV_ERR_BSR_REFILL). */
#define QORV_ERR_IRSZ_NOMEM (-3)         /**< The resizer could not be allocated. */
#define QORV_ERR_UNSUPPORTED_FMT (-4)    /**< Resizer pixel format not supported. */
#define QORV_ERR_OUT_OF_MEMORY (-102)    /**< A control record could not be allocated, or a block is too small. */
#define QORV_ERR_INVALID_ARG (-105)      /**< Null record, or an allocator without its release function. */
#define QORV_ERR_ALLOC_FAILED (-203)     /**< The sample-memory allocator returned null. */
#define QORV_ERR_BITB_ALLOC_FAILED (-204) /**< The bitstream buffer's allocator returned null. */
#define QORV_ERR_UNSUPPORTED_CS (-211)   /**< Colour space or conversion pair not supported. */

/** @} */

/** @defgroup alloc Aligned allocation and reference counts
 *  @{ */

/**
 * Allocates a block that starts on a 32-byte boundary.
 * @param size  bytes, 0 to 2^31 - 1. Negative values are not checked: -40 to -1 give a tiny block, others null.
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

/** @} */

/** @defgroup platform Platform queries
 *  @{ */

/** @} */

/** @defgroup colourspace Colour spaces and plane geometry
 *  W and H are the picture's size; half(x) = (x + 1) >> 1 and quarter(x) = (x + 3) >> 2, so odd sizes round up.
 *  @{ */

#define QORV_CS_YUV400 10      /**< Luma only, 8-bit. */
#define QORV_CS_YUV420 11      /**< Planar, chroma half(W) x half(H), 8-bit. */
#define QORV_CS_YUV422 12      /**< Planar, chroma half(W) x H, 8-bit. */
#define QORV_CS_YUV444 13      /**< Planar, chroma W x H, 8-bit. */
#define QORV_CS_NV12 16        /**< Luma and one plane of interleaved chroma pairs, half(W) x half(H) pairs, 8-bit. */
#define QORV_CS_NV21 17        /**< As #QORV_CS_NV12 with the other order in a pair. */
#define QORV_CS_YUV440 18      /**< Planar, chroma W x half(H), 8-bit. */
#define QORV_CS_YUV400_16 20   /**< Luma only, 16-bit words. */
#define QORV_CS_YUV411 22      /**< Planar, chroma quarter(W) x H, 8-bit. */
#define QORV_CS_YUVA420 41     /**< #QORV_CS_YUV420 and an alpha plane W x H. */
#define QORV_CS_YUVA422 42     /**< #QORV_CS_YUV422 and an alpha plane W x H. */
#define QORV_CS_YUVA444 43     /**< #QORV_CS_YUV444 and an alpha plane W x H. */
#define QORV_CS_YUVA440 44     /**< #QORV_CS_YUV440 and an alpha plane W x H. */
#define QORV_CS_P010 60        /**< Planar 4:2:0 (three planes), 10-bit samples in the low bits of 16-bit words. */
#define QORV_CS_P210 61        /**< Planar 4:2:2, 10-bit samples in 16-bit words. */
#define QORV_CS_P410 62        /**< Planar 4:4:4, 10-bit samples in 16-bit words. */
#define QORV_CS_YUV420_16 63   /**< Planar 4:2:0 in 16-bit words. */
#define QORV_CS_YUV422_16 64   /**< Planar 4:2:2 in 16-bit words. */
#define QORV_CS_RGB565 200     /**< Packed 16-bit words: red in bits 15..11, green in 10..5, blue in 4..0. */
#define QORV_CS_RGB888 400     /**< Packed bytes R, G, B. */
#define QORV_CS_BGR888 401     /**< Packed bytes B, G, R (no converter is registered for it). */
#define QORV_CS_RGBA5658 430   /**< 5-6-5 words and alpha bytes, 3 bytes a pixel; see the converters. */
#define QORV_CS_RGBA8888 500   /**< Packed bytes R, G, B, A. */
#define QORV_CS_BGRA8888 501   /**< Packed bytes B, G, R, A. */
#define QORV_CS_ARGB8888 502   /**< Packed bytes A, R, G, B. */
#define QORV_CS_R8G8B8 600     /**< Planes R, G, B of bytes (converters only). */
#define QORV_CS_R10G10B10 603  /**< Planes R, G, B, 10-bit in 16-bit words (converters only). */
#define QORV_CS_RGB565A8 650   /**< A plane of 5-6-5 words and a plane of alpha bytes (converters only). */
#define QORV_CS_R8G8B8A8 700   /**< Planes R, G, B, A of bytes (converters only). */

/**
 * The planes of a picture in the YUV family, or in #QORV_CS_RGB888.
 * @param cs           colour space: the identifiers 10 to 64 above, or #QORV_CS_RGB888. The other packed RGB identifiers
 *                     are known to the image buffer alone.
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

#define QORV_IMGB_OPT_ZERO_ALIGN 1u /**< Clear the alignment margin of every plane. */
#define QORV_IMGB_OPT_ZERO_PAD 2u   /**< Clear the padding of every plane. */

/** Builds one element of an alignment or padding array: horizontal elements in the upper half, rows in the lower. */
#define QORV_IMGB_WORD(horizontal, vertical) (((uint32_t)(horizontal) << 16) | (uint32_t)(vertical))

typedef struct QORV_IMGB QORV_IMGB;

/** A picture. Made by qorv_imgb_create(); the fields are read by the user, only x and y are his to set. */
struct QORV_IMGB {
    int32_t refcnt;                      /**< Reference count; changed only by the three operations. */
    int32_t (*addref)(QORV_IMGB *imgb);  /**< Adds a reference: the new count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*getref)(QORV_IMGB *imgb);  /**< The count, #QORV_ERR_INVALID_ARG for null. */
    int32_t (*release)(QORV_IMGB *imgb); /**< Drops a reference: the count left, 0 once block and record are freed,
                                              #QORV_ERR_INVALID_ARG for null. */
    int32_t w;                           /**< Width of plane 0 in pixels, before alignment. */
    int32_t h;                           /**< Height of plane 0 in rows, before alignment. */
    int32_t x;                           /**< First column of the active region; 0 after create and rebirth. */
    int32_t y;                           /**< First row of the active region; 0 after create and rebirth. */
    uint32_t cs;                         /**< Colour space, QORV_CS_*. */
    int32_t s[4];                        /**< Stride of each plane in bytes, padding included. */
    int32_t e[4];                        /**< Rows allocated for each plane, padding included. */
    void *a[4];                          /**< First visible sample of each plane. */
    uint64_t pa[4];                      /**< The same four positions in the auxiliary address space. */
    uint8_t opaque[80];                  /**< Zero after create, never touched by the library; kept across rebirth. */
    int32_t aw;                          /**< Aligned width of plane 0 in pixels. */
    int32_t ah;                          /**< Aligned height of plane 0 in rows. */
    qorv_alloc_fn alloc;                 /**< Allocator in use. */
    qorv_free_fn free;                   /**< Its release function. */
    void *baddr[4];                      /**< Storage of each plane (top-left corner of the padding); [0] the block. */
    uint64_t bpaddr[4];                  /**< The same in the auxiliary address space; with the default allocator plain
                                              byte offsets into the block. */
    uint32_t bsize;                      /**< Bytes in the block. */
};

/**
 * Creates a picture with a reference count of 1.
 *
 * A plane's width in elements is aligned up, multiplied by the bytes of an element and widened by the padding of both
 * sides to give its stride; its rows likewise. The planes lie one after the other in one block. Packed RGB identifiers
 * take 2 (100 to 299), 4 (300 to 399), 3 (400 to 499) or 4 (500 to 599) bytes a pixel; identifiers from 600 on are
 * refused.
 *
 * @param w       width in pixels, not checked.
 * @param h       height in rows, not checked.
 * @param cs      colour space, 10 to 599.
 * @param opt     QORV_IMGB_OPT_* flags; other bits are ignored.
 * @param align   null, or four alignment words (#QORV_IMGB_WORD): horizontal alignment in elements and vertical in rows,
 *                powers of two (1: none; 0 gives an aligned size of 0). Packed RGB reads element 0 only.
 * @param pad     null, or four padding words: elements on the left and on the right, rows above and below. Packed RGB
 *                reads element 0 only.
 * @param alloc   sample-memory allocator, or null for qorv_malloc_align32() (free is then ignored).
 * @param free    its release function.
 * @param status  null, or receives #QORV_OK, #QORV_ERR_INVALID_ARG (alloc without free), #QORV_ERR_OUT_OF_MEMORY (the
 *                record), #QORV_ERR_UNSUPPORTED_CS or #QORV_ERR_ALLOC_FAILED (the block).
 * @return the picture, or null with nothing leaked. The sum of stride x rows must stay below 2^32 bytes.
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
 * @param widths           of the planes, in elements.
 * @param heights          of the planes, in rows.
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
 * @return #QORV_OK; or, with no field changed, #QORV_ERR_UNSUPPORTED_CS, or #QORV_ERR_OUT_OF_MEMORY when the block is
 *         too small for the new layout.
 */
QORV_API int32_t qorv_imgb_rebirth(QORV_IMGB *imgb, int32_t w, int32_t h, uint32_t cs, uint32_t opt,
                                   const uint32_t *align, const uint32_t *pad);

/** @} */

/** @defgroup border Border expansion
 *  @{ */

/** @} */

/** @defgroup buffers Audio, bitstream and bare buffers, owned bytes
 *  @{ */

/** @} */

/** @defgroup bsr Bit reader
 *  @{ */

/** @} */

/** @defgroup bsw Bit writer
 *  @{ */

/** @} */

/** @defgroup csc Colour converters
 *  Every converter has the type #qorv_csc_fn. Ask qorv_imgp_get_fn_csc() for one, or call it by name.
 *
 *  Interleaved layouts are handed over as one pointer and one stride for each channel: for #QORV_CS_RGB888 the three
 *  entries point at the R, G and B byte of the first pixel (normally base, base + 1, base + 2). Any other arrangement
 *  of the channel pointers works too, more slowly. A 5-6-5 plane is written as host-order 16-bit words and advances by
 *  stride >> 1 words a row, so an odd stride loses its last byte.
 *
 *  A destination that overlaps a source or another destination gives the result of the per-pixel loop: rows from the
 *  first, pixels from the left, all samples of a pixel read before its first is written.
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
 * Sources: 0 R8G8B8, 1 R8G8B8A8, 2 YUV444, 3 YUVA444, 4 P410, 5 R10G10B10. Destinations: 0 RGB888, 1 RGBA8888, 2 RGB565,
 * 3 RGBA5658, 4 RGB565A8, 5 ARGB8888, 6 BGRA8888, 7 BGR888 (empty), 8 R8G8B8, 9 none (empty), 10 R10G10B10.
 * Two cells surprise: R8G8B8A8 to RGBA5658 holds qorv_csc_r8g8b8a8_to_rgba8888(), and R10G10B10 to R10G10B10 holds
 * qorv_csc_r10g10b10_to_p410().
 */
extern QORV_API const qorv_csc_fn qorv_tbl_fn_csc_to_rgb[2][6][11];

/**
 * Converters to planar YUV by [0: equal sizes, 1: differing sizes (empty)][source][destination]; null where there is
 * none. Sources: 0 R8G8B8, 1 R8G8B8A8 (never found by the lookup), 2 YUV444, 3 YUVA444, 4 RGB565, 5 R10G10B10, 6 RGB888,
 * 7 RGBA8888. Destinations: 0 YUV444, 1 YUVA444, 2 P410.
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
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444_to_rgb888(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to interleaved bytes; dst: R, G, B, A channel pointers, 4 bytes a pixel. Alpha is 255.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Planes Y, U, V to interleaved bytes without blue. Writes red through dst[1], green through dst[2] and 255 through
 *  dst[3], 4 bytes a pixel. There is no blue; dst[0] and its stride are not read, and the byte below is left as it was.
 *  For a picture with all four channels use the source with alpha, qorv_csc_yuv444a8_to_argb8888().
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444_to_argb8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to interleaved bytes; dst: B, G, R, A channel pointers, 4 bytes a pixel. Alpha is 255.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444_to_bgra8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to a plane of 5-6-5 words in dst[0]. Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444_to_rgb565(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to a plane of 5-6-5 words in dst[0] and a plane of alpha bytes, 255, in dst[1].
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444_to_rgb565a8(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V to planes R, G, B. Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444_to_r8g8b8(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to interleaved bytes; dst: R, G, B, A channel pointers, 4 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444a8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to interleaved bytes; dst: A, R, G, B channel pointers, 4 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444a8_to_argb8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to interleaved bytes; dst: B, G, R, A channel pointers, 4 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444a8_to_bgra8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes Y, U, V, A to a plane of 5-6-5 words in dst[0] and a plane of alpha bytes in dst[1].
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444a8_to_rgb565a8(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Planes Y, U, V, A to 5-6-5 words through dst[0], packed two bytes a pixel, and alpha bytes through dst[1], three bytes
 *  apart. The bytes between the alpha bytes are left as they were.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444a8_to_rgba5658(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** @} */

/** @name RGB to YUV
 *  Full-range ITU-R BT.601 in units of 1/256, arithmetic shifts: Y = (77 R + 150 G + 29 B + 128) >> 8,
 *  U = ((-43 R - 85 G + 128 B + 128) >> 8) + 128, V = ((128 R - 107 G - 21 B + 128) >> 8) + 128. Pure blue (U) and pure
 *  red (V), which would give 256, give 255. Alpha is copied.
 *  @{ */
/** Planes R, G, B to planes Y, U, V. Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8_to_yuv444(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Interleaved bytes to planes Y, U, V; src: R, G, B channel pointers, 3 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_rgb888_to_yuv444(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/**
 *  A plane of 5-6-5 words to planes Y, U, V. The words are widened with zero low bits: R = (p >> 8) & 0xF8,
 *  G = (p >> 3) & 0xFC, B = (p & 31) << 3, so white is (248, 252, 248).
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_rgb565_to_yuv444(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Interleaved bytes to planes Y, U, V, A; src: R, G, B, A channel pointers, 4 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_rgba8888_to_yuv444a8(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A to planes Y, U, V, A. Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8a8_to_yuv444a8(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** @} */

/** @name RGB repacking
 *  No arithmetic: bytes are reordered, or packed to 5-6-5 words by dropping the low bits of each channel.
 *  @{ */
/** Planes R, G, B to interleaved bytes; dst: R, G, B channel pointers, 3 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8_to_rgb888(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to interleaved bytes; dst: R, G, B, A channel pointers, 4 bytes a pixel. Alpha is 255.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to interleaved bytes; dst: A, R, G, B channel pointers, 4 bytes a pixel. Alpha is 255.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8_to_argb8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to interleaved bytes; dst: B, G, R, A channel pointers, 4 bytes a pixel. Alpha is 255.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8_to_bgra8888(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B to a plane of 5-6-5 words in dst[0]. Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8_to_rgb565(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                        uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                        const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Three planes, whatever they mean, to the top, middle and bottom field of 5-6-5 words in dst[0], and a plane of alpha
 *  bytes, 255, in dst[1].
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_x8y8z8_to_xyz565a8(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A to interleaved bytes; dst: R, G, B, A channel pointers, 4 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8a8_to_rgba8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A to interleaved bytes; dst: A, R, G, B channel pointers, 4 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8a8_to_argb8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** Planes R, G, B, A to interleaved bytes; dst: B, G, R, A channel pointers, 4 bytes a pixel.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8a8_to_bgra8888(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Planes R, G, B, A to 5-6-5 words through dst[0], packed two bytes a pixel, and alpha bytes through dst[1], three bytes
 *  apart. The bytes between the alpha bytes are left as they were. In no table.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r8g8b8a8_to_rgba5658(const void *const *src, int32_t src_w, int32_t src_h,
                                            const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                            int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Three planes to 5-6-5 words in dst[0] as qorv_csc_x8y8z8_to_xyz565a8(), and plane src[3] to the alpha bytes of
 *  dst[1].
 *  Arguments as #qorv_csc_fn. */
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
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_p410_to_r10g10b10(const void *const *src, int32_t src_w, int32_t src_h,
                                         const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                         int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Planes R, G, B of 10-bit samples in words to planes Y, U, V of the same. Strides count samples.
 *  Y = (308 R + 600 G + 116 B + 512) >> 10, at most 1023; U = ((-172 R - 340 G + 512 B + 512) >> 10) + 512 and
 *  V = ((512 R - 428 G - 84 B + 512) >> 10) + 512, at least 0 and at most 1535: pure blue gives a U and pure red a V of
 *  1024, one above the 10-bit range. Samples above 1023 are taken as they are.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_r10g10b10_to_p410(const void *const *src, int32_t src_w, int32_t src_h,
                                         const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                         int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Three planes of 10-bit 4:2:0 in words to three planes of bytes: (sample >> 2) & 255, no rounding, no clamping. Source
 *  strides are in bytes and rounded down to even, destination strides in bytes. Chroma is (src_w >> 1) x (src_h >> 1):
 *  an odd picture's last chroma column and row are not converted. In no table.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_p010_to_yuv420(const void *const *src, int32_t src_w, int32_t src_h, const int32_t *src_stride,
                                      uint64_t unused, void *const *dst, int32_t dst_w, int32_t dst_h,
                                      const int32_t *dst_stride, int32_t dst_cs);

/**
 *  Copies planes Y, U, V of bytes, and the alpha plane when dst_cs is #QORV_CS_YUVA444 and src[3] is not null. Each row is
 *  copied byte by byte from the left: a destination 1 to src_w - 1 bytes behind its source repeats the row's beginning.
 *  Arguments as #qorv_csc_fn. */
QORV_API void qorv_csc_yuv444x_to_yuv444x(const void *const *src, int32_t src_w, int32_t src_h,
                                          const int32_t *src_stride, uint64_t unused, void *const *dst, int32_t dst_w,
                                          int32_t dst_h, const int32_t *dst_stride, int32_t dst_cs);

/** @} */

/** @} */

/** @defgroup irsz Resizer
 *  @{ */

/** @} */

/** @defgroup sad Sum of absolute differences
 *  @{ */

/** @} */

/** @defgroup diff Residual differences
 *  @{ */

/** @} */

/** @defgroup satd SSD, Hadamard and SATD
 *  @{ */

/** @} */

/** @defgroup list Linked list
 *  @{ */

/** @} */

/** @defgroup rlist Recycling list
 *  @{ */

/** @} */

/** @defgroup rbuf Ring buffer
 *  @{ */

/** @} */

/** @defgroup text Strings and URIs
 *  @{ */

/** @} */

/** @defgroup media Media types and key frames
 *  @{ */

/** @} */

/** @defgroup md5 MD5
 *  @{ */

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* QORV_SKIA_H */
