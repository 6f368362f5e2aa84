#include "tests/remote/fake_service.h"

#include "tests/remote/allocation_faults.h"

namespace tsypr::test
{
namespace
{

FakeService* g_service = nullptr;

std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t character : text)
    {
        narrow.push_back(static_cast<char>(character));
    }
    return narrow;
}

} // namespace

struct ServiceCalls
{
    // Held by a call from its begin to its end.
    struct Entry
    {
        explicit Entry(const std::string& call) : guard(g_service->m_lock)
        {
            if (g_service->notesCalls)
            {
                g_service->m_calls.push_back(call);
            }
        }
        Entry(const std::string& call, RemotePrinterHandle handle) : Entry(call)
        {
            EXPECT_TRUE(g_service->m_open.contains(handle)) << "the handle is not open";
        }

        std::lock_guard<std::mutex> guard;
    };

    template <typename Replies>
    static void* HandOut(Replies& replies, const std::optional<Bytes>& bytes)
    {
        if (!bytes)
        {
            return nullptr;
        }
        auto reply = std::make_unique<GuardedMemory>(bytes->data(), bytes->size());
        void* data = reply->Get();
        replies.emplace(data, std::move(reply));
        return data;
    }

    static DWORD WINAPI Open(const wchar_t* printerName, RemotePrinterHandle* handle)
    {
        const AllocationFaultPause pause;
        const Entry entry("open " + Narrow(printerName));
        EXPECT_EQ(nullptr, *handle);
        if (g_service->opens)
        {
            *handle = reinterpret_cast<RemotePrinterHandle>(g_service->m_nextHandle++);
            g_service->m_open.insert(*handle);
        }
        return g_service->opens ? 1234 : 0; // says nothing: success is the handle
    }

    static void WINAPI Close(RemotePrinterHandle handle)
    {
        const AllocationFaultPause pause;
        const Entry entry("close", handle);
        g_service->m_open.erase(handle);
    }

    static DWORD WINAPI GetDevMode(RemotePrinterHandle handle, DEVMODEW** result)
    {
        const AllocationFaultPause pause;
        const Entry entry("getDevMode", handle);
        *result = static_cast<DEVMODEW*>(HandOut(g_service->m_devModes, g_service->devMode));
        return 0;
    }

    static void WINAPI FreeDevMode(void* data)
    {
        const AllocationFaultPause pause;
        const Entry entry("freeDevMode");
        EXPECT_EQ(1U, g_service->m_devModes.erase(data));
    }

    static DWORD WINAPI GetCapabilities(RemotePrinterHandle handle,
                                        uint16_t capability,
                                        uint32_t* dataSize,
                                        void** data,
                                        uint32_t devModeSize,
                                        const DEVMODEW* devMode,
                                        int32_t* queryResult)
    {
        const AllocationFaultPause pause;
        const Entry entry("caps " + std::to_string(capability), handle);
        EXPECT_EQ(dataSize == nullptr, data == nullptr);
        g_service->m_lastCapabilityCall = {capability, data != nullptr, devModeSize, devMode, *queryResult};
        const CapabilityReply& reply = g_service->capabilities[capability];
        *queryResult = reply.result.value_or(*queryResult);
        if (data != nullptr)
        {
            *data = HandOut(g_service->m_lists, reply.data);
            *dataSize = reply.size;
        }
        return reply.status;
    }

    static void WINAPI FreeCapabilities(void* data)
    {
        const AllocationFaultPause pause;
        const Entry entry("freeCaps");
        EXPECT_EQ(1U, g_service->m_lists.erase(data));
    }

    static DWORD WINAPI MakePTQuery(RemotePrinterHandle handle,
                                    uint32_t kind,
                                    uint32_t inputSize,
                                    const void* input,
                                    uint32_t* outputSize,
                                    void** output,
                                    int32_t* queryResult)
    {
        const AllocationFaultPause pause;
        const Entry entry(std::string("query ") + kPTKindNames[kind], handle);
        EXPECT_TRUE(*output == nullptr && *outputSize == 0);
        EXPECT_TRUE(input != nullptr || inputSize == 0);
        const auto* bytes = static_cast<const BYTE*>(input);
        g_service->ptInputs[kind] = input != nullptr ? std::optional(Bytes(bytes, bytes + inputSize)) : std::nullopt;
        const PTReply& reply = g_service->ptReplies[kind];
        *queryResult = reply.result;
        *output = HandOut(kind == 0 ? g_service->m_devModes : g_service->m_texts, reply.data);
        *outputSize = reply.size.value_or(reply.data ? static_cast<uint32_t>(reply.data->size()) : 0);
        return reply.status;
    }

    static void WINAPI FreePTData(void* data)
    {
        const AllocationFaultPause pause;
        const Entry entry("freePT");
        EXPECT_EQ(1U, g_service->m_texts.erase(data));
    }
};

FakeService::FakeService()
{
    using Calls = ServiceCalls;
    g_service = this;
    RemoteService = {nullptr,
                     Calls::Open,
                     Calls::Close,
                     Calls::GetDevMode,
                     Calls::FreeDevMode,
                     Calls::GetCapabilities,
                     Calls::FreeCapabilities,
                     Calls::MakePTQuery,
                     Calls::FreePTData};
}

FakeService::~FakeService()
{
    EXPECT_TRUE(m_open.empty()) << "a remote printer was left open";
    EXPECT_TRUE(m_devModes.empty()) << "a device mode was not given back";
    EXPECT_TRUE(m_lists.empty()) << "a capability reply was not given back";
    EXPECT_TRUE(m_texts.empty()) << "a print ticket reply was not given back";
    RemoteService = {};
}

} // namespace tsypr::test
