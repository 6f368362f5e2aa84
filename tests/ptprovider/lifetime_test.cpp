// Many conversions, on many threads, and with memory running out: nothing is kept and nothing is mixed up.
#include "tests/module/heap_blocks.h"
#include "tests/ptprovider/provider_fixture.h"
#include "tests/remote/allocation_faults.h"

#include <atomic>
#include <functional>
#include <thread>

namespace tsypr::test
{
namespace
{

// Texts run out where memory does: what malloc refuses, this does, too.
BSTR WINAPI NewText(const OLECHAR* text, UINT length)
{
    static const auto s_real = reinterpret_cast<decltype(&SysAllocStringLen)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"oleaut32.dll"), "SysAllocStringLen")));
    void* gate = std::malloc(1);
    std::free(gate);
    return gate != nullptr ? s_real(text, length) : nullptr;
}

bool g_noLocalMemory = false;

HLOCAL WINAPI NewLocal(UINT flags, SIZE_T size)
{
    static const auto s_real = reinterpret_cast<decltype(&LocalAlloc)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LocalAlloc")));
    return g_noLocalMemory ? nullptr : s_real(flags, size);
}

} // namespace
} // namespace tsypr::test

// The program's only way to the system's functions.
extern "C" decltype(&SysAllocStringLen) __imp_SysAllocStringLen;
decltype(&SysAllocStringLen) __imp_SysAllocStringLen = tsypr::test::NewText;
extern "C" decltype(&LocalAlloc) __imp_LocalAlloc;
decltype(&LocalAlloc) __imp_LocalAlloc = tsypr::test::NewLocal;

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

    DeviceMode Settings() const
    {
        DeviceMode dm = ClientDeviceMode();
        dm->dmFields |= DM_MEDIATYPE;
        dm->dmMediaType = 300;
        dm.Private().featureBitmap = kFeatureNup | kFeatureFinishing;
        return dm;
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
    DeviceMode dm = Settings();
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
    EXPECT_NEAR(static_cast<double>(before), static_cast<double>(BusyBlocks()), 20);
    EXPECT_EQ(1U, References(ticket.Get()));
}

TEST_F(Lifetime, NoMemoryForTheDeviceMode)
{
    service.notesCalls = true;
    ULONG bytes = 0;
    DEVMODEW untouched = {};
    DEVMODEW* out = &untouched;
    g_noLocalMemory = true;
    EXPECT_EQ(E_OUTOFMEMORY, provider->ConvertPrintTicketToDevMode(nullptr, 0, nullptr, &bytes, &out));
    g_noLocalMemory = false;
    EXPECT_EQ(service.ptReplies[kPT2DM].data->size(), bytes);
    EXPECT_EQ(&untouched, out);
    EXPECT_EQ("open query PT2DM freeDevMode close", Calls());
    EXPECT_EQ(Messages{"error PTProvider::ConvertPrintTicketToDevMode, failed to allocate DEVMODE"}, log.TakeErrors());
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
                DeviceMode dm = Settings();
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

TEST_F(Lifetime, MemoryRunsOutAnywhere)
{
    DeviceMode dm = Settings();
    const auto ticket = Load(FullTicket());
    ComPtr<IPrintTicketProvider> other;
    EXPECT_THROW(throw _com_error(E_FAIL), _com_error); // for what exceptions keep from first use on
    const std::pair<int, std::function<HRESULT()>> uses[] = {
        {2,
         [&]
         {
             other.Reset();
             ComPtr<IClassFactory> factory;
             const HRESULT result = DllGetClassObject(
                 kClsidPTProvider, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf()));
             return result != S_OK ? result
                                   : factory->CreateInstance(nullptr,
                                                             kIidPrintTicketProvider,
                                                             reinterpret_cast<void**>(other.GetAddressOf()));
         }},
        {2, [&] { return Bind(provider.Get()); }},
        {20, [&] { return provider->ConvertDevModeToPrintTicket(0, dm.Get(), ticket.Get()); }},
        {20,
         [&]
         {
             OutDevMode out;
             return ConvertTicket(ticket.Get(), out);
         }},
        {3,
         [&]
         {
             ComPtr<IXMLDOMDocument2> capabilities;
             return provider->GetPrintCapabilities(ticket.Get(), capabilities.GetAddressOf());
         }}};
    for (const auto& [least, use] : uses)
    {
        EXPECT_EQ(S_OK, use());
        log.Take();
        int failures = 0;
        for (long n = 0;; ++n)
        {
            const long before = LiveAllocations();
            HRESULT result = S_OK;
            bool happened = false;
            {
                const AllocationFault fault(n);
                result = use();
                happened = fault.Happened();
            }
            if (!happened)
            {
                break;
            }
            // A look-up that fails is said and left out; anything else ends the conversion.
            EXPECT_TRUE(result == S_OK || result == E_OUTOFMEMORY || result == E_FAIL) << result;
            EXPECT_NE(Messages{}, log.TakeErrors()) << n;
            EXPECT_NEAR(static_cast<double>(before), static_cast<double>(LiveAllocations()), 1) << n; // the name's
            failures += result != S_OK ? 1 : 0;
        }
        EXPECT_GE(failures, least);
        EXPECT_EQ(1U, References(ticket.Get()));
    }
}

} // namespace
} // namespace tsypr::test
