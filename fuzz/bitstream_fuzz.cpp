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

void write_and_read_back(Input &input) {
    struct Field {
        int kind;
        uint32_t value;
        int32_t bits;
    };
    std::vector<Field> fields;
    for (int i = 0; i < 64 && !input.empty(); i++) {
        const int kind = input.byte() % 4;
        const int32_t bits = input.between(1, 31);
        const uint32_t value = kind == 1   ? input.word() & 1
                               : kind == 0 ? input.word() & ((1u << bits) - 1)
                                           : input.word() % 32767;
        fields.push_back({kind, value, bits});
    }
    std::vector<uint8_t> out(64 * 4 + 8);
    QORV_BSW bsw;
    qorv_bsw_init(&bsw, out.data(), static_cast<int32_t>(out.size()), nullptr);
    for (const Field &f : fields) {
        switch (f.kind) {
            case 0:
                require(qorv_bsw_write(&bsw, f.value, f.bits) == 0, "there is room");
                break;
            case 1:
                require(qorv_bsw_write1(&bsw, f.value) == 0, "there is room");
                break;
            case 2:
                qorv_bsw_write_ue(&bsw, f.value);
                break;
            default:
                qorv_bsw_write_se(&bsw, static_cast<int32_t>(f.value) - 16383);
                break;
        }
    }
    require(qorv_bsw_sink(&bsw) == 0, "the last bytes fit");
    QORV_BSR bsr;
    qorv_bsr_init(&bsr, bsw.beg, static_cast<int32_t>(bsw.cur - bsw.beg), nullptr);
    for (const Field &f : fields) {
        switch (f.kind) {
            case 0:
                require(qorv_bsr_read(&bsr, f.bits) == f.value, "a field is read as written");
                break;
            case 1:
                require(qorv_bsr_read1(&bsr) == f.value, "a bit is read as written");
                break;
            case 2:
                require(qorv_bsr_read_ue(&bsr) == f.value, "ue is read as written");
                break;
            default:
                require(qorv_bsr_read_se(&bsr) == static_cast<int32_t>(f.value) - 16383, "se is read as written");
                break;
        }
    }
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
