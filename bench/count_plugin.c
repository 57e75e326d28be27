// A plugin of qemu-user: counts the instructions that run between the marks of bench/marks.h. Each pair of marks gives
// a line in the file of the argument out=PATH: the count, and after the second kind of beginning every instruction in
// hex. -DQEMU_PLUGIN_API=1 up to qemu 9.0, 3 later. What it takes of qemu's plugin header is declared here: Debian has
// no package of it.
#include <inttypes.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
struct qemu_plugin_insn;
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t, void (*)(qemu_plugin_id_t, struct qemu_plugin_tb *));
void qemu_plugin_register_vcpu_insn_exec_cb(struct qemu_plugin_insn *, void (*)(unsigned, void *), int, void *);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb *);
struct qemu_plugin_insn *qemu_plugin_tb_get_insn(const struct qemu_plugin_tb *, size_t);
size_t qemu_plugin_insn_size(const struct qemu_plugin_insn *);
#if QEMU_PLUGIN_API < 3
const void *qemu_plugin_insn_data(const struct qemu_plugin_insn *);
#else
size_t qemu_plugin_insn_data(const struct qemu_plugin_insn *, void *, size_t);
#endif

#define EXPORT __attribute__((visibility("default")))
EXPORT int qemu_plugin_version = QEMU_PLUGIN_API;

enum { kLongest = 15, kEnd = 0, kCount = 1, kTrace = 2, kNoMark = 3 };

struct insn {
    uint8_t bytes[kLongest], size, mark;
};

static FILE *out;
static bool counting, tracing;
static uint64_t count;
// Long calls are written down in evenly spaced chunks.
enum { kChunk = 250, kChunks = 8, kLimit = 1 << 24 };
static const struct insn **trace;
static size_t traced, room;

static uint8_t mark_of(const uint8_t *bytes, size_t size) {
    static const uint8_t x86[] = {0x0F, 0x1F, 0x80};  // nopl 0xBE00000n(%rax)
    uint32_t word;
    if (size == 7 && memcmp(bytes, x86, sizeof x86) == 0) {
        memcpy(&word, bytes + 3, sizeof word);
        if (word >> 4 == 0xBE0000 && (word & 15) < kNoMark) return (uint8_t)(word & 15);
    } else if (size == 4) {
        memcpy(&word, bytes, sizeof word);  // movz xzr, #0xBE0n
        if ((word & ~(UINT32_C(0xF) << 5)) == (0xD2800000 | 0xBE00 << 5 | 31) && (word >> 5 & 15) < kNoMark) {
            return (uint8_t)(word >> 5 & 15);
        }
    }
    return kNoMark;
}

static void write_trace(void) {
    const size_t chunks = traced > kChunk * kChunks ? kChunks : 1, length = chunks > 1 ? kChunk : traced;
    for (size_t c = 0; c < chunks; c++) {
        const size_t at = chunks > 1 ? (traced - length) * c / (chunks - 1) : 0;
        for (size_t i = 0; i < length; i++) {
            const struct insn *insn = trace[at + i];
            fputc(' ', out);
            for (size_t b = 0; b < insn->size; b++) fprintf(out, "%02x", insn->bytes[b]);
        }
    }
}

static void executed(unsigned cpu, void *data) {
    (void)cpu;
    const struct insn *insn = data;
    if (insn->mark == kNoMark) {
        if (!counting) return;
        count++;
        if (!tracing || traced == kLimit) return;
        if (traced == room) {
            room = room != 0 ? 2 * room : 4096;
            trace = realloc(trace, room * sizeof *trace);
            if (trace == NULL) abort();
        }
        trace[traced++] = insn;
    } else if (insn->mark != kEnd) {
        counting = true;
        tracing = insn->mark == kTrace;
        count = traced = 0;
    } else if (counting) {
        counting = false;
        fprintf(out, "%" PRIu64, count);
        write_trace();
        fputc('\n', out);
        fflush(out);
    }
}

static void translated(qemu_plugin_id_t id, struct qemu_plugin_tb *tb) {
    (void)id;
    for (size_t i = 0; i < qemu_plugin_tb_n_insns(tb); i++) {
        struct qemu_plugin_insn *from = qemu_plugin_tb_get_insn(tb, i);
        struct insn *insn = calloc(1, sizeof *insn);  // kept: blocks run until the end
        if (insn == NULL) abort();
        insn->size = (uint8_t)qemu_plugin_insn_size(from);
#if QEMU_PLUGIN_API < 3
        memcpy(insn->bytes, qemu_plugin_insn_data(from), insn->size);
#else
        qemu_plugin_insn_data(from, insn->bytes, insn->size);
#endif
        insn->mark = mark_of(insn->bytes, insn->size);
        qemu_plugin_register_vcpu_insn_exec_cb(from, executed, 0, insn);
    }
}

EXPORT int qemu_plugin_install(qemu_plugin_id_t id, const void *info, int argc, char **argv) {
    (void)info;
    for (int i = 0; i < argc; i++) {
        if (strncmp(argv[i], "out=", 4) == 0) out = fopen(argv[i] + 4, "w");
    }
    if (out == NULL) return 1;
    qemu_plugin_register_vcpu_tb_trans_cb(id, translated);
    return 0;
}
