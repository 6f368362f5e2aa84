// Documents that do not give their text, and elements that are not there.
#include "tests/ptprovider/provider_fixture.h"

#include <algorithm>

namespace tsypr::test
{
namespace
{

HRESULT STDMETHODCALLTYPE Refuse()
{
    return E_ACCESSDENIED;
}
ULONG STDMETHODCALLTYPE Count()
{
    return 1;
}
HRESULT STDMETHODCALLTYPE StatFourBytes(IStream*, STATSTG* state, DWORD)
{
    *state = {};
    state->cbSize.QuadPart = 4;
    return S_OK;
}

// A COM object of which every function fails but those that are set. Which function it is tells the place.
struct Broken
{
    Broken()
    {
        std::ranges::fill(table, reinterpret_cast<void*>(Refuse));
        table[1] = table[2] = reinterpret_cast<void*>(Count); // AddRef and Release
    }
    template <class Interface>
    Interface* As()
    {
        return reinterpret_cast<Interface*>(this);
    }

    void** functions = table;
    void* table[83];
};

Broken g_stream;

HRESULT STDMETHODCALLTYPE GiveStream(IUnknown*, REFIID, void** object)
{
    *object = &g_stream;
    return S_OK;
}

TEST_F(ProviderTest, TicketsThatDoNotGiveTheirText)
{
    Broken ticket;
    auto* doc = ticket.As<IXMLDOMDocument2>();
    for (const std::string message : {"query IStream interface.", "get stream size.", "read stream data."})
    {
        OutDevMode out;
        ComPtr<IXMLDOMDocument2> capabilities;
        EXPECT_EQ(E_FAIL, ConvertTicket(doc, out));
        EXPECT_EQ(E_FAIL, provider->GetPrintCapabilities(doc, capabilities.GetAddressOf()));
        EXPECT_EQ(E_FAIL, provider->ValidatePrintTicket(doc));
        EXPECT_TRUE(out == nullptr && capabilities == nullptr);
        EXPECT_EQ("open close open close open close", Calls()); // nothing is asked
        Messages expected;
        for (const char* method : {"ConvertPrintTicketToDevMode", "GetPrintCapabilities", "ValidatePrintTicket"})
        {
            expected.push_back("error IXML2Mem, failed to " + message);
            expected.push_back("error PTProvider::" + std::string(method) + ", failed to call IXML2Mem.");
        }
        EXPECT_EQ(expected, log.TakeErrors());
        auto* data = reinterpret_cast<BYTE*>(&expected);
        UINT length = 7;
        EXPECT_EQ(E_ACCESSDENIED, IXML2Mem(&data, &length, &doc));
        EXPECT_TRUE(data == nullptr && length == 0);
        log.Take();
        // The next one comes one step further.
        const bool hasStream = ticket.table[0] == reinterpret_cast<void*>(GiveStream);
        ticket.table[0] = reinterpret_cast<void*>(GiveStream);
        if (hasStream)
        {
            g_stream.table[12] = reinterpret_cast<void*>(StatFourBytes);
        }
    }
}

TEST_F(ProviderTest, EmptyDocumentsHaveAnEmptyText)
{
    ComPtr<IXMLDOMDocument2> empty;
    EXPECT_EQ(S_FALSE, Mem2IXML(empty.GetAddressOf(), nullptr, 0)); // made, but nothing loaded
    XmlText text;
    EXPECT_EQ(S_OK, text.Take(empty.Get()));
    EXPECT_EQ(0U, text.Size());
    log.Take();
    auto* doc = empty.Get();
    EXPECT_FALSE(RemoveXmlNode(&doc, L"psf:Feature", L"name", L"psk:PageScaling"));
    EXPECT_EQ(Messages{"error RemoveXmlNode, failed to locate target node."}, log.Take());
    service.ptReplies[kPTCHK].data = BytesOf(Ticket(""));
    EXPECT_EQ(S_OK, provider->ValidatePrintTicket(empty.Get()));
    EXPECT_EQ(Bytes(), service.ptInputs[kPTCHK]);
    EXPECT_EQ(1U, empty->Release());
}

TEST_F(ProviderTest, OneElementIsRemoved)
{
    const std::string other = Feature("psk:PageMediaSize", Option("psk:ISOA4"));
    const auto scaling = [](const std::string& name, const std::string& body) { return Feature(name, Option(body)); };
    const struct
    {
        std::string body;
        std::vector<std::wstring> left; // the names of options
    } cases[] = {{"<!-- psf:Feature name=\"psk:PageScaling\" --> psf:Feature psk:PageScaling", {}},
                 {"<psk:Feature name=\"psk:PageScaling\"><psf:Option name=\"a\"/></psk:Feature>", {L"a"}},
                 {other + "<psf:Feature><psf:Option name=\"psk:PageScaling\"/></psf:Feature>",
                  {L"psk:ISOA4", L"psk:PageScaling"}},
                 {other + scaling("psk:PageScaling ", "a"), {L"psk:ISOA4", L"a"}},
                 {other + scaling("PSK:pagescalinG", "a") + scaling("psk:PageScaling", "b"), {L"psk:ISOA4", L"b"}},
                 {Feature("psk:Outer", Option("a") + scaling("psk:PageScaling", "b")), {L"a"}}};
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.body);
        const auto ticket = Load(Ticket(one.body));
        const size_t before = Find(ticket.Get(), L"//psf:Option/@name").size();
        log.Take();
        auto* doc = ticket.Get();
        const bool removed = RemoveXmlNode(&doc, L"psf:Feature", L"name", L"psk:PageScaling");
        EXPECT_EQ(one.left.size() < before, removed);
        EXPECT_EQ(one.left, Find(ticket.Get(), L"//psf:Option/@name"));
        EXPECT_EQ(removed ? Messages{} : Messages{"error RemoveXmlNode, failed to locate target node."}, log.Take());
    }
}

} // namespace
} // namespace tsypr::test
