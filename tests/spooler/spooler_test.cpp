// The installed driver as applications meet it: through Windows' printing functions, for every printer that the build
// knows, the imported ones included.
#include <atomic>
#include <exception>
#include <string>
#include <thread>
#include <vector>

#include "remote/private_devmode.h"
#include "tests/service/service_library.h"
#include "tests/spooler/installed_product.h"

namespace tsypr::spooler_tests
{
namespace
{

using printctl::DefaultDevMode;
using printctl::DevModeBuffer;
using printctl::OpenPrinterByName;

// The product's printers.
std::vector<std::wstring> Names()
{
    std::vector<std::wstring> names;
    for (const printctl::PrinterEntry& printer : printctl::ListPrinters(printctl::kDriverName))
    {
        names.push_back(printer.name);
    }
    return names;
}

using Spooler = InstalledProduct;

TEST_F(Spooler, AnswersCapabilitiesAsTheClientPrinterDoes)
{
    const service::test::ServiceLibrary service;
    for (const std::wstring& name : Names())
    {
        void* printer = service.Open(name.c_str());
        for (WORD index = DC_FIELDS; index <= DC_MEDIATYPES; ++index)
        {
            SCOPED_TRACE(std::to_string(index));
            const auto [status, result, data] = service.Ask(printer, index);
            EXPECT_EQ(DeviceCapabilitiesW(name.c_str(), L"nul:", index, nullptr, nullptr), result);
            if (!data.empty())
            {
                std::vector<std::byte> output(data.size() + 2, std::byte{0xA5});
                auto* text = reinterpret_cast<wchar_t*>(output.data());
                EXPECT_EQ(DeviceCapabilitiesW(name.c_str(), L"nul:", index, text, nullptr), result);
                EXPECT_EQ(memcmp(output.data(), data.data(), data.size()), 0);
                EXPECT_EQ(output[data.size()], std::byte{0xA5}) << "written behind the answer";
            }
        }
        service.close(printer);
    }
}

TEST_F(Spooler, GivesTheClientPrintersDeviceMode)
{
    const service::test::ServiceLibrary service;
    for (const std::wstring& name : Names())
    {
        void* printer = service.Open(name.c_str());
        DEVMODEW* theirs = nullptr;
        service.getDevMode(printer, &theirs);
        ASSERT_NE(theirs, nullptr);
        const DevModeBuffer ours = DefaultDevMode(OpenPrinterByName(name), name);
        ASSERT_EQ(DevModeTotalSize(ours.Get()), DevModeTotalSize(theirs));
        EXPECT_EQ(memcmp(ours.Get(), theirs, DevModeTotalSize(theirs)), 0);
        service.freeDevMode(theirs);
        service.close(printer);
    }
}

TEST_F(Spooler, AnswersManyThreadsAtOnce)
{
    const service::test::ServiceLibrary service; // before the threads, so that it is the one that the module uses
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (short number = 0; number < 16; ++number)
    {
        threads.emplace_back(
            [number, &wrong]
            {
                try
                {
                    const std::vector<std::wstring> names = Names();
                    const std::wstring& name = names.at(static_cast<size_t>(number) % names.size());
                    const auto printer = OpenPrinterByName(name);
                    for (short round = 1; round <= 20; ++round)
                    {
                        DevModeBuffer mode = DefaultDevMode(printer, name);
                        mode.Get()->dmCopies = static_cast<short>(number + round);
                        wrong += MergeDevMode(printer, name, mode).Get()->dmCopies == number + round ? 0 : 1;
                    }
                }
                catch (const std::exception& failure)
                {
                    ADD_FAILURE() << failure.what();
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    const VpCallCounters counters = service.Counters();
    EXPECT_GT(counters.openRemotePrinter, 0u);
    EXPECT_EQ(counters.outstandingHandles, 0u);
    EXPECT_EQ(counters.outstandingReplies, 0u);
}

} // namespace
} // namespace tsypr::spooler_tests
