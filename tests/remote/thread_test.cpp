// Many threads at once, as applications, the spooler and the print ticket services call.
#include "remote/device_capabilities.h"
#include "remote/devmode_merge.h"
#include "remote/driver_exports.h"
#include "tests/remote/fake_service.h"
#include "ui/document_property_header.h"
#include "ui/document_property_sheets.h"

#include <atomic>
#include <map>
#include <thread>

namespace tsypr::test
{
namespace
{

constexpr int kThreads = 16;
constexpr int kRounds = 12;

// Whether everything that one call of each kind gave is right; `number` differs between all calls.
bool UseEverything(const DeviceMode& client, short number)
{
    wchar_t name[] = L"srv\\Office Laser,4";
    DeviceMode in = client;
    in->dmFields = DM_COPIES | DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_MEDIATYPE | DM_DEFAULTSOURCE;
    in->dmCopies = number;
    in->dmDefaultSource = static_cast<short>(1000 + number);
    in->dmMediaType = number % 2 == 0 ? 5U : 6U;
    DeviceMode out;
    DOCUMENTPROPERTYHEADER header = {};
    header.hPrinter = INVALID_HANDLE_VALUE;
    header.pszPrinterName = name;
    header.pdmIn = in.Get();
    header.pdmOut = out.Get();
    header.fMode = DM_IN_BUFFER | DM_OUT_BUFFER;
    bool right = DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)) == 1;
    right = right && out->dmCopies == number && out->dmPaperLength == 2970 && out->dmPaperWidth == 2100 &&
            out->dmMediaType == (number % 2 == 0 ? 5U : 0U) && out->dmDefaultSource == 1000 + number;
    uint16_t papers[2] = {};
    right = right && DrvDeviceCapabilities(nullptr, name, DC_PAPERS, papers, out.Get()) == 2 && papers[1] == 9;
    LONG needed = 0;
    DeviceMode fresh;
    return right && DrvConvertDevMode(name, nullptr, fresh.Get(), &needed, 4) != FALSE &&
           fresh.Whole() == client.Whole();
}

TEST_F(RemoteTest, ManyThreadsGetTheirOwnAnswersAndWholeLogLines)
{
    const DeviceMode client = ClientDeviceMode();
    service.devMode = client.Whole();
    service.notesCalls = false;
    service.capabilities[DC_PAPERS] = ListReply<uint16_t>(2, {1, 9});
    service.capabilities[DC_PAPERSIZE] = ListReply<POINT>(2, {{2159, 2794}, {2100, 2970}});
    service.capabilities[DC_MEDIATYPES] = ListReply<uint32_t>(2, {1, 5});
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
    {
        threads.emplace_back(
            [&, thread]
            {
                for (int round = 0; round < kRounds; ++round)
                {
                    wrong += UseEverything(client, static_cast<short>(thread * kRounds + round)) ? 0 : 1;
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
    std::map<std::string, int> counts;
    for (const std::string& message : log.Take())
    {
        ++counts[message];
    }
    constexpr int kCalls = kThreads * kRounds;
    EXPECT_EQ(kCalls, counts["verbose PrintUtils::DumpDevMode(): UIINFO is NULL, dmOut:"]);
    EXPECT_EQ(2 * kCalls, counts["verbose PrintUtils::DumpDevMode(): dm returned by VpGetDevMode():"]);
    EXPECT_EQ(kCalls / 2,
              counts["verbose GetMatchedMediaTypeIndex, no matched value in array for provided mediaType: 6."]);
    for (int number = 0; number < kCalls; ++number) // once in dmIn, once in dmOut: no thread's name shows in another's
    {
        EXPECT_EQ(2, counts["verbose    pDevMode.dmDefaultSource = " + std::to_string(1000 + number) + " (set)"]);
    }
}

} // namespace
} // namespace tsypr::test
