#include "remote/device_capabilities.h"
#include "module/malloc_ptr.h"
#include "remote/driver_exports.h"
#include "tests/remote/fake_service.h"

namespace tsypr::test
{
namespace
{

wchar_t g_sessionName[] = L"srv\\Office Laser,4";
const std::string kDataLead = "error GetDeviceCapabilitiesData, failed to ";
const std::string kDataQuery = "verbose GetDeviceCapabilitiesData, VpGetDeviceCapabilities(2) returned ";
constexpr DWORD kFailed = GDI_ERROR;

class CapabilityExports : public RemoteTest
{
};
class CapabilityData : public RemoteTest
{
};

TEST_F(CapabilityExports, EveryIndexIsForwardedWithTheCallersDeviceMode)
{
    DeviceMode dm(220, 1200);
    for (const WORD index : {WORD{0}, WORD{2}, WORD{35}, WORD{1000}, WORD{65535}})
    {
        const std::string number = std::to_string(index);
        service.capabilities[index] = {index + 5, Bytes{1, 2, 3}, 3, 87};
        for (DEVMODEW* devMode : {dm.Get(), static_cast<DEVMODEW*>(nullptr)})
        {
            EXPECT_EQ(index + 5U, DrvDeviceCapabilities(nullptr, g_sessionName, index, nullptr, devMode));
            const CapabilityCall& call = service.LastCapabilityCall();
            EXPECT_FALSE(call.wantsData);
            EXPECT_EQ(devMode, call.devMode);
            EXPECT_EQ(devMode != nullptr ? 1420U : 0U, call.devModeSize);
            EXPECT_EQ(-1, call.presetResult);
            EXPECT_EQ((Messages{"open Office Laser", "caps " + number, "close"}), service.TakeCalls());
            EXPECT_EQ("verbose DrvDeviceCapabilities, VpGetDeviceCapabilities(" + number +
                          ") returned 87 with query result " + std::to_string(index + 5),
                      log.Take().back());
        }
    }
    service.opens = false; // and so nothing is closed
    EXPECT_EQ(kFailed, DrvDeviceCapabilities(nullptr, g_sessionName, DC_PAPERS, nullptr, nullptr));
    EXPECT_EQ(Messages{"open Office Laser"}, service.TakeCalls());
    EXPECT_EQ(Messages{"error DrvDeviceCapabilities, failed to open remote printer srv\\Office Laser,4."},
              log.TakeErrors());
    EXPECT_EQ(kFailed, DrvDeviceCapabilities(nullptr, nullptr, DC_PAPERS, nullptr, nullptr));
}

TEST_F(CapabilityExports, OutputReceivesExactlyTheReturnedBytes)
{
    const struct
    {
        CapabilityReply reply;
        DWORD result;
        Bytes output;
    } cases[] = {{{3, Bytes{1, 2, 3, 4, 5}, 5, 1}, 3, {1, 2, 3, 4, 5, 9}},
                 {{3, Bytes{1, 2, 3}, 2}, 3, {1, 2, 9, 9, 9, 9}},
                 {{7, Bytes{1}, 0}, 7, {9, 9, 9, 9, 9, 9}},
                 {{7, std::nullopt, 4}, 7, {9, 9, 9, 9, 9, 9}},
                 {{std::nullopt, std::nullopt, 0, 5}, kFailed, {9, 9, 9, 9, 9, 9}}};
    for (const auto& one : cases)
    {
        service.capabilities[DC_PAPERS] = one.reply;
        Messages calls = {"open Office Laser", "caps 2", "freeCaps", "close"};
        calls.erase(calls.begin() + 2, calls.begin() + (one.reply.data ? 2 : 3));
        Bytes output(6, 9);
        EXPECT_EQ(one.result, DrvDeviceCapabilities(nullptr, g_sessionName, DC_PAPERS, output.data(), nullptr));
        EXPECT_EQ(one.output, output);
        EXPECT_EQ(calls, service.TakeCalls());
        output.assign(6, 9);
        EXPECT_EQ(one.result, DrvSplDeviceCaps(nullptr, g_sessionName, DC_PAPERS, output.data(), 0, nullptr));
        EXPECT_EQ(one.output, output);
        EXPECT_EQ(calls, service.TakeCalls());
    }
}

TEST(DriverExports, OneStubServesWhatIsNotImplemented)
{
    // Loaded without being started: the stub needs nothing of the module.
    const HMODULE module = LoadLibraryExW(L"tsyprui.dll", nullptr, DONT_RESOLVE_DLL_REFERENCES);
    ASSERT_NE(nullptr, module);
    for (const char* name : {"DevQueryPrintEx", "DrvDevicePropertySheets", "DrvDocumentEvent", "DrvPrinterEvent"})
    {
        const auto stub =
            reinterpret_cast<decltype(&DevQueryPrintEx)>(reinterpret_cast<void*>(GetProcAddress(module, name)));
        ASSERT_NE(nullptr, stub) << name;
        EXPECT_EQ(1, stub(nullptr)) << name;
    }
    FreeLibrary(module);
}

TEST_F(CapabilityData, IsCopiedOrItsFailureReported)
{
    const std::string noData = kDataLead + "call VpGetDeviceCapabilities to get cap 2.";
    const std::string notOpen = kDataLead + "open remote printer srv\\Office Laser,4.";
    const struct
    {
        CapabilityReply reply;
        int32_t result;
        Bytes data;
        std::string message;
    } cases[] = {{{2, Bytes{1, 0, 9, 0}, 4, 50}, 2, {1, 0, 9, 0}, kDataQuery + "50 with query result 2"},
                 {{0, Bytes{1}, 1, 50}, 0, {1}, kDataQuery + "50 with query result 0"},
                 {{std::nullopt, Bytes{1}, 1, 50}, -1, {1}, kDataQuery + "50 with query result -1"},
                 {{5, std::nullopt, 4}, -1, {}, noData},
                 {{5, Bytes{1, 2}, 0}, -1, {}, noData},
                 {{5, Bytes{1}, 1}, -1, {}, notOpen}};
    for (const auto& one : cases)
    {
        service.opens = one.message != notOpen;
        service.capabilities[DC_PAPERS] = one.reply;
        Messages calls = {"open Office Laser", "caps 2", "close", "freeCaps"};
        calls.resize(!service.opens ? 1 : one.reply.data ? 4 : 3);
        void* data = nullptr;
        uint32_t size = 0;
        EXPECT_EQ(one.result, GetDeviceCapabilitiesData(g_sessionName, DC_PAPERS, nullptr, &data, &size));
        const MallocPtr<BYTE> owner(static_cast<BYTE*>(data));
        EXPECT_EQ(one.data, data == nullptr ? Bytes{} : Bytes(owner.get(), owner.get() + size));
        EXPECT_EQ(calls, service.TakeCalls());
        EXPECT_EQ(one.message, log.Take().back());
    }
}

TEST_F(CapabilityData, MatchedIndexIsTheFirstInsideTheReturnedBytes)
{
    const std::string unread = " failed to retrieve capabilities for DC_";
    const std::string noMatch =
        "verbose GetMatchedMediaTypeIndex, no matched value in array for provided mediaType: 9.";
    const struct
    {
        int32_t count;
        std::vector<uint16_t> list;
        uint32_t index;
        bool read;
    } cases[] = {{3, {1, 9, 9}, 1, true},
                 {3, {1, 2, 3}, kNoIndex, true},
                 {1, {1, 9}, kNoIndex, true}, // the count says where the list ends
                 {0, {9}, kNoIndex, true},
                 {-2, {9}, kNoIndex, true},
                 {1000000, {1, 2, 9}, 2, true}, // the bytes say where the list ends
                 {2147483647, {1, 2}, kNoIndex, true},
                 {-1, {9}, kNoIndex, false},
                 {1, {}, kNoIndex, false}};
    DeviceMode dm = ClientDeviceMode();
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.count);
        const bool found = one.index != kNoIndex;
        service.capabilities[DC_PAPERS] = ListReply(one.count, one.list);
        service.capabilities[DC_MEDIATYPES] =
            ListReply(one.count, std::vector<uint32_t>(one.list.begin(), one.list.end()));
        uint32_t papers = 77;
        EXPECT_EQ(found, GetMatchedPaperSizeIndex(&papers, 9, dm.Get()));
        EXPECT_EQ((Messages{"open Office Laser", "caps 2", "close", "freeCaps"}), service.TakeCalls());
        EXPECT_EQ(dm.Get(), service.LastCapabilityCall().devMode);
        EXPECT_EQ(one.read ? kDataQuery + "0 with query result " + std::to_string(one.count)
                           : "error GetMatchedPaperSizeIndex," + unread + "PAPERS.",
                  log.Take().back());
        uint32_t types = 77;
        EXPECT_EQ(found, GetMatchedMediaTypeIndex(&types, 9, dm.Get()));
        EXPECT_TRUE(papers == one.index && types == one.index) << papers << ' ' << types;
        const std::string last = log.Take().back();
        EXPECT_EQ(one.read && !found, last == noMatch) << last;
        EXPECT_EQ(!one.read, last == "error GetMatchedMediaTypeIndex," + unread + "MEDIATYPES.") << last;
        service.TakeCalls();
    }
    // The width of an entry is not mistaken: 16-bit halves and identifiers with the sign bit set.
    service.capabilities[DC_PAPERS] = ListReply<uint16_t>(2, {1, 0xFFF7});
    service.capabilities[DC_MEDIATYPES] = ListReply<uint32_t>(3, {0x00090000, 0x10009, 0x80000009});
    uint32_t index = 0;
    EXPECT_TRUE(GetMatchedPaperSizeIndex(&index, -9, dm.Get()));
    EXPECT_FALSE(GetMatchedMediaTypeIndex(&index, 9, dm.Get()));
    EXPECT_TRUE(GetMatchedMediaTypeIndex(&index, 0x80000009, dm.Get()));
    EXPECT_EQ(2U, index);
}

} // namespace
} // namespace tsypr::test
