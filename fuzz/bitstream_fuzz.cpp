// Any sequence of reads stays inside the buffer and keeps the record's promises; what is written is read back.
#include "input.h"
#include "qorv_skia.h"

using fuzz::Input;
using fuzz::require;

namespace {

// A caller's refill: bytes one at a time, and now and then none.
int32_t grudging_refill(QORV_BSR *bsr, int32_t count) {
    return qorv_bsr_flush(bsr, (bsr->code & 1) != 0 ? 1 : count > 2 ? 2 : count);
}

void read_one(QORV_BSR &bsr, Input &input) {
    uint32_t count;
    switch (input.byte() % 12) {
        case 0:
            qorv_bsr_skip(&bsr, input.between(1, 32));
            break;
        case 1: {
            const int32_t skipped = input.between(1, 32);
            qorv_bsr_skip_peek(&bsr, skipped, input.between(1, 32));
            break;
        }
        case 2:
            qorv_bsr_peek(&bsr, input.between(1, 32));
            break;
        case 3:
            qorv_bsr_read(&bsr, input.between(1, 32));
            break;
        case 4:
            qorv_bsr_read1(&bsr);
            break;
        case 5:
            qorv_bsr_skip_align8(&bsr);
            break;
        case 6:
            qorv_bsr_read_align8(&bsr, &count);
            break;
        case 7:
            qorv_bsr_read_ue(&bsr);
            break;
        case 8:
            qorv_bsr_read_se(&bsr);
            break;
        case 9:
            qorv_bsr_read_te(&bsr, input.between(-1, 3));
            break;
        case 10:
            qorv_bsr_read_un(&bsr);
            break;
        default:
            qorv_bsr_read_tu(&bsr, input.between(1, 40));
            break;
    }
}

void read_all(Input &input) {
    const std::vector<uint8_t> data = input.bytes(static_cast<size_t>(input.between(1, 256)));
    QORV_BSR bsr;
    qorv_bsr_init(&bsr, data.data(), static_cast<int32_t>(data.size()),
                  (input.byte() & 1) != 0 ? grudging_refill : nullptr);
    while (!input.empty()) {
        read_one(bsr, input);
        require(bsr.cur >= bsr.beg && bsr.cur - 1 <= bsr.end, "the reader stays inside its buffer");
    }
}

struct Field {
    enum Kind { kBits, kBit, kUe, kSe } kind;
    uint32_t value;
    int32_t bits;

    explicit Field(Input &input) : kind(static_cast<Kind>(input.byte() % 4)), value(0), bits(input.between(1, 31)) {
        value = kind == kBits  ? input.word() & ((1u << bits) - 1)
                : kind == kBit ? input.word() & 1
                               : input.word() % 32767;
    }
    int32_t signed_value() const { return static_cast<int32_t>(value) - 16383; }
};

void write(QORV_BSW &bsw, const Field &f) {
    switch (f.kind) {
        case Field::kBits:
            return require(qorv_bsw_write(&bsw, f.value, f.bits) == 0, "there is room");
        case Field::kBit:
            return require(qorv_bsw_write1(&bsw, f.value) == 0, "there is room");
        case Field::kUe:
            return qorv_bsw_write_ue(&bsw, f.value);
        case Field::kSe:
            return qorv_bsw_write_se(&bsw, f.signed_value());
    }
}

void require_read(QORV_BSR &bsr, const Field &f) {
    switch (f.kind) {
        case Field::kBits:
            return require(qorv_bsr_read(&bsr, f.bits) == f.value, "a field is read as written");
        case Field::kBit:
            return require(qorv_bsr_read1(&bsr) == f.value, "a bit is read as written");
        case Field::kUe:
            return require(qorv_bsr_read_ue(&bsr) == f.value, "ue is read as written");
        case Field::kSe:
            return require(qorv_bsr_read_se(&bsr) == f.signed_value(), "se is read as written");
    }
}

void write_and_read_back(Input &input) {
    std::vector<Field> fields;
    while (fields.size() < 64 && !input.empty()) fields.emplace_back(input);
    std::vector<uint8_t> out(64 * 4 + 8);
    QORV_BSW bsw;
    qorv_bsw_init(&bsw, out.data(), static_cast<int32_t>(out.size()), nullptr);
    for (const Field &f : fields) write(bsw, f);
    require(qorv_bsw_sink(&bsw) == 0, "the last bytes fit");
    QORV_BSR bsr;
    qorv_bsr_init(&bsr, bsw.beg, static_cast<int32_t>(bsw.cur - bsw.beg), nullptr);
    for (const Field &f : fields) require_read(bsr, f);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input input(data, size);
    if ((input.byte() & 1) != 0) {
        read_all(input);
    } else {
        write_and_read_back(input);
    }
    return 0;
}
