#include "support/allocation.h"

#include <atomic>
#include <cstddef>
#include <limits>

extern "C" {
void *__real_malloc(size_t);
void *__real_calloc(size_t, size_t);
void *__real_realloc(void *, size_t);
void __real_free(void *);
void *__wrap_malloc(size_t);
void *__wrap_calloc(size_t, size_t);
void *__wrap_realloc(void *, size_t);
void __wrap_free(void *);
const char *__asan_default_options();
const char *__tsan_default_options();
}

namespace {

std::atomic<long> live{0};
constexpr long kNever = std::numeric_limits<long>::max();
std::atomic<long> until_failure{kNever};

std::atomic<bool> only_one{false};

void *counted(void *block) {
    if (block != nullptr) live++;
    return block;
}

}  // namespace

extern "C" void *__wrap_malloc(size_t size) {
    return test::refuse_allocation() ? nullptr : counted(__real_malloc(size));
}

extern "C" void *__wrap_calloc(size_t count, size_t size) {
    return test::refuse_allocation() ? nullptr : counted(__real_calloc(count, size));
}

extern "C" void *__wrap_realloc(void *block, size_t size) {
    if (test::refuse_allocation()) return nullptr;
    void *moved = __real_realloc(block, size);
    return block == nullptr ? counted(moved) : moved;
}

extern "C" void __wrap_free(void *block) {
    if (block != nullptr) live--;
    __real_free(block);
}

// As without a sanitizer, a request that cannot be met gives null.
extern "C" const char *__asan_default_options() {
    return "allocator_may_return_null=1";
}

extern "C" const char *__tsan_default_options() {
    return __asan_default_options();
}

namespace test {

FailAllocations::FailAllocations(int n, Failing failing) {
    only_one = failing == Failing::kOne;
    until_failure = n;
}

FailAllocations::~FailAllocations() {
    until_failure = kNever;
}

bool FailAllocations::reached() const {
    return until_failure.load() < 1;
}

bool refuse_allocation() {
    if (until_failure.load() == kNever) return false;
    const long left = --until_failure;
    return only_one ? left == 0 : left < 1;
}

long live_allocations() {
    return live.load();
}

}  // namespace test
