#include "core/isa.h"

#include "core/processor.h"

namespace qorv {

#if defined(QORV_HAVE_v2)

constinit KernelSet active = QORV_KERNEL_SET(v2);

namespace {
[[gnu::constructor]] void choose_kernel_set() {
    __builtin_cpu_init();
    if (has_x86_64_v3()) active = QORV_KERNEL_SET(v3);
}
}  // namespace

#elif defined(QORV_HAVE_neon)

constinit KernelSet active = QORV_KERNEL_SET(neon);

namespace {
[[gnu::constructor]] void choose_kernel_set() {
    if (has_dot_products()) active = QORV_DOTPROD_KERNEL_SET;
}
}  // namespace

#else
constinit KernelSet active = QORV_KERNEL_SET(plain);
#endif

}  // namespace qorv
