#include "Com.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const ComApartment apartment;
    return RUN_ALL_TESTS();
}
