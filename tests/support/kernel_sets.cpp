#include "support/kernel_sets.h"

#include "core/processor.h"

namespace test {

const std::vector<qorv::KernelSet> &runnable_kernel_sets() {
    static const std::vector<qorv::KernelSet> sets = [] {
        std::vector<qorv::KernelSet> found{QORV_KERNEL_SET(plain)};
#if defined(QORV_HAVE_v2)
        found.push_back(QORV_KERNEL_SET(v2));
        if (qorv::has_x86_64_v3()) found.push_back(QORV_KERNEL_SET(v3));
#elif defined(QORV_HAVE_neon)
        found.push_back(QORV_KERNEL_SET(neon));
#endif
        return found;
    }();
    return sets;
}

const std::vector<qorv::KernelSet> &runnable_metric_sets() {
    static const std::vector<qorv::KernelSet> sets = [] {
        std::vector<qorv::KernelSet> found = runnable_kernel_sets();
#if defined(QORV_HAVE_dotprod)
        if (qorv::has_dot_products()) found.push_back(QORV_DOTPROD_KERNEL_SET);
#endif
        return found;
    }();
    return sets;
}

}  // namespace test
