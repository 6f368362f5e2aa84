#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "service/device_mode.h"
#include "tests/service/service_library.h"

#include <winspool.h>

namespace tsypr::service::test
{
namespace
{

TEST(VpApi, OpensOnlyPrintersThatItKnows)
{
    const SampleService service;
    const ServiceLibrary& library = service.library;
    void* handle = library.Open(L"Sample");
    void* second = library.Open(L"Sample");
    EXPECT_NE(handle, nullptr);
    EXPECT_NE(handle, second);
    for (const std::wstring& unknown : {std::wstring(L"sample"), std::wstring(), std::wstring(5000, L'x')})
    {
        EXPECT_EQ(library.Open(unknown.c_str()), nullptr);
    }
    EXPECT_EQ(library.Open(nullptr), nullptr);
    EXPECT_NE(library.open(L"Sample", nullptr), ERROR_SUCCESS);
    EXPECT_EQ(library.Counters().outstandingHandles, 2u);
    library.close(handle);
    library.close(second);
    EXPECT_EQ(library.Counters().outstandingHandles, 0u);
}

TEST(VpApi, HandsOutIndependentDeviceModes)
{
    const SampleService service;
    const ServiceLibrary& library = service.library;
    void* handle = library.Open(L"Sample");
    DEVMODEW* first = nullptr;
    DEVMODEW* second = nullptr;
    EXPECT_EQ(library.getDevMode(handle, &first), ERROR_SUCCESS);
    EXPECT_EQ(library.getDevMode(handle, &second), ERROR_SUCCESS);
    library.close(handle);
    ASSERT_TRUE(first != nullptr && second != nullptr && first != second);

    const std::vector<std::byte> expected = BuildDevMode(Parse(SampleProfile()));
    std::memset(first, 0, expected.size());
    library.freeDevMode(first);
    EXPECT_EQ(std::memcmp(second, expected.data(), expected.size()), 0);
    library.freeDevMode(second);
    EXPECT_EQ(library.Counters().outstandingReplies, 0u);
}

TEST(VpApi, RefusesStaleForeignAndNullHandles)
{
    const SampleService service;
    const ServiceLibrary& library = service.library;
    void* stale = library.Open(L"Sample");
    library.close(stale);
    int foreign = 0;
    for (void* handle :
         {stale, static_cast<void*>(&foreign), static_cast<void*>(nullptr), reinterpret_cast<void*>(~ULONG_PTR{0})})
    {
        DEVMODEW* mode = reinterpret_cast<DEVMODEW*>(&foreign);
        EXPECT_NE(library.getDevMode(handle, &mode), ERROR_SUCCESS);
        EXPECT_EQ(mode, nullptr);
        DWORD size = 5;
        void* data = &foreign;
        LONG result = 5;
        EXPECT_NE(library.getCapabilities(handle, DC_PAPERS, &size, &data, 0, nullptr, &result), ERROR_SUCCESS);
        EXPECT_TRUE(size == 0 && data == nullptr && result == -1);
        library.close(handle);
    }
    EXPECT_EQ(library.Counters().outstandingHandles, 0u);
}

TEST(VpApi, ReleasesOnlyOutstandingRepliesOfTheSameKind)
{
    const SampleService service;
    const ServiceLibrary& library = service.library;
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
    EXPECT_EQ(library.Counters().outstandingReplies, 0u);

    // A place for the result but none for the data, or for one half of it only.
    library.getCapabilities(handle, DC_PAPERS, &size, nullptr, 0, nullptr, &result);
    EXPECT_TRUE(size == 0 && result == 3);
    library.getCapabilities(handle, DC_PAPERS, nullptr, &data, 0, nullptr, &result);
    EXPECT_TRUE(data == nullptr && result == 3);
    EXPECT_NE(library.getCapabilities(handle, DC_PAPERS, &size, &data, 0, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_NE(library.getDevMode(handle, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(library.Counters().outstandingReplies, 0u);
    library.close(handle);
}

TEST(VpApi, CountsEveryCallOfEachFunction)
{
    const SampleService service;
    const ServiceLibrary& library = service.library;
    library.resetCounters();
    void* handle = library.Open(L"Sample");
    DEVMODEW* mode = nullptr;
    for (int i = 0; i < 2; ++i)
    {
        library.getDevMode(handle, &mode);
        library.freeDevMode(mode);
    }
    LONG result = 0;
    for (int i = 0; i < 3; ++i)
    {
        library.getCapabilities(handle, DC_COPIES, nullptr, nullptr, 0, nullptr, &result);
    }
    library.freeCapabilities(nullptr);
    DWORD size = 5;
    void* output = &size;
    EXPECT_NE(library.makePTQuery(handle, 2, 0, nullptr, &size, &output, &result), ERROR_SUCCESS);
    EXPECT_TRUE(size == 0 && output == nullptr && result == E_NOTIMPL);
    EXPECT_NE(library.makePTQuery(nullptr, 9, 4, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    library.freePTData(output);

    const VpCallCounters counted = library.Counters();
    const ULONGLONG expected[] = {1, 0, 2, 2, 3, 1, 2, 1, 1, 0};
    static_assert(sizeof(expected) == sizeof(counted));
    EXPECT_EQ(std::memcmp(&counted, expected, sizeof(expected)), 0);

    library.resetCounters();
    library.readCounters(nullptr);
    EXPECT_EQ(library.Counters().getDevMode, 0u);
    EXPECT_EQ(library.Counters().outstandingHandles, 1u);
    library.close(handle);
}

TEST(VpApi, TellsWhyProfilesWereRefused)
{
    const SampleService service;
    service.directory.Write("bad.json", "{\"schemaVersion\": 1}");
    service.directory.Write("twin.json", SampleProfile().dump());
    const DWORD length = service.library.readProblems(nullptr, 0);
    std::wstring text(length + 1, L'?');
    EXPECT_EQ(service.library.readProblems(text.data(), length + 1), length);
    EXPECT_THAT(text, testing::HasSubstr(L"bad.json: deviceMode: is missing\n"));
    EXPECT_THAT(text, testing::HasSubstr(L"twin.json: name: is taken by an earlier file\n"));
    EXPECT_EQ(text[length], L'\0');

    WCHAR cut[5] = {L'?', L'?', L'?', L'?', L'?'};
    EXPECT_EQ(service.library.readProblems(cut, 4), length);
    EXPECT_EQ(std::wstring(cut, 5), std::wstring(L"bad\0?", 5));
    EXPECT_NE(service.library.Open(L"Sparse"), nullptr);
}

TEST(VpApi, ServesTheExamplePrintersBesideItWithoutASetting)
{
    const ScratchMachineRegistry registry;
    const ServiceLibrary library;
    void* handle = library.Open(L"Studio Color");
    EXPECT_NE(handle, nullptr);
    library.close(handle);
    EXPECT_EQ(library.readProblems(nullptr, 0), 0u);
}

TEST(VpApi, ReadsTheProfilesOnceAndNotWhenLoaded)
{
    const ProfileDirectory directory;
    const ScratchMachineRegistry registry;
    registry.SetProfileDirectory(directory.Path().wstring());
    const ServiceLibrary library;
    directory.Write("sample.json", SampleProfile().dump());
    void* handle = library.Open(L"Sample");
    EXPECT_NE(handle, nullptr);
    directory.Write("sparse.json", SparseProfile().dump());
    EXPECT_EQ(library.Open(L"Sparse"), nullptr);
    library.close(handle);
}

// Bytes in use in every heap of the process.
std::size_t BusyHeapBytes()
{
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
    std::size_t bytes = 0;
    for (DWORD i = 0; i < count; ++i)
    {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry))
        {
            bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
        }
    }
    return bytes;
}

TEST(VpApi, LeavesNothingBehindWhenUnloaded)
{
    const ProfileDirectory directory;
    for (int i = 0; i < 10; ++i)
    {
        nlohmann::json document = SampleProfile();
        document["name"] = i == 0 ? "Sample" : "Sample " + std::to_string(i);
        directory.Write("sample" + std::to_string(i) + ".json", document.dump());
    }
    directory.Write("bad.json", "{");
    const ScratchMachineRegistry registry;
    registry.SetProfileDirectory(directory.Path().wstring());
    const auto use = []
    {
        const ServiceLibrary library;
        library.Open(L"Sample");
        DEVMODEW* mode = nullptr;
        library.getDevMode(library.Open(L"Sample"), &mode);
    };
    use();
    const std::size_t before = BusyHeapBytes();
    constexpr std::size_t kRounds = 20;
    for (std::size_t i = 0; i < kRounds; ++i)
    {
        use();
    }
    // A load with one use leaves 1 to 2 KB, however many profiles there are; the profiles would be many times that.
    EXPECT_LT(BusyHeapBytes(), before + kRounds * 2000);
}

// One thread's share: whole operations as the print system makes them.
int CountWrongAnswers(const ServiceLibrary& library, int rounds)
{
    int wrong = 0;
    for (int i = 0; i < rounds; ++i)
    {
        const bool sample = i % 2 == 0;
        void* handle = library.Open(sample ? L"Sample" : L"Sparse");
        DEVMODEW* mode = nullptr;
        library.getDevMode(handle, &mode);
        DWORD size = 0;
        void* data = nullptr;
        LONG result = 0;
        library.getCapabilities(handle, DC_PAPERNAMES, &size, &data, 0, mode, &result);
        library.close(handle);
        wrong += mode == nullptr || mode->dmDriverExtra != (sample ? 1122 : 1112);
        wrong += result != (sample ? 3 : 1) || size != static_cast<DWORD>(result) * 128;
        wrong += data == nullptr || wcscmp(static_cast<WCHAR*>(data), sample ? L"A4" : L"Letter") != 0;
        library.freeDevMode(mode);
        library.freeCapabilities(data);
    }
    return wrong;
}

TEST(VpApi, AnswersSixteenThreadsAtOnce)
{
    const SampleService service;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 16; ++i)
    {
        threads.emplace_back([&] { wrong += CountWrongAnswers(service.library, 200); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    const VpCallCounters counters = service.library.Counters();
    EXPECT_EQ(counters.openRemotePrinter, 3200u);
    EXPECT_EQ(counters.freeDeviceCapabilities, 3200u);
    EXPECT_EQ(counters.outstandingHandles, 0u);
    EXPECT_EQ(counters.outstandingReplies, 0u);
}

} // namespace
} // namespace tsypr::service::test
