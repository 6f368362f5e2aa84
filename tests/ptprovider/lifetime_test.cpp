// Many conversions and on many threads: nothing is kept and nothing is mixed up. No memory for what is handed out.
#include "tests/module/heap_blocks.h"
#include "tests/ptprovider/provider_fixture.h"

#include <atomic>
#include <thread>

namespace tsypr::test
{
namespace
{

template <class Function>
Function* Real(const wchar_t* library, const char* name)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}

// Texts run out where memory does: what malloc refuses, this does, too.
BSTR WINAPI NewText(const OLECHAR* text, UINT length)
{
    static const auto s_real = Real<decltype(SysAllocStringLen)>(L"oleaut32.dll", "SysAllocStringLen");
    void* gate = std::malloc(1);
    std::free(gate);
    return gate != nullptr ? s_real(text, length) : nullptr;
}

bool g_noOutput = false; // what is made for the caller

BSTR WINAPI NewOutputText(const OLECHAR* text)
{
    static const auto s_real = Real<decltype(SysAllocString)>(L"oleaut32.dll", "SysAllocString");
    return g_noOutput ? nullptr : s_real(text);
}
void* WINAPI NewTaskMemory(SIZE_T size)
{
    static const auto s_real = Real<decltype(CoTaskMemAlloc)>(L"ole32.dll", "CoTaskMemAlloc");
    return g_noOutput ? nullptr : s_real(size);
}
HLOCAL WINAPI NewLocal(UINT flags, SIZE_T size)
{
    static const auto s_real = Real<decltype(LocalAlloc)>(L"kernel32.dll", "LocalAlloc");
    return g_noOutput ? nullptr : s_real(flags, size);
}

} // namespace
} // namespace tsypr::test

// The program's only way to the system's functions.
#define TESSARY_REPLACE(function, by)                                                                                  \
    extern "C" decltype(&(function)) __imp_##function;                                                                 \
    decltype(&(function)) __imp_##function = tsypr::test::by
TESSARY_REPLACE(SysAllocStringLen, NewText);
TESSARY_REPLACE(SysAllocString, NewOutputText);
TESSARY_REPLACE(CoTaskMemAlloc, NewTaskMemory);
TESSARY_REPLACE(LocalAlloc, NewLocal);

namespace tsypr::test
{
namespace
{

class Lifetime : public ProviderTest
{
protected:
    Lifetime()
    {
        AnswerEverything();
        service.notesCalls = false;
    }
};

// One conversion of each kind and what it must give; S_OK when all went well.
HRESULT ConvertEverything(IPrintTicketProvider* provider, DeviceMode& dm, IXMLDOMDocument2* ticket)
{
    HRESULT result = provider->ConvertDevModeToPrintTicket(0, dm.Get(), ticket);
    ULONG size = 0;
    DEVMODEW* out = nullptr;
    result = result == S_OK ? provider->ConvertPrintTicketToDevMode(ticket, 0, nullptr, &size, &out) : result;
    const OutDevMode owner(out);
    ComPtr<IXMLDOMDocument2> capabilities;
    result = result == S_OK ? provider->GetPrintCapabilities(ticket, capabilities.GetAddressOf()) : result;
    result = result == S_OK ? provider->ValidatePrintTicket(ticket) : result;
    if (result == S_OK)
    {
        ticket->Release(); // the one that validation leaves
        const PrivateDevMode* block = GetPrivateDevMode(out);
        const bool right = block != nullptr && block->pagesPerSheet == dm.Private().pagesPerSheet &&
                           Text(block->nupLayout) == Text(dm.Private().nupLayout) && out->dmMediaType == 300;
        return right ? S_OK : E_UNEXPECTED;
    }
    return result;
}

TEST_F(Lifetime, NothingIsKeptOverTenThousandConversions)
{
    DeviceMode dm = FullDeviceMode();
    const auto ticket = Load(FullTicket());
    LogStop();
    const auto convert = [&](int rounds)
    {
        for (int i = 0; i < rounds; ++i)
        {
            ASSERT_EQ(S_OK, ConvertEverything(NewProvider().Get(), dm, ticket.Get()));
        }
    };
    convert(10); // for what is kept from first use on
    const size_t before = BusyBlocks();
    convert(2500);
    EXPECT_LE(BusyBlocks(), before + 20);
    EXPECT_EQ(1U, References(ticket.Get()));
}

TEST_F(Lifetime, NoMemoryForWhatTheCallerGets)
{
    service.notesCalls = true;
    ULONG bytes = 0;
    DEVMODEW untouched = {};
    DEVMODEW* out = &untouched;
    INT number = 7;
    INT* versions = &number;
    BSTR uri = nullptr;
    g_noOutput = true;
    EXPECT_EQ(E_OUTOFMEMORY, provider->ConvertPrintTicketToDevMode(nullptr, 0, nullptr, &bytes, &out));
    EXPECT_EQ(E_OUTOFMEMORY, provider->GetSupportedVersions(nullptr, &versions, &number));
    EXPECT_EQ(E_OUTOFMEMORY, provider->QueryDeviceNamespace(&uri));
    g_noOutput = false;
    EXPECT_EQ(service.ptReplies[kPT2DM].data->size(), bytes);
    EXPECT_EQ(&untouched, out);
    EXPECT_TRUE(versions == &number && number == 7 && uri == nullptr);
    EXPECT_EQ("open query PT2DM freeDevMode close", Calls());
    const std::string lead = "error PTProvider::";
    EXPECT_EQ((Messages{lead + "ConvertPrintTicketToDevMode, failed to allocate DEVMODE",
                        lead + "GetSupportedVersions, failed to call CoTaskMemAlloc.",
                        lead + "QueryDeviceNamespace, failed to call SysAllocString."}),
              log.TakeErrors());
}

TEST_F(Lifetime, ThreadsConvertWithObjectsOfTheirOwn)
{
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (uint32_t number = 1; number <= 8; ++number)
    {
        threads.emplace_back(
            [&, number]
            {
                const ComThread thread;
                const auto own = NewProvider();
                EXPECT_EQ(S_OK, Bind(own.Get()));
                DeviceMode dm = FullDeviceMode();
                dm.Private().pagesPerSheet = number;
                dm.Private().nupLayout.Write(std::to_wstring(number).c_str());
                for (int round = 0; round < 60; ++round)
                {
                    const auto ticket = Load(FullTicket());
                    wrong += ConvertEverything(own.Get(), dm, ticket.Get()) == S_OK ? 0 : 1;
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
    log.Take(); // every line is whole
}

} // namespace
} // namespace tsypr::test
