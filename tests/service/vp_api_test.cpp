#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "service/device_mode.h"
#include "tests/module/heap_blocks.h"
#include "tests/service/service_library.h"

namespace tsypr::service::test
{
namespace
{

using VpApiTest = SampleService;

TEST_F(VpApiTest, KnowsPrintersAndHandles)
{
    void* handle = library.Open(L"Sample");
    void* second = library.Open(L"Sample");
    EXPECT_TRUE(handle != nullptr && handle != second);
    const std::wstring endless(5000, L'x');
    for (const WCHAR* unknown : {L"sample", L"", endless.c_str(), static_cast<const WCHAR*>(nullptr)})
    {
        EXPECT_EQ(library.Open(unknown), nullptr);
    }
    EXPECT_NE(library.open(L"Sample", nullptr), ERROR_SUCCESS);
    EXPECT_EQ(library.Counters().outstandingHandles, 2u);
    library.close(second);
    library.close(handle);
    int foreign = 0;
    for (void* bad : {handle, static_cast<void*>(&foreign), static_cast<void*>(nullptr)})
    {
        auto* mode = reinterpret_cast<DEVMODEW*>(&foreign);
        EXPECT_NE(library.getDevMode(bad, &mode), ERROR_SUCCESS);
        EXPECT_EQ(mode, nullptr);
        const Answer answer = library.Ask(bad, DC_PAPERS);
        EXPECT_TRUE(answer.status != ERROR_SUCCESS && answer.data.empty() && answer.result == -1);
        library.close(bad);
    }
    EXPECT_EQ(library.Counters().outstandingHandles, 0u);
}

TEST_F(VpApiTest, HandsOutIndependentDeviceModes)
{
    void* handle = library.Open(L"Sample");
    DEVMODEW* modes[2] = {};
    EXPECT_EQ(library.getDevMode(handle, &modes[0]), ERROR_SUCCESS);
    EXPECT_EQ(library.getDevMode(handle, &modes[1]), ERROR_SUCCESS);
    EXPECT_NE(library.getDevMode(handle, nullptr), ERROR_SUCCESS);
    library.close(handle);
    const std::vector<std::byte> expected = BuildDevMode(Parse(SampleProfile()));
    std::memset(modes[0], 0, expected.size());
    library.freeDevMode(modes[0]);
    EXPECT_EQ(std::memcmp(modes[1], expected.data(), expected.size()), 0);
    library.freeDevMode(modes[1]);
}

TEST_F(VpApiTest, ReleasesOnlyOutstandingRepliesAndFillsOnlyPlacesThatAreThere)
{
    void* handle = library.Open(L"Sample");
    DWORD size = 0;
    void* data = nullptr;
    LONG result = 0;
    library.getCapabilities(handle, DC_PAPERS, &size, &data, 0, nullptr, &result);
    ASSERT_NE(data, nullptr);
    library.freeDevMode(data);
    library.freePTData(data);
    library.freeCapabilities(static_cast<std::byte*>(data) + 1);
    EXPECT_EQ(library.Counters().outstandingReplies, 1u);
    library.freeCapabilities(data);
    library.freeCapabilities(data);
    library.freeCapabilities(nullptr);

    // A place for the result but none for the data, or for one half of it only.
    library.getCapabilities(handle, DC_PAPERS, &size, nullptr, 0, nullptr, &result);
    EXPECT_TRUE(size == 0 && result == 3);
    library.getCapabilities(handle, DC_PAPERS, nullptr, &data, 0, nullptr, &result);
    EXPECT_TRUE(data == nullptr && result == 3);
    EXPECT_NE(library.getCapabilities(handle, DC_PAPERS, &size, &data, 0, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(library.Counters().outstandingReplies, 0u);
}

TEST_F(VpApiTest, TellsWhyProfilesWereRefused)
{
    directory.Write("bad.json", "[]");
    directory.Write("twin.json", SampleProfile().dump());
    const std::wstring expected = L"bad.json: : must be an object\ntwin.json: name: is taken by an earlier file\n";
    std::wstring text(expected.size() + 1, L'?');
    EXPECT_EQ(library.readProblems(nullptr, 0), expected.size());
    EXPECT_EQ(library.readProblems(text.data(), static_cast<DWORD>(text.size())), expected.size());
    EXPECT_EQ(text, expected + L'\0');

    text = L"?????";
    EXPECT_EQ(library.readProblems(text.data(), 4), expected.size());
    EXPECT_EQ(text, std::wstring(L"bad\0?", 5));
}

TEST_F(VpApiTest, ServesTheExamplePrintersBesideItWithoutASetting)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kKey);
    EXPECT_NE(library.Open(L"Studio Color"), nullptr);
    EXPECT_EQ(library.readProblems(nullptr, 0), 0u);
}

TEST_F(VpApiTest, ReadsTheProfilesOnceAndNotWhenLoaded)
{
    directory.Write("soon.json", Named("Soon"));
    EXPECT_NE(library.Open(L"Soon"), nullptr);
    directory.Write("late.json", Named("Late"));
    EXPECT_EQ(library.Open(L"Late"), nullptr);
}

TEST_F(ServiceSetting, LeavesNothingBehindWhenUnloaded)
{
    for (const std::string name : {"1", "2", "3", "4", "5", "6", "7", "8"})
    {
        directory.Write(name + ".json", Named(name, SampleProfile()));
    }
    constexpr std::size_t kRounds = 20;
    std::size_t before = 0;
    for (std::size_t i = 0; i <= kRounds; ++i)
    {
        before = i == 1 ? tsypr::test::BusyBlocks() : before;
        const ServiceLibrary library;
        DEVMODEW* mode = nullptr;
        library.getDevMode(library.Open(L"Sample"), &mode);
    }
    // A load with one use leaves a few blocks, however many profiles there are; a profile would be many times that.
    EXPECT_LT(tsypr::test::BusyBlocks(), before + kRounds * 10);
}

TEST_F(VpApiTest, CountsItsCalls)
{
    void* handle = library.Open(L"Sample");
    DEVMODEW* mode = nullptr;
    library.getDevMode(handle, &mode);
    library.Ask(handle, DC_PAPERNAMES);
    library.close(handle);
    library.freeDevMode(mode);
    const VpCallCounters counters = library.Counters();
    const ULONGLONG expected[] = {1, 1, 1, 1, 1, 1, 0, 0, 0, 0};
    EXPECT_EQ(std::memcmp(&counters, expected, sizeof(counters)), 0);
    library.resetCounters();
    EXPECT_EQ(library.Counters().getDevMode, 0u);
}

} // namespace
} // namespace tsypr::service::test
