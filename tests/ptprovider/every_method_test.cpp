// Every method with what may go wrong around it: texts from the client that are no documents or very large ones, memory
// that runs out.
#include "ptprovider/print_caps_doc.h"
#include "tests/module/heap_blocks.h"
#include "tests/ptprovider/provider_fixture.h"
#include "tests/remote/allocation_faults.h"

#include <cstdlib>
#include <functional>

namespace tsypr::test
{
namespace
{

std::string Repeated(const std::string& text, size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    while (count-- != 0)
    {
        all += text;
    }
    return all;
}

class EveryMethod : public ProviderTest
{
protected:
    EveryMethod() : whole(Load(FullTicket())), ticket(Load(FullTicket())), dm(FullDeviceMode())
    {
        AnswerEverything();
        service.notesCalls = false;
    }

    HRESULT Capabilities(IXMLDOMDocument2* from)
    {
        ComPtr<IXMLDOMDocument2> capabilities;
        const HRESULT result = provider->GetPrintCapabilities(from, capabilities.GetAddressOf());
        EXPECT_EQ(result == S_OK, capabilities != nullptr);
        return result;
    }
    HRESULT Validate()
    {
        const HRESULT result = provider->ValidatePrintTicket(ticket.Get());
        while (References(ticket.Get()) > 1) // the reference that validation leaves
        {
            ticket->Release();
        }
        return result;
    }
    HRESULT ToDevMode()
    {
        OutDevMode out;
        return ConvertTicket(whole.Get(), out);
    }
    HRESULT CapabilitiesForDevMode(const DEVMODEW* devMode, IXMLDOMDocument2* target)
    {
        auto* capabilities = target;
        wchar_t name[] = L"Office Laser";
        const bool result = GetPrintCapsXmlDoc(name, devMode, &capabilities);
        EXPECT_TRUE(target != nullptr ? capabilities == target : result == (capabilities != nullptr));
        if (target == nullptr && capabilities != nullptr)
        {
            capabilities->Release();
        }
        return result ? S_OK : E_FAIL;
    }

    struct Use
    {
        std::string method; // that reports a text which does not load
        uint32_t kind;
        HRESULT result;    // with such a text
        int memoryResults; // at least so many allocations end the whole call
        std::function<HRESULT()> call;
    };
    const std::vector<Use> uses = {
        {"PTProvider::ConvertDevModeToPrintTicket",
         kDM2PT,
         E_FAIL,
         20,
         [this] { return provider->ConvertDevModeToPrintTicket(0, dm.Get(), ticket.Get()); }},
        {"PTProvider::ValidatePrintTicket", kPTCHK, E_FAIL, 2, [this] { return Validate(); }},
        {"PTProvider::GetPrintCapabilities", kPT2PC, E_FAIL, 3, [this] { return Capabilities(whole.Get()); }},
        {"PTProvider::GetPrintCapabilities", kPT2PC, S_OK, 20, [this] { return ToDevMode(); }}, // which goes on without
        {"GetPrintCapsXmlDoc", kDM2PT, E_FAIL, 5, [this] { return CapabilitiesForDevMode(dm.Get(), nullptr); }},
        {"GetPrintCapsXmlDoc", kPT2PC, E_FAIL, 1, [this] { return CapabilitiesForDevMode(nullptr, ticket.Get()); }}};

    void ExpectRefused(const std::vector<std::string>& texts)
    {
        for (const Use& use : uses)
        {
            for (const std::string& text : texts)
            {
                SCOPED_TRACE(use.method + " " + text.substr(0, 50));
                service.ptReplies[use.kind].data = BytesOf(text);
                EXPECT_EQ(use.result, use.call());
                EXPECT_EQ((Messages{"error Mem2IXML, failed to load xml doc from stream, error 1.",
                                    "error " + use.method + ", failed to call Mem2IXML."}),
                          log.TakeErrors());
            }
            AnswerEverything();
        }
    }

    const ComPtr<IXMLDOMDocument2> whole;
    ComPtr<IXMLDOMDocument2> ticket; // whose content is replaced
    DeviceMode dm;
};

TEST_F(EveryMethod, RefusesForeignTextsWhateverTheCallersDocumentLoads)
{
    const std::string dtd =
        "<!DOCTYPE a SYSTEM \"file:///z:/etc/hostname\" [<!ENTITY e SYSTEM \"file:///z:/etc/hostname\">]>";
    const std::vector<std::string> texts = {" ",
                                            "no document",
                                            FullTicket().substr(0, 900),
                                            Repeated("<e>", 100000),
                                            Repeated("<e>", 300) + Repeated("</e>", 300),
                                            dtd + "<a>&e;</a>",
                                            "<!DOCTYPE a [<!ENTITY e \"x\">]><a>&e;</a>",
                                            std::string("\0\0", 2),
                                            "<a>\xFF\xFE</a>",
                                            std::string(1 << 20, 'x')};
    const auto settingsOf = [&]
    {
        VARIANT_BOOL async = 7, validates = 7, resolves = 7;
        Variant prohibits;
        ticket->get_async(&async);
        ticket->get_validateOnParse(&validates);
        ticket->get_resolveExternals(&resolves);
        ticket->getProperty(Bstr(L"ProhibitDTD").Get(), prohibits.Receive());
        return std::vector<VARIANT_BOOL>{async, validates, resolves, prohibits.Get().boolVal};
    };
    size_t blocks = 0;
    long live = 0; // what the first time has kept stays
    for (const VARIANT_BOOL lenient : {VARIANT_TRUE, VARIANT_FALSE, VARIANT_TRUE, VARIANT_FALSE})
    {
        const VARIANT_BOOL strict = lenient == VARIANT_TRUE ? VARIANT_FALSE : VARIANT_TRUE;
        VARIANT prohibits = {};
        prohibits.vt = VT_BOOL;
        prohibits.boolVal = strict;
        EXPECT_EQ(S_OK, ticket->put_async(lenient));
        EXPECT_EQ(S_OK, ticket->put_validateOnParse(lenient));
        EXPECT_EQ(S_OK, ticket->put_resolveExternals(lenient));
        EXPECT_EQ(S_OK, ticket->setProperty(Bstr(L"ProhibitDTD").Get(), prohibits));
        const std::vector<VARIANT_BOOL> expected = {lenient, lenient, lenient, strict};
        ExpectRefused(texts);
        EXPECT_EQ(expected, settingsOf());
        for (const Use& use : uses) // a good one leaves them, too
        {
            EXPECT_EQ(S_OK, use.call());
            EXPECT_EQ(expected, settingsOf());
        }
        log.Take();
        EXPECT_TRUE(live == 0 || live == LiveAllocations()) << live << " " << LiveAllocations();
        blocks = blocks == 0 ? BusyBlocks() : blocks;
        live = LiveAllocations();
    }
    EXPECT_LE(BusyBlocks(), blocks + 20);
}

TEST_F(EveryMethod, WithoutAReplyLeavesWhatItWasGiven)
{
    service.notesCalls = true;
    const auto toDevMode = [this]
    {
        ULONG bytes = 77;
        DEVMODEW* out = dm.Get();
        const HRESULT result = provider->ConvertPrintTicketToDevMode(nullptr, 0, nullptr, &bytes, &out);
        EXPECT_TRUE(bytes == 77 && out == dm.Get());
        return result;
    };
    const auto capabilities = [this]
    {
        auto* out = ticket.Get();
        const HRESULT result = provider->GetPrintCapabilities(whole.Get(), &out);
        EXPECT_EQ(ticket.Get(), out);
        return result;
    };
    const std::function<HRESULT()> calls[] = {toDevMode, uses[0].call, capabilities, uses[1].call}; // by kind
    for (uint32_t kind = kPT2DM; kind <= kPTCHK; ++kind)
    {
        std::vector<PTReply> replies = {{E_ACCESSDENIED, std::nullopt, std::nullopt, 5},
                                        {S_OK, std::nullopt, 77U},
                                        {kConflictResolved, Bytes(1), 0U}};
        replies.resize(kind == kDM2PT ? 4 : 3, {S_OK, Bytes(1), 0x80000000U}); // which counts as negative there
        for (const PTReply& reply : replies)
        {
            service.ptReplies[kind] = reply;
            service.TakeCalls();
            log.Take();
            EXPECT_EQ(reply.result, calls[kind]());
            const std::string release = kind == kPT2DM ? " freeDevMode" : " freePT";
            const std::string end = std::string("query ") + kPTKindNames[kind] + (reply.data ? release : "") + " close";
            EXPECT_TRUE(Calls().ends_with(end)) << end;
            EXPECT_EQ(Messages{}, log.TakeErrors());
            EXPECT_EQ(1U, References(ticket.Get()));
            EXPECT_EQ(6U, Find(ticket.Get(), L"//psf:Option").size());
        }
        AnswerEverything();
    }
}

// Wine takes seconds for 64 MiB; TESSARY_LARGE_MIB asks for them.
TEST_F(EveryMethod, LoadsLargeDocuments)
{
    const char* asked = std::getenv("TESSARY_LARGE_MIB");
    const size_t mebibytes = asked != nullptr ? std::strtoul(asked, nullptr, 10) : 4;
    const std::string filler = "<!-- " + std::string(1 << 20, 'x') + " -->";
    const Bytes large = BytesOf(Ticket(Repeated(filler, mebibytes)));
    for (const Use& use : uses)
    {
        service.ptReplies[use.kind].data = large;
        EXPECT_EQ(S_OK, use.call());
        for (const std::string& error : log.TakeErrors())
        {
            EXPECT_EQ(std::string::npos, error.find("Mem2IXML")) << error;
        }
        AnswerEverything();
    }
}

TEST_F(EveryMethod, WithMemoryThatRunsOutAnywhere)
{
    EXPECT_THROW(throw _com_error(E_FAIL), _com_error); // for what exceptions keep from first use on
    std::vector<Use> all = uses;
    ComPtr<IPrintTicketProvider> other;
    all.push_back({"", 0, S_OK, 1, [&] { return Bind(provider.Get()); }});
    all.push_back({"",
                   0,
                   S_OK,
                   1,
                   [&]
                   {
                       other.Reset();
                       ComPtr<IClassFactory> factory;
                       const HRESULT result = DllGetClassObject(
                           kClsidPTProvider, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf()));
                       auto** made = reinterpret_cast<void**>(other.GetAddressOf());
                       return result != S_OK ? result : factory->CreateInstance(nullptr, kIidPrintTicketProvider, made);
                   }});
    for (const Use& use : all)
    {
        SCOPED_TRACE(use.method);
        EXPECT_EQ(S_OK, use.call());
        log.Take();
        int failures = 0;
        bool isAgain = false; // now and then it hits what the log does by the clock: then the same once more
        for (long n = 0, happened = 1; happened != 0; ++n)
        {
            const long before = LiveAllocations();
            HRESULT result = S_OK;
            {
                const AllocationFault fault(n);
                result = use.call();
                happened = fault.Happened() ? 1 : 0;
            }
            // A look-up that fails is said and left out; anything else ends the conversion.
            EXPECT_TRUE(result == S_OK || result == E_OUTOFMEMORY || result == E_FAIL) << result;
            const bool isSaid = !log.TakeErrors().empty() || happened == 0;
            const bool isReleased = std::abs(LiveAllocations() - before) <= 1; // the provider's name may be new
            EXPECT_TRUE((isSaid && isReleased) || !isAgain) << n << " " << isSaid << isReleased;
            isAgain = !(isSaid && isReleased) && !isAgain;
            n -= isAgain ? 1 : 0;
            failures += result != S_OK ? 1 : 0;
        }
        EXPECT_GE(failures, use.memoryResults);
        EXPECT_EQ(1U, References(whole.Get()));
        EXPECT_EQ(1U, References(ticket.Get()));
    }
}

} // namespace
} // namespace tsypr::test
