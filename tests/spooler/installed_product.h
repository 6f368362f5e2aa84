#ifndef TESSARY_TESTS_SPOOLER_INSTALLED_PRODUCT_H
#define TESSARY_TESTS_SPOOLER_INSTALLED_PRODUCT_H

#include <gtest/gtest.h>

#include "tests/printctl/printctl_fixture.h"
#include "tools/printctl/devmode_buffer.h"
#include "tools/printctl/spooler.h"

namespace tsypr::spooler_tests
{

// The product is installed for the tests of a suite.
class InstalledProduct : public testing::Test
{
public:
    static void SetUpTestSuite()
    {
        printctl_tests::InstallProduct();
    }
    static void TearDownTestSuite()
    {
        EXPECT_EQ(printctl_tests::RunPrintctl({L"remove"}).code, 0);
    }
};

} // namespace tsypr::spooler_tests

#endif
