// Which kernel set runs. The kernel sources are compiled once for every instruction set, each time inside a namespace
// of its own (v2, v3, neon, plain) so that no inline function built for one set can be picked by the linker for
// another.
#pragma once

// Reached without the global offset table: never looked up by name in another object.
#define QORV_INTERNAL __attribute__((visibility("hidden")))

namespace qorv {

struct CscKernels;
struct MemoryKernels;
struct MetricKernels;
struct ResizeKernels;

// One table of function pointers per family, all of one instruction set.
struct KernelSet {
    const char *name;
    const CscKernels *csc;
    const MemoryKernels *memory;
    const MetricKernels *metric;
    const ResizeKernels *resize;
};

// The tables of one instruction set, and the set made of them: a constant expression of addresses, so that a set is
// there before any constructor runs.
// clang-format off
#define QORV_DECLARE_KERNELS(isa)                            \
    namespace isa {                                          \
    extern QORV_INTERNAL const CscKernels csc_kernels;       \
    extern QORV_INTERNAL const MemoryKernels memory_kernels; \
    extern QORV_INTERNAL const MetricKernels metric_kernels; \
    extern QORV_INTERNAL const ResizeKernels resize_kernels; \
    }
#define QORV_KERNEL_SET(isa)          \
    ::qorv::KernelSet {               \
        #isa,                         \
        &::qorv::isa::csc_kernels,    \
        &::qorv::isa::memory_kernels, \
        &::qorv::isa::metric_kernels, \
        &::qorv::isa::resize_kernels, \
    }
// clang-format on

QORV_DECLARE_KERNELS(v2)
QORV_DECLARE_KERNELS(v3)
QORV_DECLARE_KERNELS(neon)
QORV_DECLARE_KERNELS(plain)

// NEON with dot products: it has metrics of its own, or rather one, and is NEON for the rest.
namespace dotprod {
extern QORV_INTERNAL const MetricKernels metric_kernels;
}
#define QORV_DOTPROD_KERNEL_SET                                                                                 \
    ::qorv::KernelSet {                                                                                         \
        "dotprod", &::qorv::neon::csc_kernels, &::qorv::neon::memory_kernels, &::qorv::dotprod::metric_kernels, \
            &::qorv::neon::resize_kernels,                                                                      \
    }

// The set in use: the baseline of the architecture, moved once, by a constructor of the library, to the best set that
// the processor has. Tests move it to run every variant.
extern QORV_INTERNAL KernelSet active;

}  // namespace qorv
