// The bit reader against one that is inlined into its caller and holds 64 bits: what a codec would write for itself.
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
std::shared_ptr<Input> random_codes() {
    auto input = std::make_shared<Input>();
    input->data.resize(kCodes * 4 + 8);
    QORV_BSW writer;
    qorv_bsw_init(&writer, input->data.data(), static_cast<int32_t>(input->data.size()), nullptr);
    const std::vector<uint8_t> random = bench::noise(2 * kCodes, 3);
    for (size_t i = 0; i < random.size(); i += 2) {
        const int log2 = std::countl_zero(static_cast<uint8_t>(random[i] | 1));
        qorv_bsw_write_ue(&writer, (1u << log2) - 1 + (random[i + 1] & ((1u << log2) - 1)));
    }
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
}

const bench::Registration registration{add_cases};

}  // namespace
