// The installed driver as applications meet it: through Windows' printing functions, for every printer that the build
// knows, the imported ones included.
#include <windows.h>

#include <winspool.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "remote/private_devmode.h"
#include "service/vp_api.h"
#include "tests/printctl/printctl_fixture.h"

namespace tsypr::spooler_tests
{
namespace
{

using printctl_tests::Json;
using printctl_tests::QueryJson;
using printctl_tests::RunPrintctl;

template <typename Function>
Function ServiceFunction(const char* name)
{
    static const HMODULE library = LoadLibraryW(L"tsyprserverapi.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}
#define SERVICE(function) ServiceFunction<decltype(&(function))>(#function)

struct CloseService
{
    void operator()(void* handle) const
    {
        SERVICE(VpCloseRemotePrinter)(handle);
    }
};
using ServicePrinter = std::unique_ptr<void, CloseService>;

ServicePrinter OpenService(const std::wstring& name)
{
    void* handle = nullptr;
    SERVICE(VpOpenRemotePrinter)(name.c_str(), &handle);
    return ServicePrinter(handle);
}

// A device mode in memory of its own.
struct DeviceMode
{
    std::vector<std::byte> bytes;

    DEVMODEW* Get()
    {
        return reinterpret_cast<DEVMODEW*>(bytes.data());
    }
    DEVMODEW* operator->()
    {
        return Get();
    }
};

class SpoolerPrinter
{
public:
    explicit SpoolerPrinter(std::wstring name) : m_name(std::move(name))
    {
        EXPECT_TRUE(OpenPrinterW(m_name.data(), &m_handle, nullptr));
    }
    ~SpoolerPrinter()
    {
        ClosePrinter(m_handle);
    }
    SpoolerPrinter(const SpoolerPrinter&) = delete;
    SpoolerPrinter& operator=(const SpoolerPrinter&) = delete;

    LONG Size()
    {
        return DocumentPropertiesW(nullptr, m_handle, m_name.data(), nullptr, nullptr, 0);
    }
    DeviceMode Default()
    {
        DeviceMode mode{std::vector<std::byte>(static_cast<size_t>(Size()))};
        EXPECT_EQ(DocumentPropertiesW(nullptr, m_handle, m_name.data(), mode.Get(), nullptr, DM_OUT_BUFFER), IDOK);
        return mode;
    }
    // As most applications do it: the same memory in and out.
    void Merge(DeviceMode& mode)
    {
        const DWORD flags = DM_IN_BUFFER | DM_OUT_BUFFER;
        EXPECT_EQ(DocumentPropertiesW(nullptr, m_handle, m_name.data(), mode.Get(), mode.Get(), flags), IDOK);
    }

private:
    std::wstring m_name;
    HANDLE m_handle = nullptr;
};

std::wstring Wide(const std::string& text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end())).wstring();
}

class Spooler : public testing::Test
{
public:
    static void SetUpTestSuite()
    {
        const auto installed = RunPrintctl({L"install"});
        ASSERT_EQ(installed.code, 0) << installed.error;
        const Json listed = QueryJson({L"printers"});
        for (const Json& printer : listed.contains("printers") ? listed["printers"] : listed)
        {
            s_printers.push_back(Wide(printer.at("name").get<std::string>()));
        }
    }
    static void TearDownTestSuite()
    {
        EXPECT_EQ(RunPrintctl({L"remove"}).code, 0);
    }

protected:
    static inline std::vector<std::wstring> s_printers;
};

TEST_F(Spooler, HasThePrintersOfTheProfiles)
{
    for (const wchar_t* name : {L"Office Laser", L"Studio Color"})
    {
        EXPECT_NE(std::find(s_printers.begin(), s_printers.end(), name), s_printers.end()) << name;
    }
}

TEST_F(Spooler, AnswersCapabilitiesAsTheClientPrinterDoes)
{
    for (const std::wstring& name : s_printers)
    {
        const ServicePrinter service = OpenService(name);
        ASSERT_NE(service, nullptr);
        for (WORD index = DC_FIELDS; index <= DC_MEDIATYPES; ++index)
        {
            SCOPED_TRACE(std::to_string(index));
            DWORD size = 0;
            void* data = nullptr;
            LONG result = -1;
            SERVICE(VpGetDeviceCapabilities)(service.get(), index, &size, &data, 0, nullptr, &result);
            EXPECT_EQ(DeviceCapabilitiesW(name.c_str(), L"nul:", index, nullptr, nullptr), result);
            if (data != nullptr)
            {
                std::vector<std::byte> output(size + 2, std::byte{0xA5});
                auto* text = reinterpret_cast<wchar_t*>(output.data());
                EXPECT_EQ(DeviceCapabilitiesW(name.c_str(), L"nul:", index, text, nullptr), result);
                EXPECT_EQ(memcmp(output.data(), data, size), 0);
                EXPECT_EQ(output[size], std::byte{0xA5}) << "written behind the answer";
                SERVICE(VpFreeDeviceCapabilities)(data);
            }
        }
    }
}

TEST_F(Spooler, GivesTheClientPrintersDeviceMode)
{
    for (const std::wstring& name : s_printers)
    {
        const ServicePrinter service = OpenService(name);
        DEVMODEW* theirs = nullptr;
        SERVICE(VpGetDevMode)(service.get(), &theirs);
        ASSERT_NE(theirs, nullptr);
        SpoolerPrinter printer(name);
        ASSERT_EQ(static_cast<size_t>(printer.Size()), DevModeTotalSize(theirs));
        EXPECT_EQ(memcmp(printer.Default().Get(), theirs, DevModeTotalSize(theirs)), 0);
        SERVICE(VpFreeDevMode)(theirs);
    }
}

TEST_F(Spooler, MergesWhatThePrinterOffersAndNothingLocked)
{
    SpoolerPrinter printer(L"Office Laser");
    DeviceMode mode = printer.Default();
    mode->dmDuplex = DMDUP_HORIZONTAL; // locked by the profile
    mode->dmPaperSize = DMPAPER_LETTER;
    mode->dmFields |= DM_PAPERLENGTH | DM_PAPERWIDTH;
    mode->dmPaperWidth = 1; // a listed paper's size is the printer's business
    mode->dmPaperLength = 1;
    mode->dmCopies = 7;
    GetPrivateDevMode(mode.Get())->lockedSettings = 0; // no application lifts a lock
    printer.Merge(mode);
    EXPECT_EQ(mode->dmDuplex, DMDUP_VERTICAL);
    EXPECT_EQ(mode->dmPaperSize, DMPAPER_LETTER);
    EXPECT_EQ(mode->dmPaperWidth, 2159);
    EXPECT_EQ(mode->dmPaperLength, 2794);
    EXPECT_EQ(mode->dmCopies, 7);
    EXPECT_EQ(GetPrivateDevMode(mode.Get())->lockedSettings, kLockedDuplex);

    mode->dmPaperSize = DMPAPER_A3; // not offered: the printer's own setting comes back
    printer.Merge(mode);
    EXPECT_EQ(mode->dmPaperSize, DMPAPER_A4);
}

TEST_F(Spooler, AnswersManyThreadsAtOnce)
{
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (short number = 0; number < 16; ++number)
    {
        threads.emplace_back(
            [number, &wrong]
            {
                SpoolerPrinter printer(s_printers[static_cast<size_t>(number) % s_printers.size()]);
                for (short round = 1; round <= 20; ++round)
                {
                    DeviceMode mode = printer.Default();
                    mode->dmCopies = static_cast<short>(number + round);
                    printer.Merge(mode);
                    wrong += mode->dmCopies == number + round ? 0 : 1;
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    VpCallCounters counters;
    SERVICE(VpReadCallCounters)(&counters);
    EXPECT_EQ(counters.outstandingHandles, 0u);
    EXPECT_EQ(counters.outstandingReplies, 0u);
}

} // namespace
} // namespace tsypr::spooler_tests
