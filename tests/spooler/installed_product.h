#ifndef TESSARY_TESTS_SPOOLER_INSTALLED_PRODUCT_H
#define TESSARY_TESTS_SPOOLER_INSTALLED_PRODUCT_H

#include <gtest/gtest.h>

#include "tests/printctl/printctl_fixture.h"
#include "tools/printctl/devmode_buffer.h"
#include "tools/printctl/spooler.h"

namespace tsypr::spooler_tests
{

// The product is installed for the tests of a suite, with XML documents that are good enough for it.
class InstalledProduct : public testing::Test
{
public:
    static void SetUpTestSuite()
    {
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        const std::wstring repair = std::filesystem::path(path).replace_filename(L"tsydomrepair.dll").wstring();
        const auto size = static_cast<DWORD>((repair.size() + 1) * sizeof(wchar_t));
        const wchar_t* documents = L"Software\\Classes\\CLSID\\{88D96A05-F192-11D4-A65F-0040963251E5}\\InprocServer32";
        ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, documents, nullptr, REG_SZ, repair.c_str(), size), ERROR_SUCCESS);
        const auto installed = printctl_tests::RunPrintctl({L"install"});
        ASSERT_EQ(installed.code, 0) << installed.error;
    }
    static void TearDownTestSuite()
    {
        EXPECT_EQ(printctl_tests::RunPrintctl({L"remove"}).code, 0);
    }
};

} // namespace tsypr::spooler_tests

#endif
