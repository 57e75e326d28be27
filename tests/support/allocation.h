// The allocations of the code under test, counted and made to fail. The test program links malloc, calloc, realloc and
// free through wrappers; what the C++ runtime allocates for the tests themselves is not affected.
#pragma once

namespace test {

// While one exists, the n-th allocation from its creation on (n = 1 is the next) and every later one return null.
class FailAllocations {
public:
    explicit FailAllocations(int n);
    ~FailAllocations();
    bool reached() const;  // the n-th allocation was asked for
};

// Blocks allocated and not freed since the program began. Take the difference of two readings.
long live_allocations();

}  // namespace test
