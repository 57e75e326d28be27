#include <gtest/gtest.h>

#include "support/doing.h"

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    test::report_crashes_and_seeds();
    return RUN_ALL_TESTS();
}
