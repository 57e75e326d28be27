#include "metric/other_sizes.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "metric/reference.h"
#include "support/first_difference.h"
#include "support/guarded_buffer.h"
#include "support/kernel_fixture.h"
#include "support/random.h"

// clang-format off
#define QORV_DECLARE(isa) namespace qorv::isa { extern const test::OtherSizes other_sizes; }
// clang-format on
QORV_DECLARE(v2)
QORV_DECLARE(v3)
QORV_DECLARE(neon)
QORV_DECLARE(plain)

namespace test {
namespace {

class OtherSizesTest : public WithKernelSet {};
INSTANTIATE_FOR_KERNEL_SETS(OtherSizesTest);

const OtherSizes *of_set(const std::string &name) {
    static const std::map<std::string, const OtherSizes *> of_sets = {
        {"plain", &qorv::plain::other_sizes},
#if defined(QORV_HAVE_v2)
        {"v2", &qorv::v2::other_sizes},
        {"v3", &qorv::v3::other_sizes},
#elif defined(QORV_HAVE_neon)
        {"neon", &qorv::neon::other_sizes},
#endif
    };
    return of_sets.at(name);
}

template <int W, int H, class A, class B>
void expect_plain_results(qorv::BlockCost<A, B> *sad, qorv::BlockDiff<A, B> *diff) {
    SCOPED_TRACE(std::to_string(W) + "x" + std::to_string(H));
    constexpr size_t kSamples = W * H;
    for (Flush flush : kBothFlushes) {
        GuardedBuffer a(kSamples * sizeof(A), flush), b(kSamples * sizeof(B), flush), out(2 * kSamples, flush);
        a.generate(random_numbers()), b.generate(random_numbers());
        a.make_read_only(), b.make_read_only();
        EXPECT_EQ(sad(a.as<A>(), b.as<B>(), W, W), plain_sad(W, H, a.as<A>(), b.as<B>(), W, W));
        std::vector<int16_t> expected(kSamples);
        plain_diff(W, H, a.as<A>(), b.as<B>(), W, W, W, expected.data());
        diff(a.as<A>(), b.as<B>(), W, W, W, out.as<int16_t>());
        EXPECT_EQ(first_difference<int16_t>(expected, {out.as<int16_t>(), kSamples}, W), "");
    }
}

TEST_P(OtherSizesTest, EqualThePlainLoops) {
    const OtherSizes *const kernels = of_set(GetParam().name);
#define QORV_BLOCK(w, h, suffix, A, B) \
    expect_plain_results<w, h>(kernels->sad##w##x##h##suffix, kernels->diff##w##x##h##suffix);
    QORV_OTHER_BLOCKS(QORV_BLOCK)
}

}  // namespace
}  // namespace test
