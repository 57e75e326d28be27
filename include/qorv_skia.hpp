/**
 * @file qorv_skia.hpp
 * @brief The C interface of qorv_skia.h for C++17 and later: handles that own what they hold, views that know their
 *        bounds. Header only; everything is inline over the C functions, whose comments hold here too.
 *
 * Conventions:
 * - Nothing here allocates: memory is taken by the C functions alone, as their comments say.
 * - Nothing here throws, and the header compiles with -fno-exceptions and -fno-rtti. What can fail returns a Status, or
 *   a Created of a handle and a Status.
 * - Bounds and empty handles are checked by assert(): not at all with NDEBUG.
 */
#ifndef QORV_SKIA_HPP
#define QORV_SKIA_HPP

#include <qorv_skia.h>

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

/** The C++ interface of libqorv_skia. */
namespace qorv {

/** @defgroup cpp C++ interface
 *  qorv_skia.hpp: owning handles, views and statuses over the C interface, for C++17 and later.
 *  @{ */

/** The status codes QORV_OK and QORV_ERR_* as a type of their own. */
enum class Status : std::int32_t {
    /** Success. */
    ok = QORV_OK,
    /** Generic failure. */
    error = QORV_ERR,
    /** The bit reader's refill failed inside an Exp-Golomb code. */
    bsr_refill = QORV_ERR_BSR_REFILL,
    /** Resizer mode unknown; the value of bsr_refill, which it never meets. */
    irsz_mode = QORV_ERR_IRSZ_MODE,
    /** The resizer could not be allocated. */
    irsz_no_memory = QORV_ERR_IRSZ_NOMEM,
    /** Resizer pixel format not supported. */
    unsupported_format = QORV_ERR_UNSUPPORTED_FMT,
    /** A control record could not be allocated, or a block is too small. */
    out_of_memory = QORV_ERR_OUT_OF_MEMORY,
    /** Null record, no bytes to copy, or an allocator without its release. */
    invalid_argument = QORV_ERR_INVALID_ARG,
    /** The sample-memory allocator gave nothing, or sizes are too large for any block. */
    alloc_failed = QORV_ERR_ALLOC_FAILED,
    /** The bitstream buffer's allocator gave nothing. */
    bitb_alloc_failed = QORV_ERR_BITB_ALLOC_FAILED,
    /** Colour space or conversion pair not supported. */
    unsupported_colour_space = QORV_ERR_UNSUPPORTED_CS
};

/**
 * What a status means, in words.
 * @param status  any status.
 * @return a constant text, never null; for values that are no status "unknown status".
 */
constexpr const char *to_text(Status status) noexcept {
    switch (status) {
        case Status::ok:
            return "success";
        case Status::error:
            return "failed";
        case Status::bsr_refill:
            return "no refill inside a code, or unknown resizer mode";
        case Status::irsz_no_memory:
            return "no memory for the resizer";
        case Status::unsupported_format:
            return "pixel format not supported";
        case Status::out_of_memory:
            return "out of memory, or block too small";
        case Status::invalid_argument:
            return "invalid argument";
        case Status::alloc_failed:
            return "no memory for the samples";
        case Status::bitb_alloc_failed:
            return "no memory for the bitstream";
        case Status::unsupported_colour_space:
            return "colour space or conversion not supported";
    }
    return "unknown status";
}

/** What a create function gives: a handle, empty on failure, and why. `auto [image, status] = Image::create(...)`. */
template <class Handle>
struct Created {
    /** The handle; empty on failure. */
    Handle handle;
    /** Status::ok, or why there is none. */
    Status status;
    /** @return whether the handle is not empty. */
    explicit operator bool() const noexcept { return static_cast<bool>(handle); }
};

// ---------------------------------------------------------------------------------------------------------------------
// Views

/** A run of elements that belongs to somebody else. Made from arrays and from whatever has data() and size(). */
template <class T>
class Span {
public:
    /** The empty run. */
    constexpr Span() noexcept = default;

    /**
     * A run by address and length.
     * @param data  first element; may be null when size is 0.
     * @param size  elements.
     */
    constexpr Span(T *data, std::size_t size) noexcept : data_(data), size_(size) {}

    /**
     * All elements of an array.
     * @param array  the array.
     */
    template <std::size_t N>
    constexpr Span(T (&array)[N]) noexcept : data_(array), size_(N) {}

    /**
     * All elements of a container that stores them in one piece; a temporary one must outlive the view.
     * @param container  anything with data() and size().
     */
    template <class Container, class = std::enable_if_t<!std::is_same_v<std::decay_t<Container>, Span>>,
              class = decltype(static_cast<T *>(std::declval<Container &>().data())),
              class = decltype(static_cast<std::size_t>(std::declval<Container &>().size()))>
    constexpr Span(Container &&container) noexcept : data_(container.data()), size_(container.size()) {}

    /** @return the first element's address. */
    constexpr T *data() const noexcept { return data_; }
    /** @return the number of elements. */
    constexpr std::size_t size() const noexcept { return size_; }
    /** @return whether there are none. */
    constexpr bool empty() const noexcept { return size_ == 0; }
    /** @return the first element's address. */
    constexpr T *begin() const noexcept { return data_; }
    /** @return the address after the last element. */
    constexpr T *end() const noexcept { return data_ + size_; }

    /**
     * One element.
     * @param i  0 to size() - 1.
     * @return the element.
     */
    constexpr T &operator[](std::size_t i) const noexcept {
        assert(i < size_);
        return data_[i];
    }

private:
    T *data_ = nullptr;
    std::size_t size_ = 0;
};

/** Rows of samples of one type, a signed number of bytes apart: a plane of a picture, or a part of one. */
template <class T>
class Plane {
    using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;

public:
    /** The plane of no samples. */
    constexpr Plane() noexcept = default;

    /**
     * A plane by address.
     * @param data    first sample of the first row.
     * @param width   samples in a row.
     * @param height  rows.
     * @param stride  bytes from row to row; may be negative.
     */
    constexpr Plane(T *data, std::int32_t width, std::int32_t height, std::int32_t stride) noexcept
        : data_(data), width_(width), height_(height), stride_(stride) {}

    /**
     * A plane that is only read.
     * @param other  the plane that may be written.
     */
    template <class U, class = std::enable_if_t<std::is_same_v<T, const U>>>
    constexpr Plane(const Plane<U> &other) noexcept
        : Plane(other.data(), other.width(), other.height(), other.stride()) {}

    /** @return the first sample of the first row. */
    constexpr T *data() const noexcept { return data_; }
    /** @return samples in a row. */
    constexpr std::int32_t width() const noexcept { return width_; }
    /** @return rows. */
    constexpr std::int32_t height() const noexcept { return height_; }
    /** @return bytes from row to row. */
    constexpr std::int32_t stride() const noexcept { return stride_; }
    /** @return samples from row to row, as the block metrics count; the stride must be a multiple of a sample. */
    constexpr std::int32_t stride_in_samples() const noexcept { return stride_ / static_cast<std::int32_t>(sizeof(T)); }

    /**
     * One row.
     * @param y  0 to height() - 1.
     * @return its samples.
     */
    Span<T> row(std::int32_t y) const noexcept {
        assert(y >= 0 && y < height_);
        return {at_row(y), static_cast<std::size_t>(width_)};
    }

    /**
     * One sample.
     * @param x  0 to width() - 1.
     * @param y  0 to height() - 1.
     * @return the sample.
     */
    T &operator()(std::int32_t x, std::int32_t y) const noexcept {
        assert(x >= 0 && x < width_);
        return row(y)[static_cast<std::size_t>(x)];
    }

    /**
     * A rectangle of the plane.
     * @param x  first column, from 0 on.
     * @param y  first row, from 0 on.
     * @param w  columns, at most width() - x.
     * @param h  rows, at most height() - y.
     * @return the part, in the same memory.
     */
    Plane part(std::int32_t x, std::int32_t y, std::int32_t w, std::int32_t h) const noexcept {
        assert(x >= 0 && y >= 0 && w >= 0 && h >= 0 && x <= width_ - w && y <= height_ - h);
        return {at_row(y) + x, w, h, stride_};
    }

    /** @return the same rows from the last one up, by a negated stride. */
    Plane upside_down() const noexcept {
        return height_ > 0 ? Plane{at_row(height_ - 1), width_, height_, -stride_} : *this;
    }

private:
    T *at_row(std::int32_t y) const noexcept {
        return reinterpret_cast<T *>(reinterpret_cast<Byte *>(data_) + std::ptrdiff_t{stride_} * y);
    }

    T *data_ = nullptr;
    std::int32_t width_ = 0, height_ = 0, stride_ = 0;
};

/**
 * A picture as the converters take it: one pointer and one stride in bytes for each plane, or for each channel of an
 * interleaved layout. Void is void, or const void for a picture that is only read.
 */
template <class Void>
struct BasicPicture {
    /** Colour space, QORV_CS_*. */
    std::uint32_t cs = 0;
    /** Width in pixels. */
    std::int32_t width = 0;
    /** Height in rows. */
    std::int32_t height = 0;
    /** First sample of each plane or channel, in the order of the colour space's name. */
    Void *channel[4] = {};
    /** Bytes from row to row of each. */
    std::int32_t stride[4] = {};

    /** @return the same picture, only to be read. */
    operator BasicPicture<const void>() const noexcept {
        BasicPicture<const void> view{cs, width, height, {}, {}};
        for (int i = 0; i < 4; i++) {
            view.channel[i] = channel[i];
            view.stride[i] = stride[i];
        }
        return view;
    }
};

/** A picture that may be written. */
using Picture = BasicPicture<void>;
/** A picture that is only read. */
using ConstPicture = BasicPicture<const void>;

/**
 * Bytes of a pixel of a packed RGB colour space.
 * @param cs  colour space.
 * @return 2, 3 or 4; 0 for a colour space that is not packed RGB (100 to 599).
 */
constexpr std::int32_t bytes_per_pixel(std::uint32_t cs) noexcept {
    if (cs < 100 || cs > 599) return 0;
    return cs < 300 ? 2 : cs >= 400 && cs < 500 ? 3 : 4;
}

/**
 * Interleaved pixels, or 5-6-5 words, in memory that the caller owns.
 * @param cs      QORV_CS_RGB565, RGB888, BGR888, RGBA8888, BGRA8888 or ARGB8888.
 * @param pixels  first pixel of the first row.
 * @param width   pixels in a row.
 * @param height  rows.
 * @param stride  bytes from row to row; may be negative.
 * @return the picture.
 */
template <class T>
BasicPicture<std::conditional_t<std::is_const_v<T>, const void, void>> packed(std::uint32_t cs, T *pixels,
                                                                              std::int32_t width, std::int32_t height,
                                                                              std::int32_t stride) noexcept {
    using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;
    BasicPicture<std::conditional_t<std::is_const_v<T>, const void, void>> picture{cs, width, height, {}, {}};
    const int channels = cs == QORV_CS_RGB565 ? 1 : bytes_per_pixel(cs);
    assert(channels != 0);
    for (int i = 0; i < channels; i++) {
        picture.channel[i] = reinterpret_cast<Byte *>(pixels) + i;
        picture.stride[i] = stride;
    }
    return picture;
}

/**
 * Planes in memory that the caller owns.
 * @param cs     colour space of planes, such as QORV_CS_YUV444, P410 or R8G8B8.
 * @param first  plane 0, which gives the picture's size.
 * @param rest   up to three more planes.
 * @return the picture.
 */
template <class T, class... Rest>
BasicPicture<std::conditional_t<std::is_const_v<T>, const void, void>> planar(std::uint32_t cs, const Plane<T> &first,
                                                                              const Rest &...rest) noexcept {
    static_assert(sizeof...(Rest) <= 3, "a picture has at most four planes");
    return {cs, first.width(), first.height(), {first.data(), rest.data()...}, {first.stride(), rest.stride()...}};
}

// ---------------------------------------------------------------------------------------------------------------------
// Reference-counted buffers

/**
 * Owns one reference to a counted record: a copy adds a reference, a move does not, the destructor releases.
 * Handles may be copied and destroyed in several threads at once, each thread its own handle.
 */
template <class Record>
class Ref {
public:
    /** The empty handle. */
    constexpr Ref() noexcept = default;

    /**
     * Takes over a reference that the caller holds, of a C function for instance.
     * @param record  the record, or null for the empty handle.
     */
    explicit Ref(Record *record) noexcept : record_(record) {}

    /**
     * Adds a reference.
     * @param other  the handle to share with.
     */
    Ref(const Ref &other) noexcept : record_(other.record_) {
        if (record_ != nullptr) record_->addref(record_);
    }

    /**
     * Takes the reference over.
     * @param other  left empty.
     */
    Ref(Ref &&other) noexcept : record_(std::exchange(other.record_, nullptr)) {}

    /**
     * Shares with, or takes over from, another handle; what was held is released.
     * @param other  the handle.
     * @return this handle.
     */
    Ref &operator=(Ref other) noexcept {
        std::swap(record_, other.record_);
        return *this;
    }

    ~Ref() {
        if (record_ != nullptr) record_->release(record_);
    }

    /** @return the record, or null. */
    Record *get() const noexcept { return record_; }
    /** @return the record; the handle must not be empty. */
    Record *operator->() const noexcept {
        assert(record_ != nullptr);
        return record_;
    }
    /** @return whether a record is held. */
    explicit operator bool() const noexcept { return record_ != nullptr; }
    /** @return the record's reference count; 0 for the empty handle. */
    std::int32_t count() const noexcept { return record_ != nullptr ? record_->getref(record_) : 0; }
    /** @return the record, whose reference is the caller's from now on; the handle is empty. */
    Record *detach() noexcept { return std::exchange(record_, nullptr); }
    /** Releases what is held. */
    void reset() noexcept { *this = Ref(); }

protected:
    /** The record, or null. */
    Record *record_ = nullptr;
};

/** Four request words of the image buffer, one a plane: horizontal elements and vertical rows. */
struct PlaneWords {
    /** The words, see #QORV_IMGB_WORD. */
    std::uint32_t word[4];

    /**
     * The same request for every plane.
     * @param horizontal  elements, 0 to 65535.
     * @param vertical    rows, 0 to 65535.
     * @return the four words.
     */
    static constexpr PlaneWords all(std::uint32_t horizontal, std::uint32_t vertical) noexcept {
        const std::uint32_t word = horizontal << 16 | vertical;
        return {{word, word, word, word}};
    }
};

/** How an image is laid out: what qorv_imgb_create() takes beside size and colour space. */
struct Layout {
    /** Alignment of widths in elements and heights in rows, powers of two. */
    PlaneWords align = PlaneWords::all(1, 1);
    /** Elements left and right, rows above and below. */
    PlaneWords padding = PlaneWords::all(0, 0);
    /** QORV_IMGB_OPT_*: which margins are cleared. */
    std::uint32_t clear = 0;
    /** Sample-memory allocator, or null for the library's own. */
    qorv_alloc_fn alloc = nullptr;
    /** Its release function. */
    qorv_free_fn free = nullptr;
};

/** The digest of an Md5. */
struct Digest {
    /** Its 16 bytes. */
    std::uint8_t bytes[16];

    /** The digest as text. */
    struct Hex {
        /** 32 hexadecimal digits in lower case and a zero byte. */
        char text[33];
    };

    /** @return the digest as text. */
    Hex hex() const noexcept {
        Hex hex{};
        for (int i = 0; i < 16; i++) {
            hex.text[2 * i] = "0123456789abcdef"[bytes[i] >> 4];
            hex.text[2 * i + 1] = "0123456789abcdef"[bytes[i] & 15];
        }
        return hex;
    }

    /**
     * Compares two digests.
     * @param a  one.
     * @param b  the other.
     * @return whether they are equal.
     */
    friend bool operator==(const Digest &a, const Digest &b) noexcept {
        return std::memcmp(a.bytes, b.bytes, sizeof a.bytes) == 0;
    }
    /**
     * Compares two digests.
     * @param a  one.
     * @param b  the other.
     * @return whether they differ.
     */
    friend bool operator!=(const Digest &a, const Digest &b) noexcept { return !(a == b); }
};

/** A picture buffer, see qorv_imgb_create(). */
class Image : public Ref<QORV_IMGB> {
public:
    /** @cond */
    using Ref::Ref;
    /** @endcond */

    /**
     * Creates a picture; the samples are not cleared.
     * @param width   in pixels.
     * @param height  in rows.
     * @param cs      colour space, 10 to 599.
     * @param layout  alignment, padding, allocator.
     * @return the picture; or why not, as qorv_imgb_create().
     */
    static Created<Image> create(std::int32_t width, std::int32_t height, std::uint32_t cs,
                                 const Layout &layout = {}) noexcept {
        std::int32_t status = QORV_ERR;
        QORV_IMGB *const record = qorv_imgb_create(width, height, cs, layout.clear, layout.align.word,
                                                   layout.padding.word, layout.alloc, layout.free, &status);
        return {Image(record), Status{status}};
    }

    /**
     * Lays the picture out again in its own block, see qorv_imgb_rebirth(). No one else may use it meanwhile.
     * @param width   new width in pixels.
     * @param height  new height in rows.
     * @param cs      new colour space.
     * @param layout  new alignment, padding and clearing; its allocator is not looked at.
     * @return Status::ok; or Status::out_of_memory, Status::unsupported_colour_space or, for an empty handle,
     *         Status::invalid_argument, with nothing changed.
     */
    Status rebirth(std::int32_t width, std::int32_t height, std::uint32_t cs, const Layout &layout = {}) noexcept {
        return Status{
            qorv_imgb_rebirth(record_, width, height, cs, layout.clear, layout.align.word, layout.padding.word)};
    }

    /**
     * Fills the padding round every plane, see qorv_imgb_expand().
     * @param padding  as given at creation.
     * @return Status::ok, or Status::unsupported_colour_space.
     */
    Status expand(const PlaneWords &padding) noexcept {
        assert(record_ != nullptr);
        return Status{qorv_imgb_expand(record_, padding.word)};
    }

    /** @return width in pixels. */
    std::int32_t width() const noexcept { return (*this)->w; }
    /** @return height in rows. */
    std::int32_t height() const noexcept { return (*this)->h; }
    /** @return colour space. */
    std::uint32_t cs() const noexcept { return (*this)->cs; }

    /** @return number of planes; 1 for packed RGB. */
    std::uint32_t plane_count() const noexcept { return Geometry(*record_).count; }

    /**
     * The visible samples of a plane.
     * @param i  0 to plane_count() - 1.
     * @return its rows as samples of type T; of packed pixels and interleaved chroma every sample counts.
     */
    template <class T = std::uint8_t>
    Plane<T> plane(std::uint32_t i) const noexcept {
        assert(record_ != nullptr);
        const Geometry geometry(*record_);
        assert(i < geometry.count);
        return {static_cast<T *>(record_->a[i]),
                static_cast<std::int32_t>(geometry.widths[i] * (geometry.units[i] >> 16) / sizeof(T)),
                static_cast<std::int32_t>(geometry.heights[i]), record_->s[i]};
    }

    /** @return the picture as converters take it. */
    Picture view() const noexcept {
        assert(record_ != nullptr);
        if (bytes_per_pixel(cs()) != 0) return packed(cs(), plane<>(0).data(), width(), height(), record_->s[0]);
        Picture picture{cs(), width(), height(), {}, {}};
        for (std::uint32_t i = 0; i < plane_count(); i++) {
            picture.channel[i] = record_->a[i];
            picture.stride[i] = record_->s[i];
        }
        return picture;
    }

    /**
     * The digest of the picture, see qorv_md5_imgb() for what it covers.
     * @param digest  receives it on success.
     * @return Status::ok, or Status::unsupported_colour_space.
     */
    Status md5(Digest &digest) const noexcept {
        assert(record_ != nullptr);
        return Status{qorv_md5_imgb(record_, digest.bytes)};
    }

private:
    struct Geometry {
        explicit Geometry(const QORV_IMGB &image) noexcept {
            widths[0] = static_cast<std::uint32_t>(image.w);
            heights[0] = static_cast<std::uint32_t>(image.h);
            if (bytes_per_pixel(image.cs) != 0) {
                count = 1;
                units[0] = static_cast<std::uint32_t>(bytes_per_pixel(image.cs)) << 16;
            } else {
                qorv_imgb_get_dimension(image.cs, widths, heights, &count, units);
            }
        }

        std::uint32_t widths[4] = {}, heights[4] = {}, units[4] = {}, count = 0;
    };
};

/** Audio samples, see qorv_audb_create(). */
class AudioBuffer : public Ref<QORV_AUDB> {
public:
    /** @cond */
    using Ref::Ref;
    /** @endcond */

    /**
     * Creates a buffer.
     * @param samples   samples per channel.
     * @param channels  1 to 8.
     * @param bits      bits per sample.
     * @param layout    1 to 99: all channels share one buffer; else one a channel.
     * @param alloc     allocator, or null for the library's own.
     * @param free      its release function.
     * @return the buffer; or Status::out_of_memory or Status::alloc_failed.
     */
    static Created<AudioBuffer> create(std::uint32_t samples, std::int32_t channels, std::uint32_t bits,
                                       std::int32_t layout, qorv_alloc_fn alloc = nullptr,
                                       qorv_free_fn free = nullptr) noexcept {
        std::int32_t status = QORV_ERR;
        QORV_AUDB *const record = qorv_audb_create(samples, channels, bits, 0, layout, 0, alloc, free, &status);
        return {AudioBuffer(record), Status{status}};
    }

    /**
     * The bytes of one buffer.
     * @param i  0, or the channel where each has a buffer; at most 7.
     * @return the bytes, none where there is no buffer.
     */
    Span<std::uint8_t> buffer(std::uint32_t i) const noexcept {
        assert(record_ != nullptr && i < 8);
        return {static_cast<std::uint8_t *>(record_->buf[i]), record_->size[i]};
    }
};

/** Compressed bytes, see qorv_bitb_create(). */
class BitstreamBuffer : public Ref<QORV_BITB> {
public:
    /** @cond */
    using Ref::Ref;
    /** @endcond */

    /**
     * Creates a buffer, whose capacity the record does not keep.
     * @param capacity  bytes.
     * @param type      stored only.
     * @param alloc     allocator, or null for the system's.
     * @param free      its release function.
     * @return the buffer; or Status::out_of_memory or Status::bitb_alloc_failed.
     */
    static Created<BitstreamBuffer> create(std::uint32_t capacity, std::uint32_t type = 0,
                                           qorv_alloc_fn alloc = nullptr, qorv_free_fn free = nullptr) noexcept {
        std::int32_t status = QORV_ERR;
        QORV_BITB *const record = qorv_bitb_create(capacity, type, 0, alloc, free, &status);
        return {BitstreamBuffer(record), Status{status}};
    }

    /** @return the first byte. */
    std::uint8_t *data() const noexcept { return static_cast<std::uint8_t *>((*this)->buf); }
};

/** A bare counted record, see qorv_mfal_create(): a count and 80 bytes of the user's. */
class BareBuffer : public Ref<QORV_MFAL> {
public:
    /** @cond */
    using Ref::Ref;
    /** @endcond */

    /** @return the record; or an empty handle and Status::out_of_memory. */
    static Created<BareBuffer> create() noexcept {
        std::int32_t status = QORV_ERR;
        QORV_MFAL *const record = qorv_mfal_create(0, &status);
        return {BareBuffer(record), Status{status}};
    }
};

/** Owned bytes, see #QORV_VDATA. Moves; copies are made by set(), which can fail. */
class Bytes {
public:
    /** No bytes. */
    Bytes() noexcept = default;
    /** @param other  left empty. */
    Bytes(Bytes &&other) noexcept : data_(std::exchange(other.data_, QORV_VDATA{})) {}
    /** @param other  the other bytes. @return these, which now hold them. */
    Bytes &operator=(Bytes &&other) noexcept {
        std::swap(data_, other.data_);
        return *this;
    }
    ~Bytes() { qorv_vdata_free(&data_); }

    /**
     * Replaces the bytes by a copy of others, two zero bytes behind it.
     * @param bytes  at least one, none of those held now.
     * @param type   kept beside them.
     * @return Status::ok; or Status::invalid_argument or Status::out_of_memory, with the old bytes kept.
     */
    Status set(Span<const std::uint8_t> bytes, std::uint32_t type = 0) noexcept {
        Bytes fresh;
        const Status status{qorv_vdata_set(&fresh.data_, bytes.data(), static_cast<std::int32_t>(bytes.size()), type)};
        if (status == Status::ok) *this = std::move(fresh);
        return status;
    }

    /** @return the bytes. */
    Span<std::uint8_t> bytes() const noexcept {
        return {static_cast<std::uint8_t *>(data_.data), static_cast<std::size_t>(data_.size)};
    }
    /** @return what set() was told. */
    std::uint32_t type() const noexcept { return data_.type; }

private:
    QORV_VDATA data_{};
};

// ---------------------------------------------------------------------------------------------------------------------
// Converters and resizer

/** A colour converter. */
class Converter {
public:
    /** No converter. */
    constexpr Converter() noexcept = default;

    /**
     * A converter by name.
     * @param function  one of the qorv_csc_* functions.
     */
    explicit constexpr Converter(qorv_csc_fn function) noexcept : function_(function) {}

    /**
     * The converter between two pictures, by their colour spaces and sizes; sizes that differ are scaled.
     * @param from  source; only colour space and size are looked at.
     * @param to    destination, likewise.
     * @return the converter, or Status::unsupported_colour_space.
     */
    static Created<Converter> find(const ConstPicture &from, const ConstPicture &to) noexcept {
        std::int32_t status = QORV_OK;
        const qorv_csc_fn function =
            qorv_imgp_get_fn_csc(from.width, from.height, static_cast<std::int32_t>(from.cs), to.width, to.height,
                                 static_cast<std::int32_t>(to.cs), &status);
        return {Converter(function), Status{status}};
    }

    /** @return whether there is one. */
    explicit operator bool() const noexcept { return function_ != nullptr; }

    /**
     * Converts.
     * @param from  source, in the converter's layout.
     * @param to    destination, in the converter's layout.
     */
    void operator()(const ConstPicture &from, const Picture &to) const noexcept {
        assert(function_ != nullptr);
        std::int32_t from_strides[4], to_strides[4];
        for (int i = 0; i < 4; i++) {
            from_strides[i] = from.stride[i] / bytes_of_stride_unit(from.cs);
            to_strides[i] = to.stride[i] / bytes_of_stride_unit(to.cs);
        }
        function_(from.channel, from.width, from.height, from_strides, 0, to.channel, to.width, to.height, to_strides,
                  static_cast<std::int32_t>(to.cs));
    }

private:
    // The 10-bit 4:4:4 converters count strides in samples.
    static constexpr std::int32_t bytes_of_stride_unit(std::uint32_t cs) noexcept {
        return cs == QORV_CS_P410 || cs == QORV_CS_R10G10B10 ? 2 : 1;
    }

    qorv_csc_fn function_ = nullptr;
};

/**
 * Finds a converter and converts.
 * @param from  source.
 * @param to    destination; scaled to where its size differs.
 * @return Status::ok; or Status::unsupported_colour_space, with nothing written.
 */
inline Status convert(const ConstPicture &from, const Picture &to) noexcept {
    const auto [converter, status] = Converter::find(from, to);
    if (converter) converter(from, to);
    return status;
}

/** Pixel formats of the resizer. */
enum class ResizeFormat : std::int32_t {
    /** One 8-bit sample. */
    gray = 20,
    /** Three 8-bit samples. */
    rgb = 21,
    /** Three 8-bit samples to one 5-6-5 word. */
    rgb_to_565 = 23,
    /** One 5-6-5 word. */
    rgb565 = 25,
    /** Four 8-bit samples. */
    rgba = 29
};

/** A bilinear resizer, see qorv_irsz_create(). Its destination is fixed at creation. Moves, is not copied. */
class Resizer {
public:
    /** The empty resizer. */
    Resizer() noexcept = default;

    /**
     * A resizer by parameters.
     * @param param  as qorv_irsz_create(): mode 10 for whole pictures, 11 for bands.
     * @return the resizer; or Status::irsz_mode, Status::irsz_no_memory or Status::unsupported_format.
     */
    static Created<Resizer> create(const QORV_IRSZ_PARAM &param) noexcept {
        std::int32_t status = QORV_ERR;
        QORV_IRSZ *const record = qorv_irsz_create(&param, &status);
        return {Resizer(record), Status{status}};
    }

    /**
     * Takes the resizer over.
     * @param other  left empty.
     */
    Resizer(Resizer &&other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
    /**
     * Takes a resizer over; what was held is deleted.
     * @param other  the other resizer.
     * @return this one.
     */
    Resizer &operator=(Resizer &&other) noexcept {
        std::swap(record_, other.record_);
        return *this;
    }
    ~Resizer() {
        if (record_ != nullptr) qorv_irsz_delete(record_);
    }

    /** @return whether there is one. */
    explicit operator bool() const noexcept { return record_ != nullptr; }
    /** @return the record. */
    QORV_IRSZ *get() const noexcept { return record_; }

    /**
     * Resizes a picture, or takes its next band.
     * @param source     first row of the picture or band.
     * @param first_row  band mode: the band's first row in the picture.
     * @param rows       band mode: rows in the band.
     * @return what qorv_irsz() returns.
     */
    std::int32_t operator()(const std::uint8_t *source, std::uint32_t first_row = 0, std::uint32_t rows = 0) noexcept {
        assert(record_ != nullptr);
        return qorv_irsz(record_, source, first_row, rows);
    }

private:
    explicit Resizer(QORV_IRSZ *record) noexcept : record_(record) {}

    QORV_IRSZ *record_ = nullptr;
};

// ---------------------------------------------------------------------------------------------------------------------
// Bits and digests

/**
 * A bit reader: a QORV_BSR with members. A reader with a refill of its own derives from this class, passes the refill
 * to the constructor, and casts the refill's QORV_BSR pointer to itself. Not copied: a refill may hold state.
 */
class BitReader : public QORV_BSR {
public:
    /**
     * A reader at the beginning of a run of bytes.
     * @param bytes   the bytes, at most 2^31 - 1, which must outlive the reader.
     * @param refill  the refill, or null for the default.
     */
    explicit BitReader(Span<const std::uint8_t> bytes, QORV_BSR_FN_FLUSH refill = nullptr) noexcept : QORV_BSR() {
        qorv_bsr_init(this, bytes.data(), static_cast<std::int32_t>(bytes.size()), refill);
    }
    BitReader(const BitReader &) = delete;
    BitReader &operator=(const BitReader &) = delete;

    /** @return bits not yet read, as long as the refill passes bytes as they are; negative in a debt. */
    std::int64_t bits_left() const noexcept { return leftbits + 8 * (std::int64_t{end - cur} + 1); }

    /** qorv_bsr_read(). @param n  bits, 1 to 32. @return the field; 0xFFFFFFFF when there is no more data. */
    std::uint32_t read(std::int32_t n) noexcept { return qorv_bsr_read(this, n); }
    /** qorv_bsr_read1(). @return 0 or 1; 0xFFFFFFFF when there is no more data. */
    std::uint32_t read1() noexcept { return qorv_bsr_read1(this); }
    /** qorv_bsr_peek(). @param n  bits, 1 to 32. @return the bits, those beyond the data 0. */
    std::uint32_t peek(std::int32_t n) noexcept { return qorv_bsr_peek(this, n); }
    /** qorv_bsr_skip(). @param n  bits, 1 to 32. */
    void skip(std::int32_t n) noexcept { qorv_bsr_skip(this, n); }
    /** qorv_bsr_skip_align8(). */
    void skip_align8() noexcept { qorv_bsr_skip_align8(this); }
    /** qorv_bsr_read_ue(). @return 0 to 65534; 0xFFFFFFFE when the data ends inside the code. */
    std::uint32_t read_ue() noexcept { return qorv_bsr_read_ue(this); }
    /** qorv_bsr_read_se(). @return -32767 to 32767. */
    std::int32_t read_se() noexcept { return qorv_bsr_read_se(this); }
    /** qorv_bsr_read_te(). @param max  largest value. @return the value. */
    std::uint32_t read_te(std::int32_t max) noexcept { return qorv_bsr_read_te(this, max); }
    /** qorv_bsr_read_un(). @return the number of ones. */
    std::uint32_t read_un() noexcept { return qorv_bsr_read_un(this); }
    /** qorv_bsr_read_tu(). @param max  largest value. @return the number of ones. */
    std::uint32_t read_tu(std::int32_t max) noexcept { return qorv_bsr_read_tu(this, max); }
};

/** A bit writer: a QORV_BSW with members. */
class BitWriter : public QORV_BSW {
public:
    /**
     * A writer at the beginning of a buffer.
     * @param buffer  one byte more than will be written, at most 2^31 - 1; must outlive the writer.
     * @param flush   the flush, or null for the default.
     */
    explicit BitWriter(Span<std::uint8_t> buffer, QORV_BSW_FN_FLUSH flush = nullptr) noexcept : QORV_BSW() {
        qorv_bsw_init(this, buffer.data(), static_cast<std::int32_t>(buffer.size()), flush);
    }
    BitWriter(const BitWriter &) = delete;
    BitWriter &operator=(const BitWriter &) = delete;

    /** qorv_bsw_write(). @param value  the field. @param n  bits, 1 to 32. @return Status::ok or Status::error. */
    Status write(std::uint32_t value, std::int32_t n) noexcept { return Status{qorv_bsw_write(this, value, n)}; }
    /** qorv_bsw_write1(). @param bit  the bit. @return Status::ok or Status::error. */
    Status write1(std::uint32_t bit) noexcept { return Status{qorv_bsw_write1(this, bit)}; }
    /** qorv_bsw_write_ue(). @param value  0 to 65534. */
    void write_ue(std::uint32_t value) noexcept { qorv_bsw_write_ue(this, value); }
    /** qorv_bsw_write_se(). @param value  -32767 to 32767. */
    void write_se(std::int32_t value) noexcept { qorv_bsw_write_se(this, value); }
    /** qorv_bsw_write_te(). @param value  the value. @param max  largest value. */
    void write_te(std::uint32_t value, std::int32_t max) noexcept { qorv_bsw_write_te(this, value, max); }
    /** qorv_bsw_sink(): stores the pending bits. @return Status::ok or Status::error. */
    Status sink() noexcept { return Status{qorv_bsw_sink(this)}; }
    /** @return the bytes stored so far; all of them after sink(). */
    Span<std::uint8_t> written() const noexcept { return {beg, static_cast<std::size_t>(cur - beg)}; }
};

/** An MD5 digest being computed, see qorv_md5_init(). */
class Md5 {
public:
    /** Begins a digest. */
    Md5() noexcept { qorv_md5_init(&md5_); }

    /**
     * Adds bytes.
     * @param data   first byte; may be null when bytes is 0.
     * @param bytes  any number.
     * @return this.
     */
    Md5 &update(const void *data, std::size_t bytes) noexcept {
        constexpr std::size_t kMost = std::size_t{1} << 31;
        const unsigned char *at = static_cast<const unsigned char *>(data);
        for (; bytes > kMost; bytes -= kMost, at += kMost) {
            qorv_md5_update(&md5_, at, static_cast<std::uint32_t>(kMost));
        }
        qorv_md5_update(&md5_, at, static_cast<std::uint32_t>(bytes));
        return *this;
    }

    /**
     * Adds the visible samples of a plane, row by row; those of 16 bits low byte first.
     * @param plane  samples of 8 or 16 bits.
     * @return this.
     */
    template <class T>
    Md5 &update(const Plane<T> &plane) noexcept {
        static_assert(sizeof(T) <= 2, "samples of 8 or 16 bits");
        for (std::int32_t y = 0; y < plane.height(); y++) add(plane.row(y));
        return *this;
    }

    /** Ends the message and begins another one. @return the digest. */
    Digest finish() noexcept {
        Digest digest;
        qorv_md5_finish(&md5_, digest.bytes);
        qorv_md5_init(&md5_);
        return digest;
    }

private:
    template <class T>
    void add(Span<T> row) noexcept {
        if constexpr (sizeof(T) == 1) {
            update(row.data(), row.size());
        } else {
            constexpr std::size_t kMost = 256;  // samples of one call
            for (std::size_t i = 0; i < row.size(); i += kMost) {
                const std::size_t n = row.size() - i < kMost ? row.size() - i : kMost;
                qorv_md5_update_16(&md5_, reinterpret_cast<const std::uint16_t *>(row.data() + i),
                                   static_cast<std::uint32_t>(n));
            }
        }
    }

    QORV_MD5 md5_{};
};

// ---------------------------------------------------------------------------------------------------------------------
// Containers and threads

/** A linked list of values, see qorv_list_create(). Moves, is not copied. */
template <class T>
class List {
    static_assert(std::is_trivially_copyable_v<T>, "items are copied as bytes");
    static_assert(alignof(T) <= 2 * sizeof(void *), "items follow two pointers");

public:
    /** Walks the items from front to back. */
    class Iterator {
    public:
        /** @param node  an item's node, or the back sentinel. */
        explicit Iterator(QORV_LIST_NODE *node) noexcept : node_(node) {}
        /** @return the item. */
        T &operator*() const noexcept { return *reinterpret_cast<T *>(node_ + 1); }
        /** @return the item. */
        T *operator->() const noexcept { return &**this; }
        /** Goes to the next item. @return this. */
        Iterator &operator++() noexcept {
            node_ = node_->next;
            return *this;
        }
        /** @param other  another place in the list. @return whether they are one. */
        bool operator==(const Iterator &other) const noexcept { return node_ == other.node_; }
        /** @param other  another place in the list. @return whether they differ. */
        bool operator!=(const Iterator &other) const noexcept { return node_ != other.node_; }
        /** @return the item's id, for List::remove(). */
        QORV_LIST_NODE *id() const noexcept { return node_; }

    private:
        QORV_LIST_NODE *node_;
    };

    /** @return an empty list; without memory an empty handle and Status::out_of_memory. */
    static Created<List> create() noexcept {
        QORV_LIST *const list = qorv_list_create(static_cast<std::int32_t>(sizeof(T)), nullptr);
        return {List(list), list != nullptr ? Status::ok : Status::out_of_memory};
    }

    /** The empty handle. */
    List() noexcept = default;
    /** @param other  left without a list. */
    List(List &&other) noexcept : list_(std::exchange(other.list_, nullptr)) {}
    /** @param other  the other list. @return this one, which now holds it. */
    List &operator=(List &&other) noexcept {
        std::swap(list_, other.list_);
        return *this;
    }
    ~List() { qorv_list_delete(list_); }

    /** @return whether there is a list. */
    explicit operator bool() const noexcept { return list_ != nullptr; }
    /** @return the record. */
    QORV_LIST *get() const noexcept { return list_; }
    /** @return the number of items. */
    std::int32_t size() const noexcept { return qorv_list_get_cnt(list_); }
    /** @param item  to be appended. @return the copy, or null without memory. */
    T *add(const T &item) noexcept { return static_cast<T *>(qorv_list_add(list_, &item)); }
    /** @param item  to be prepended. @return the copy, or null without memory. */
    T *add_first(const T &item) noexcept { return static_cast<T *>(qorv_list_add_first(list_, &item)); }
    /** @return the first item, or null. */
    T *first() const noexcept { return static_cast<T *>(qorv_list_get_first(list_)); }
    /** @return the last item, or null. */
    T *last() const noexcept { return static_cast<T *>(qorv_list_get_last(list_)); }
    /** Removes the first item, if any. */
    void remove_first() noexcept { qorv_list_rem_first(list_); }
    /** Removes the last item, if any. */
    void remove_last() noexcept { qorv_list_rem_last(list_); }
    /** @param at  an item of this list. @return the place after the one that was removed. */
    Iterator remove(Iterator at) noexcept {
        Iterator next = at;
        ++next;
        qorv_list_rem_atid(list_, at.id());
        return next;
    }
    /** Removes all items. */
    void clear() noexcept { qorv_list_rem_all(list_); }
    /** @return the first item's place. */
    Iterator begin() const noexcept { return Iterator(list_->head->next); }
    /** @return the place after the last item. */
    Iterator end() const noexcept { return Iterator(list_->tail); }

private:
    explicit List(QORV_LIST *list) noexcept : list_(list) {}

    QORV_LIST *list_ = nullptr;
};

/** A pool of equal buffers that circulate first in, first out, see qorv_rlist_create(). Moves, is not copied. */
template <class T>
class Pool {
    static_assert(std::is_trivial_v<T>, "buffers are bytes that nobody constructs");
    static_assert(alignof(T) <= 2 * sizeof(void *), "buffers follow two pointers");

public:
    /** @param count  buffers. @return a pool of free ones; without memory an empty handle and Status::out_of_memory. */
    static Created<Pool> create(std::int32_t count) noexcept {
        QORV_RLIST *const pool = qorv_rlist_create(static_cast<std::int32_t>(sizeof(T)), count);
        return {Pool(pool), pool != nullptr ? Status::ok : Status::out_of_memory};
    }

    /** The empty handle. */
    Pool() noexcept = default;
    /** @param other  left without a pool. */
    Pool(Pool &&other) noexcept : pool_(std::exchange(other.pool_, nullptr)) {}
    /** @param other  the other pool. @return this one, which now holds it. */
    Pool &operator=(Pool &&other) noexcept {
        std::swap(pool_, other.pool_);
        return *this;
    }
    ~Pool() {
        if (pool_ != nullptr) qorv_rlist_delete(pool_);
    }

    /** @return whether there is a pool. */
    explicit operator bool() const noexcept { return pool_ != nullptr; }
    /** @return the record. */
    QORV_RLIST *get() const noexcept { return pool_; }
    /** Takes a free buffer, which becomes the newest used one. @return the buffer, or null when all are used. */
    T *take() noexcept { return static_cast<T *>(qorv_rlist_get_buf(pool_)); }
    /** @return the oldest used buffer, or null. */
    T *oldest() const noexcept { return static_cast<T *>(qorv_rlist_get_data(pool_)); }
    /** Gives the oldest used buffer back, if any. */
    void give_back() noexcept { qorv_rlist_rem_data(pool_); }
    /** @return used buffers. */
    std::int32_t used() const noexcept { return qorv_rlist_get_used_cnt(pool_); }
    /** @return free buffers. */
    std::int32_t available() const noexcept { return qorv_rlist_get_free_cnt(pool_); }

private:
    explicit Pool(QORV_RLIST *pool) noexcept : pool_(pool) {}

    QORV_RLIST *pool_ = nullptr;
};

/** A ring of bytes, see qorv_rbuf_create(). Moves, is not copied. */
class Ring {
public:
    /** @param size  bytes of storage; holds one less.
     *  @return the ring; or an empty handle and Status::out_of_memory. */
    static Created<Ring> create(std::int32_t size) noexcept {
        QORV_RBUF *const ring = qorv_rbuf_create(size);
        return {Ring(ring), ring != nullptr ? Status::ok : Status::out_of_memory};
    }

    /** The empty handle. */
    Ring() noexcept = default;
    /** @param other  left without a ring. */
    Ring(Ring &&other) noexcept : ring_(std::exchange(other.ring_, nullptr)) {}
    /** @param other  the other ring. @return this one, which now holds it. */
    Ring &operator=(Ring &&other) noexcept {
        std::swap(ring_, other.ring_);
        return *this;
    }
    ~Ring() { qorv_rbuf_delete(ring_); }

    /** @return whether there is a ring. */
    explicit operator bool() const noexcept { return ring_ != nullptr; }
    /** @return the record. */
    QORV_RBUF *get() const noexcept { return ring_; }
    /** @return whether nothing is in it. */
    bool empty() const noexcept { return qorv_rbuf_is_empty(ring_) != 0; }
    /** @param bytes  stored all or not at all. @return whether they were. */
    bool put(Span<const std::uint8_t> bytes) noexcept {
        const std::int32_t n = static_cast<std::int32_t>(bytes.size());
        return qorv_rbuf_put(ring_, bytes.data(), n) == n;
    }
    /** @param room  receives what there is, up to its size. @return bytes taken. */
    std::int32_t take(Span<std::uint8_t> room) noexcept {
        return qorv_rbuf_get(ring_, room.data(), static_cast<std::int32_t>(room.size()));
    }
    /**
     * Takes one line, see qorv_rbuf_get_one_line().
     * @param room  receives it, its ending made CR LF, and a zero byte: at least the ring's size and 2 bytes.
     * @return its length with the ending; 0 when there is no whole line.
     */
    std::int32_t take_line(Span<char> room) noexcept {
        assert(room.size() >= static_cast<std::size_t>(ring_->size) + 2);
        return qorv_rbuf_get_one_line(ring_, room.data(), static_cast<std::int32_t>(room.size()) - 2);
    }

private:
    explicit Ring(QORV_RBUF *ring) noexcept : ring_(ring) {}

    QORV_RBUF *ring_ = nullptr;
};

/**
 * Waits until a shared word holds a value or -1, see qorv_sync_wait().
 * @param word   the word, which other threads change by wake().
 * @param value  the value.
 * @return true when the word holds the value; false when it holds -1: waiting is abandoned.
 */
inline bool wait(const std::int32_t &word, std::int32_t value) noexcept {
    return qorv_sync_wait(&word, value) == 0;
}

/**
 * Publishes a value in a word and wakes whoever waits on it, see qorv_sync_wake().
 * @param word   the word.
 * @param value  the value; -1 releases every waiter.
 */
inline void wake(std::int32_t &word, std::int32_t value) noexcept {
    qorv_sync_wake(&word, value);
}

/** @} */

}  // namespace qorv

#endif /* QORV_SKIA_HPP */
