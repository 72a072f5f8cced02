// Test programs that drive the loader themselves: nothing is loaded before
// the tests run.
#include <gtest/gtest.h>

#include "TesseraTestSupport.h"

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    tessera_test::isolateHome();
    return RUN_ALL_TESTS();
}
