#include "remote/device_capabilities.h"
#include "module/malloc_ptr.h"
#include "remote/driver_exports.h"
#include "tests/remote/fake_service.h"

#include <cstring>

namespace tsypr::test
{
namespace
{

using Messages = std::vector<std::string>;

wchar_t g_sessionName[] = L"srv\\Office Laser,4";
const HANDLE kSomeHandle = reinterpret_cast<HANDLE>(0x1234);
constexpr DWORD kFailed = GDI_ERROR;

class CapabilityExports : public RemoteTest
{
};
class CapabilityData : public RemoteTest
{
};

CapabilityReply Reply(std::optional<int32_t> result, std::optional<Bytes> data, uint32_t size, DWORD status = 0)
{
    CapabilityReply reply;
    reply.result = result;
    reply.data = std::move(data);
    reply.size = size;
    reply.status = status;
    return reply;
}

TEST_F(CapabilityExports, EveryIndexIsForwardedWithTheCallersDeviceMode)
{
    DeviceMode dm(220, 1200);
    for (const int index : {0, 1, 2, 3, 6, 7, 12, 17, 18, 22, 29, 34, 35, 36, 39, 40, 1000, 65535})
    {
        const auto capability = static_cast<WORD>(index);
        service.capabilities[capability] = Reply(index + 5, Bytes{1, 2, 3}, 3, 87);
        for (DEVMODEW* devMode : {dm.Get(), static_cast<DEVMODEW*>(nullptr)})
        {
            EXPECT_EQ(static_cast<DWORD>(index + 5),
                      DrvDeviceCapabilities(kSomeHandle, g_sessionName, capability, nullptr, devMode));
            const CapabilityCall& call = service.LastCapabilityCall();
            EXPECT_EQ(capability, call.capability);
            EXPECT_FALSE(call.wantsData);
            EXPECT_EQ(devMode, call.devMode);
            EXPECT_EQ(devMode != nullptr ? 1420U : 0U, call.devModeSize);
            EXPECT_EQ(-1, call.presetResult);
            EXPECT_EQ((Messages{"open Office Laser", "caps " + std::to_string(index), "close"}), service.TakeCalls());
            EXPECT_EQ("verbose DrvDeviceCapabilities, VpGetDeviceCapabilities(" + std::to_string(index) +
                          ") returned 87 with query result " + std::to_string(index + 5),
                      log.Take().back());
        }
    }
}

TEST_F(CapabilityExports, OutputReceivesExactlyTheReturnedBytes)
{
    const struct
    {
        CapabilityReply reply;
        DWORD result;
        Bytes output;
        bool released;
    } cases[] = {{Reply(3, Bytes{1, 2, 3, 4, 5}, 5, 1), 3, {1, 2, 3, 4, 5, 9}, true},
                 {Reply(3, Bytes{1, 2, 3}, 2), 3, {1, 2, 9, 9, 9, 9}, true},
                 {Reply(7, Bytes{1}, 0), 7, {9, 9, 9, 9, 9, 9}, true},
                 {Reply(7, std::nullopt, 4), 7, {9, 9, 9, 9, 9, 9}, false},
                 {Reply(-1, std::nullopt, 0), kFailed, {9, 9, 9, 9, 9, 9}, false},
                 {Reply(std::nullopt, std::nullopt, 0, 5), kFailed, {9, 9, 9, 9, 9, 9}, false}};
    for (const auto& one : cases)
    {
        service.capabilities[DC_PAPERS] = one.reply;
        Messages calls = {"open Office Laser", "caps 2"};
        calls.insert(calls.end(), one.released ? 1 : 0, "freeCaps");
        calls.emplace_back("close");
        Bytes output(6, 9);
        EXPECT_EQ(one.result, DrvDeviceCapabilities(nullptr, g_sessionName, DC_PAPERS, output.data(), nullptr));
        EXPECT_EQ(one.output, output);
        EXPECT_EQ(calls, service.TakeCalls());
        Bytes spoolerOutput(6, 9);
        EXPECT_EQ(one.result, DrvSplDeviceCaps(nullptr, g_sessionName, DC_PAPERS, spoolerOutput.data(), 0, nullptr));
        EXPECT_EQ(one.output, spoolerOutput);
        EXPECT_EQ(calls, service.TakeCalls());
    }
}

TEST_F(CapabilityExports, UnknownPrinterIsNotClosed)
{
    service.opens = false;
    EXPECT_EQ(kFailed, DrvDeviceCapabilities(nullptr, g_sessionName, DC_PAPERS, nullptr, nullptr));
    EXPECT_EQ(Messages{"open Office Laser"}, service.TakeCalls());
    EXPECT_EQ(Messages{"error DrvDeviceCapabilities, failed to open remote printer srv\\Office Laser,4."},
              log.TakeErrors());
    EXPECT_EQ(kFailed, DrvDeviceCapabilities(nullptr, nullptr, DC_PAPERS, nullptr, nullptr));
}

TEST(DriverExports, OneStubServesWhatIsNotImplemented)
{
    EXPECT_EQ(1, DevQueryPrintEx(nullptr));
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
    for (const char* name :
         {"DrvConvertDevMode", "DrvDeviceCapabilities", "DrvSplDeviceCaps", "DrvDocumentPropertySheets"})
    {
        EXPECT_NE(nullptr, GetProcAddress(module, name)) << name;
    }
    FreeLibrary(module);
}

TEST_F(CapabilityData, IsCopiedOrItsFailureReported)
{
    const Messages callsWithData = {"open Office Laser", "caps 2", "close", "freeCaps"};
    const Messages callsWithout = {"open Office Laser", "caps 2", "close"};
    const std::string noData = "error GetDeviceCapabilitiesData, failed to call VpGetDeviceCapabilities to get cap 2.";
    const std::string query = "verbose GetDeviceCapabilitiesData, VpGetDeviceCapabilities(2) returned 50 with query "
                              "result ";
    const struct
    {
        bool opens;
        CapabilityReply reply;
        int32_t result;
        Bytes data;
        Messages calls;
        std::string message;
    } cases[] = {{true, Reply(2, Bytes{1, 0, 9, 0}, 4, 50), 2, {1, 0, 9, 0}, callsWithData, query + "2"},
                 {true, Reply(0, Bytes{1}, 1, 50), 0, {1}, callsWithData, query + "0"},
                 {true, Reply(std::nullopt, Bytes{1}, 1, 50), -1, {1}, callsWithData, query + "-1"},
                 {true, Reply(5, std::nullopt, 0), -1, {}, callsWithout, noData},
                 {true, Reply(5, std::nullopt, 4), -1, {}, callsWithout, noData},
                 {true, Reply(5, Bytes{1, 2}, 0), -1, {}, callsWithData, noData},
                 {false,
                  Reply(5, Bytes{1}, 1),
                  -1,
                  {},
                  {"open Office Laser"},
                  "error GetDeviceCapabilitiesData, failed to open remote printer srv\\Office Laser,4."}};
    for (const auto& one : cases)
    {
        service.opens = one.opens;
        service.capabilities[DC_PAPERS] = one.reply;
        void* data = nullptr;
        uint32_t size = 0;
        EXPECT_EQ(one.result, GetDeviceCapabilitiesData(g_sessionName, DC_PAPERS, nullptr, &data, &size));
        const MallocPtr<BYTE> owner(static_cast<BYTE*>(data));
        EXPECT_EQ(one.data, data == nullptr ? Bytes{} : Bytes(owner.get(), owner.get() + size));
        EXPECT_EQ(one.calls, service.TakeCalls());
        EXPECT_EQ(one.message, log.Take().back());
    }
}

TEST_F(CapabilityData, MatchedIndexIsTheFirstInsideTheReturnedBytes)
{
    const std::string noMatch =
        "verbose GetMatchedMediaTypeIndex, no matched value in array for provided mediaType: 9.";
    const struct
    {
        int32_t count;
        std::vector<uint16_t> list;
        bool found;
        uint32_t index;
        bool read;
    } cases[] = {{3, {1, 9, 9}, true, 1, true},
                 {3, {1, 2, 3}, false, kNoIndex, true},
                 {1, {1, 9}, false, kNoIndex, true}, // the count says where the list ends
                 {0, {9}, false, kNoIndex, true},    // an empty list
                 {-2, {9}, false, kNoIndex, true},
                 {1000000, {1, 2, 9}, true, 2, true}, // the bytes say where the list ends
                 {2147483647, {1, 2}, false, kNoIndex, true},
                 {-1, {9}, false, kNoIndex, false},
                 {1, {}, false, kNoIndex, false}};
    const DeviceMode dm = ClientDeviceMode();
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.count);
        const std::vector<uint32_t> wideList(one.list.begin(), one.list.end());
        service.capabilities[DC_PAPERS] = ListReply(one.count, one.list);
        service.capabilities[DC_MEDIATYPES] = ListReply(one.count, wideList);
        uint32_t index = 77;
        EXPECT_EQ(one.found, GetMatchedPaperSizeIndex(&index, 9, dm.Get()));
        EXPECT_EQ(one.index, index);
        EXPECT_EQ((Messages{"open Office Laser", "caps 2", "close", "freeCaps"}), service.TakeCalls());
        EXPECT_EQ(dm.Get(), service.LastCapabilityCall().devMode);
        EXPECT_EQ(one.read ? "verbose GetDeviceCapabilitiesData, VpGetDeviceCapabilities(2) returned 0 with query "
                             "result " +
                                 std::to_string(one.count)
                           : "error GetMatchedPaperSizeIndex, failed to retrieve capabilities for DC_PAPERS.",
                  log.Take().back());
        index = 77;
        EXPECT_EQ(one.found, GetMatchedMediaTypeIndex(&index, 9, dm.Get()));
        EXPECT_EQ(one.index, index);
        const std::string last = log.Take().back();
        EXPECT_EQ(one.read && !one.found, last == noMatch) << last;
        EXPECT_EQ(!one.read,
                  last == "error GetMatchedMediaTypeIndex, failed to retrieve capabilities for DC_MEDIATYPES.")
            << last;
        service.TakeCalls();
    }
    // The width of an entry is not mistaken: 16-bit halves and identifiers with the sign bit set.
    service.capabilities[DC_PAPERS] = ListReply<uint16_t>(2, {1, 0xFFF7});
    service.capabilities[DC_MEDIATYPES] = ListReply<uint32_t>(3, {0x00090000, 0x10009, 0x80000009});
    uint32_t index = 0;
    EXPECT_TRUE(GetMatchedPaperSizeIndex(&index, -9, dm.Get()));
    EXPECT_EQ(1U, index);
    EXPECT_FALSE(GetMatchedMediaTypeIndex(&index, 9, dm.Get()));
    EXPECT_TRUE(GetMatchedMediaTypeIndex(&index, 0x80000009, dm.Get()));
    EXPECT_EQ(2U, index);
}

TEST_F(CapabilityData, PaperDimensionsEndWithTheReturnedBytes)
{
    const DeviceMode dm = ClientDeviceMode();
    service.capabilities[DC_PAPERSIZE] = ListReply<POINT>(1000, {{2159, 2794}, {2100, 2970}});
    POINT dimension = {};
    EXPECT_TRUE(GetPaperDimensionByIndex(1, dm.Get(), &dimension));
    EXPECT_EQ(2100, dimension.x);
    EXPECT_EQ(2970, dimension.y);
    EXPECT_EQ(Messages{}, log.TakeErrors());
    EXPECT_FALSE(GetPaperDimensionByIndex(2, dm.Get(), &dimension));
    EXPECT_EQ(Messages{"error GetPaperDimensionByIndex, failed to retrieve capabilities for DC_PAPERSIZE."},
              log.TakeErrors());
}

} // namespace
} // namespace tsypr::test
