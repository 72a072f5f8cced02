// Test programs whose tests use the initialised library: backends of the
// default directory loaded, locale set, configuration area in a private HOME.
#include <gtest/gtest.h>
#include <tessera/LuSVNInitialize.h>

#include "TesseraTestSupport.h"

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    tessera_test::isolateHome();
    LuSVNInitialize();
    return RUN_ALL_TESTS();
}
