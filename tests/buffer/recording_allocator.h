// An allocator pair for the buffer records: every block lies in guarded memory, filled with one byte, and is recorded
// until it is released with the address and the auxiliary value that it was handed out with. Fails along with malloc.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "support/allocation.h"
#include "support/guarded_buffer.h"

namespace test {

struct RecordingAllocator {
    static constexpr uint8_t kFill = 0xA5;

    struct Block {
        GuardedBuffer memory;
        uint64_t aux;
    };
    static inline std::map<void *, Block> live;
    static inline uint64_t next_aux = 0;  // auxiliary address of the next block, advanced by each
    static inline int bad_frees = 0;

    static void *alloc(uint32_t size, uint64_t *aux) {
        if (refuse_allocation()) return nullptr;
        GuardedBuffer memory(size);
        memory.fill(kFill);
        void *address = memory.data();
        if (*aux != 0) bad_frees++;  // the value is to be 0 on entry
        *aux = next_aux;
        live.emplace(address, Block{std::move(memory), next_aux});
        if (next_aux != 0) next_aux += 0x10000;
        return address;
    }
    static void free(void *block, uint64_t aux) {
        const auto found = live.find(block);
        if (found == live.end() || found->second.aux != aux || !found->second.memory.slack_intact()) {
            bad_frees++;
            return;
        }
        live.erase(found);
    }
    static void reset() {
        live.clear();
        next_aux = 0;
        bad_frees = 0;
    }
};

}  // namespace test
