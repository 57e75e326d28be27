// The bit reader and the bit writer against ones that are inlined into their caller and hold 64 bits: what a codec
// would write for itself.
#include <bit>
#include <cstring>
#include <memory>

#include "bench/compare.h"
#include "qorv_skia.h"

namespace {

// Enough that a processor does not learn the sequence of lengths.
constexpr int kCodes = 1 << 16;

class InlineReader {
public:
    InlineReader(const uint8_t *data, size_t size) : next_(data), end_(data + size) {}

    uint32_t read(int n) {
        if (bits_ < n) fill();
        return take(n);
    }
    uint32_t ue() {
        if (bits_ < 32) fill();
        const int zeros = std::countl_zero(cache_ | 1);
        return take(2 * zeros + 1) - 1;
    }
    int32_t se() {
        const uint32_t value = ue() + 1;
        const int32_t magnitude = static_cast<int32_t>(value >> 1);
        return (value & 1) != 0 ? -magnitude : magnitude;
    }

private:
    uint32_t take(int n) {
        const uint32_t value = static_cast<uint32_t>(cache_ >> (64 - n));
        cache_ <<= n;
        bits_ -= n;
        return value;
    }
    // Room for a 32-bit field: the cache holds fewer than 32 bits here.
    void fill() {
        if (end_ - next_ >= 4) {
            uint32_t word;
            std::memcpy(&word, next_, sizeof word);
            cache_ |= uint64_t{__builtin_bswap32(word)} << (32 - bits_);
            next_ += 4;
            bits_ += 32;
            return;
        }
        for (; next_ < end_ && bits_ <= 56; bits_ += 8) cache_ |= uint64_t{*next_++} << (56 - bits_);
    }

    uint64_t cache_ = 0;
    int bits_ = 0;
    const uint8_t *next_;
    const uint8_t *end_;
};

class InlineWriter {
public:
    InlineWriter(uint8_t *data, size_t size) : next_(data), end_(data + size) {}

    void write(uint32_t value, int n) {
        cache_ = cache_ << n | value;
        bits_ += n;
        if (bits_ < 32 || end_ - next_ < 4) return;
        bits_ -= 32;
        const uint32_t word = __builtin_bswap32(static_cast<uint32_t>(cache_ >> bits_));
        std::memcpy(next_, &word, sizeof word);
        next_ += 4;
    }
    void ue(uint32_t value) { write(value + 1, 2 * static_cast<int>(std::bit_width(value + 1)) - 1); }

private:
    uint64_t cache_ = 0;
    int bits_ = 0;
    uint8_t *next_;
    const uint8_t *end_;
};

struct Input {
    std::vector<uint8_t> data;
    std::vector<int32_t> lengths;  // of the fields, for the fixed-length case
};

std::shared_ptr<Input> random_fields(int longest) {
    auto input = std::make_shared<Input>();
    input->data = bench::noise(kCodes * 4);
    const std::vector<uint8_t> random = bench::noise(kCodes, 2);
    for (const uint8_t byte : random) input->lengths.push_back(1 + byte % longest);
    return input;
}

// Code numbers spread as a codec's are: each length half as frequent as the one before.
std::vector<uint32_t> random_numbers() {
    std::vector<uint32_t> numbers;
    const std::vector<uint8_t> random = bench::noise(2 * kCodes, 3);
    for (size_t i = 0; i < random.size(); i += 2) {
        const int log2 = std::countl_zero(static_cast<uint8_t>(random[i] | 1));
        numbers.push_back((1u << log2) - 1 + (random[i + 1] & ((1u << log2) - 1)));
    }
    return numbers;
}

std::shared_ptr<Input> random_codes() {
    auto input = std::make_shared<Input>();
    input->data.resize(kCodes * 4 + 8);
    QORV_BSW writer;
    qorv_bsw_init(&writer, input->data.data(), static_cast<int32_t>(input->data.size()), nullptr);
    for (const uint32_t number : random_numbers()) qorv_bsw_write_ue(&writer, number);
    qorv_bsw_sink(&writer);
    return input;
}

template <class Ours>
void add_ours(const std::string &name, const char *who, const std::shared_ptr<Input> &input, Ours ours) {
    bench::add(name, who, [input, ours] {
        QORV_BSR reader;
        qorv_bsr_init(&reader, input->data.data(), static_cast<int32_t>(input->data.size()), nullptr);
        uint32_t sum = 0;
        for (int i = 0; i < kCodes; i++) sum += ours(reader, *input, i);
        benchmark::DoNotOptimize(sum);
    });
}

template <class Ours, class Peer>
void add_case(const std::string &name, const std::shared_ptr<Input> &input, Ours ours, Peer peer) {
    add_ours(name, "ours", input, ours);
    bench::add(name, "inline64", [input, peer] {
        InlineReader reader(input->data.data(), input->data.size());
        uint32_t sum = 0;
        for (int i = 0; i < kCodes; i++) sum += peer(reader, *input, i);
        benchmark::DoNotOptimize(sum);
    });
}

void add_read(const std::string &name, int longest) {
    const auto length = [](const Input &input, int i) { return input.lengths[static_cast<size_t>(i)]; };
    add_case(
        name, random_fields(longest),
        [length](QORV_BSR &r, const Input &input, int i) { return qorv_bsr_read(&r, length(input, i)); },
        [length](InlineReader &r, const Input &input, int i) { return r.read(length(input, i)); });
}

// The peer is as little as an exported function can do to a reader: it loads and stores the two fields of the cache.
void add_read1() {
    add_ours("bsr/read1", "ours", random_fields(1), [](QORV_BSR &r, const Input &, int) { return qorv_bsr_read1(&r); });
    add_ours("bsr/read1", "call", random_fields(1), [](QORV_BSR &r, const Input &, int) {
        qorv_bsr_skip_align8(&r);
        return 0u;
    });
}

// A field or a code number, and its bits.
struct Item {
    uint32_t value;
    int bits;
};

template <class Ours, class Peer>
void add_writer(const std::string &name, const std::vector<Item> &items, Ours ours, Peer peer) {
    const auto out = std::make_shared<std::vector<uint8_t>>(4 * items.size() + 8);
    bench::add(name, "ours", [out, items, ours] {
        QORV_BSW writer;
        qorv_bsw_init(&writer, out->data(), static_cast<int32_t>(out->size()), nullptr);
        for (const Item &item : items) ours(writer, item);
        benchmark::DoNotOptimize(writer.code);
    });
    bench::add(name, "inline64", [out, items, peer] {
        InlineWriter writer(out->data(), out->size());
        for (const Item &item : items) peer(writer, item);
        benchmark::DoNotOptimize(writer);
    });
}

void add_writers() {
    std::vector<Item> fields, numbers;
    for (const uint8_t byte : bench::noise(kCodes, 4)) {
        const int bits = 1 + byte % 16;
        fields.push_back({(byte * 257u) & ((1u << bits) - 1), bits});
    }
    for (const uint32_t number : random_numbers()) numbers.push_back({number, 0});
    add_writer(
        "bsw/write/1-16", fields, [](QORV_BSW &w, const Item &i) { qorv_bsw_write(&w, i.value, i.bits); },
        [](InlineWriter &w, const Item &i) { w.write(i.value, i.bits); });
    add_writer(
        "bsw/write_ue", numbers, [](QORV_BSW &w, const Item &i) { qorv_bsw_write_ue(&w, i.value); },
        [](InlineWriter &w, const Item &i) { w.ue(i.value); });
}

void add_cases() {
    add_read("bsr/read/1-8", 8);
    add_read("bsr/read/1-16", 16);
    add_read("bsr/read/1-32", 32);
    add_case(
        "bsr/read_ue", random_codes(), [](QORV_BSR &r, const Input &, int) { return qorv_bsr_read_ue(&r); },
        [](InlineReader &r, const Input &, int) { return r.ue(); });
    add_case(
        "bsr/read_se", random_codes(),
        [](QORV_BSR &r, const Input &, int) { return static_cast<uint32_t>(qorv_bsr_read_se(&r)); },
        [](InlineReader &r, const Input &, int) { return static_cast<uint32_t>(r.se()); });
    add_read1();
    add_writers();
}

const bench::Registration registration{add_cases};

}  // namespace
