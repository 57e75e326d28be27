// The allocations of the code under test, counted and made to fail. The test program links malloc, calloc, realloc and
// free through wrappers; what the C++ runtime allocates for the tests themselves is not affected.
#pragma once

namespace test {

enum class Failing {
    kFromThere,  // the n-th allocation and every later one
    kOne,        // the n-th alone
};

// While one exists, the n-th allocation from its creation on (n = 1 is the next) returns null.
class FailAllocations {
public:
    explicit FailAllocations(int n, Failing failing = Failing::kFromThere);
    ~FailAllocations();
    bool reached() const;  // the n-th allocation was asked for
};

// Counts an allocation that does not come through malloc: true when it is to fail.
bool refuse_allocation();

// Blocks allocated and not freed since the program began. Take the difference of two readings.
long live_allocations();

}  // namespace test
