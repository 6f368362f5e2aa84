// Tickets, capabilities, device modes and lists that somebody has tampered with, through the whole provider. All memory
// that comes from the client or goes to the caller lies against inaccessible pages. Every run makes the same ones;
// TESSARY_FUZZ_ROUNDS sets how many.
#include "tests/module/heap_blocks.h"
#include "tests/ptprovider/provider_fixture.h"

#include <cstdlib>
#include <random>

namespace tsypr::test
{
namespace
{

std::map<void*, std::unique_ptr<GuardedMemory>> g_local;

HLOCAL WINAPI GuardedAlloc(UINT, SIZE_T size)
{
    auto memory = std::make_unique<GuardedMemory>(Bytes(size).data(), size);
    void* data = memory->Get();
    g_local.emplace(data, std::move(memory));
    return data;
}

} // namespace
} // namespace tsypr::test

// The program's only way to the system's function.
extern "C" decltype(&LocalAlloc) __imp_LocalAlloc;
decltype(&LocalAlloc) __imp_LocalAlloc = tsypr::test::GuardedAlloc;

namespace tsypr::test
{
namespace
{

// What is put in somewhere, by lines.
constexpr std::string_view kPieces =
    "<\n/>\n</psf:Feature>\n<psf:Feature name=\"psk:JobHolePunch\"><psf:Option name=\"\n<psf:Option>\n"
    "name=\"psk:PageScaling\"\n<psf:Value>-99999999999</psf:Value>\n xmlns:psf=\"'\"\n xmlns:psf=\"\"\n"
    "<!DOCTYPE a [<!ENTITY e \"&e;\">]>\n<![CDATA[\n]]>\n<!--\n&#0;\n&lt;\n\xFF\xFE\n\xC0\x80\nencoding=\"UTF-16\"\n"
    "psk:AVeryLongOptionNameThatDoesNotFitIntoTheField\n'\n\"\n";

class Mutator
{
public:
    explicit Mutator(unsigned seed) : m_random(seed) {}

    size_t Below(size_t end)
    {
        return end == 0 ? 0 : m_random() % end;
    }
    Bytes Text(const std::string& good)
    {
        return Change(good);
    }
    // Whole as far as memory goes, whatever the sizes in it say.
    Bytes Block(const Bytes& good)
    {
        std::string block(good.begin(), good.end());
        if (block.size() > 72 && Below(2) != 0)
        {
            block[68 + Below(4)] = static_cast<char>(m_random()); // the sizes
        }
        return Change(block);
    }

private:
    Bytes Change(std::string text)
    {
        for (size_t changes = Below(5); changes != 0; --changes)
        {
            const size_t at = Below(text.size() + 1);
            const size_t length = Below(text.size() - at + 1) >> Below(10);
            const std::string copy = text.substr(at, length);
            switch (Below(6))
            {
            case 0:
                text.erase(at, length);
                break;
            case 1:
                text.insert(at, Piece());
                break;
            case 2:
                text.insert(Below(text.size() + 1), copy);
                break;
            case 3:
                text.resize(at);
                break;
            default:
                text.replace(at, Below(2), 1, static_cast<char>(m_random()));
            }
        }
        return BytesOf(text);
    }
    std::string_view Piece()
    {
        const size_t begin = kPieces.rfind('\n', Below(kPieces.size() - 1)) + 1; // npos is followed by 0
        return kPieces.substr(begin, kPieces.find('\n', begin) - begin);
    }

    std::mt19937 m_random;
};

class Fuzz : public ProviderTest
{
protected:
    // Sets all that the client answers.
    void Tamper(Mutator& mutate)
    {
        service.ptReplies[kPT2DM].data = mutate.Block(ClientDeviceMode().Whole());
        service.ptReplies[kDM2PT].data = mutate.Text(FullTicket());
        service.ptReplies[kPT2PC].data = mutate.Text(FullCapabilities());
        service.ptReplies[kPTCHK].data = mutate.Text(FullTicket());
        for (const WORD index : {WORD{DC_MEDIATYPENAMES}, WORD{DC_MEDIATYPES}})
        {
            const Bytes names = *NamesReply(64, {L"Plain", L"Glossy"}).data;
            const Bytes list = mutate.Block(index == DC_MEDIATYPES ? Bytes(12, 1) : names);
            service.capabilities[index] = {
                static_cast<int32_t>(mutate.Below(5)) - 1, list, static_cast<uint32_t>(list.size())};
        }
    }

    void ToTheTicket(Mutator& mutate, IXMLDOMDocument2* ticket)
    {
        // As long as it states, but long enough to state it.
        constexpr size_t kSmallest = offsetof(DEVMODEW, dmFields);
        Bytes in = mutate.Block(ClientDeviceMode().Whole());
        in.resize(std::max(in.size(), kSmallest));
        in.resize(std::max(DevModeTotalSize(reinterpret_cast<DEVMODEW*>(in.data())), kSmallest));
        const GuardedMemory memory(in.data(), in.size());
        Expect(provider->ConvertDevModeToPrintTicket(0, memory.Get<DEVMODEW>(), ticket));
    }

    void ToTheDevMode(IXMLDOMDocument2* ticket)
    {
        OutDevMode dm;
        Expect(ConvertTicket(ticket, dm));
        const Bytes& reply = *service.ptReplies[kPT2DM].data;
        ASSERT_EQ(reply.empty(), dm == nullptr);
        ASSERT_EQ(reply.size(), size);
        const bool whole = size >= 72 && DevModeTotalSize(dm.get()) <= size;
        EXPECT_TRUE(whole || memcmp(dm.get(), reply.data(), size) == 0); // else left as it came
        g_local.erase(dm.release());
    }

    // Success, or one failure that is said.
    void Expect(HRESULT result)
    {
        const Messages errors = log.TakeErrors();
        EXPECT_TRUE(result == S_OK || (result == E_FAIL && !errors.empty())) << result;
    }
};

TEST_F(Fuzz, WhateverComesTheProviderStaysWhole)
{
    const char* rounds = std::getenv("TESSARY_FUZZ_ROUNDS");
    const unsigned count = rounds != nullptr ? static_cast<unsigned>(std::atoi(rounds)) : 500;
    service.notesCalls = false;
    size_t before = 0;
    for (unsigned seed = 0; seed < count && !HasFailure(); ++seed)
    {
        SCOPED_TRACE(seed);
        Mutator mutate(seed);
        Tamper(mutate);
        ComPtr<IXMLDOMDocument2> ticket;
        const Bytes text = mutate.Text(FullTicket());
        Mem2IXML(ticket.GetAddressOf(), text.data(), static_cast<UINT>(text.size())); // at worst it stays empty
        log.Take();
        ToTheDevMode(ticket.Get());
        ToTheTicket(mutate, ticket.Get());
        ComPtr<IXMLDOMDocument2> capabilities;
        Expect(provider->GetPrintCapabilities(ticket.Get(), capabilities.GetAddressOf()));
        EXPECT_EQ(1U, References(ticket.Get()));
        Expect(provider->ValidatePrintTicket(ticket.Get()));
        if (!service.ptReplies[kPTCHK].data->empty())
        {
            EXPECT_EQ(2U, References(ticket.Get()));
            ticket->Release();
        }
        before = seed == std::min(99U, count - 1) ? BusyBlocks() : before;
    }
    EXPECT_LT(BusyBlocks(), before + 100) << "memory was kept";
}

} // namespace
} // namespace tsypr::test
