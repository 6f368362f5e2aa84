#include "tests/remote/fake_service.h"

#include "tests/remote/allocation_faults.h"

#include <utility>

namespace tsypr::test
{
namespace
{

FakeService* g_service = nullptr;

std::string Narrow(const wchar_t* text)
{
    std::string narrow;
    for (; text != nullptr && *text != L'\0'; ++text)
    {
        narrow.push_back(static_cast<char>(*text));
    }
    return narrow;
}

} // namespace

FakeService::FakeService()
{
    g_service = this;
    RemoteService = {};
    RemoteService.VpOpenRemotePrinter = Open;
    RemoteService.VpCloseRemotePrinter = Close;
    RemoteService.VpGetDevMode = GetDevMode;
    RemoteService.VpFreeDevMode = FreeDevMode;
    RemoteService.VpGetDeviceCapabilities = GetCapabilities;
    RemoteService.VpFreeDeviceCapabilities = FreeCapabilities;
}

FakeService::~FakeService()
{
    EXPECT_TRUE(m_open.empty()) << "a remote printer was left open";
    EXPECT_TRUE(m_devModes.empty()) << "a device mode was not given back";
    EXPECT_TRUE(m_lists.empty()) << "a capability reply was not given back";
    RemoteService = {};
    g_service = nullptr;
}

std::vector<std::string> FakeService::TakeCalls()
{
    return std::exchange(m_calls, {});
}

void FakeService::Note(const std::string& call)
{
    if (notesCalls)
    {
        m_calls.push_back(call);
    }
}

void FakeService::CheckOpen(RemotePrinterHandle handle)
{
    EXPECT_TRUE(m_open.contains(handle)) << "the handle is not open";
}

void* FakeService::HandOut(Replies& replies, const Bytes& bytes)
{
    auto reply = std::make_unique<GuardedMemory>(bytes.data(), bytes.size());
    void* data = reply->Get();
    replies.emplace(data, std::move(reply));
    return data;
}

DWORD WINAPI FakeService::Open(const wchar_t* printerName, RemotePrinterHandle* handle)
{
    const AllocationFaultPause pause;
    const std::lock_guard guard(g_service->m_lock);
    EXPECT_EQ(nullptr, *handle);
    g_service->Note("open " + Narrow(printerName));
    if (g_service->opens)
    {
        *handle = reinterpret_cast<RemotePrinterHandle>(g_service->m_nextHandle++);
        g_service->m_open.insert(*handle);
    }
    return g_service->opens ? 1234 : 0; // says nothing: success is the handle
}

void WINAPI FakeService::Close(RemotePrinterHandle handle)
{
    const AllocationFaultPause pause;
    const std::lock_guard guard(g_service->m_lock);
    g_service->Note("close");
    g_service->CheckOpen(handle);
    g_service->m_open.erase(handle);
}

DWORD WINAPI FakeService::GetDevMode(RemotePrinterHandle handle, DEVMODEW** result)
{
    const AllocationFaultPause pause;
    const std::lock_guard guard(g_service->m_lock);
    g_service->Note("getDevMode");
    g_service->CheckOpen(handle);
    *result =
        g_service->devMode ? static_cast<DEVMODEW*>(HandOut(g_service->m_devModes, *g_service->devMode)) : nullptr;
    return 0;
}

void WINAPI FakeService::FreeDevMode(void* data)
{
    const AllocationFaultPause pause;
    const std::lock_guard guard(g_service->m_lock);
    g_service->Note("freeDevMode");
    EXPECT_EQ(1U, g_service->m_devModes.erase(data));
}

DWORD WINAPI FakeService::GetCapabilities(RemotePrinterHandle handle,
                                          uint16_t capability,
                                          uint32_t* dataSize,
                                          void** data,
                                          uint32_t devModeSize,
                                          const DEVMODEW* devMode,
                                          int32_t* queryResult)
{
    const AllocationFaultPause pause;
    const std::lock_guard guard(g_service->m_lock);
    g_service->Note("caps " + std::to_string(capability));
    g_service->CheckOpen(handle);
    EXPECT_EQ(dataSize == nullptr, data == nullptr);
    g_service->m_lastCapabilityCall = {capability, data != nullptr, devModeSize, devMode, *queryResult};
    const CapabilityReply& reply = g_service->capabilities[capability];
    *queryResult = reply.result.value_or(*queryResult);
    if (data != nullptr)
    {
        *data = reply.data ? HandOut(g_service->m_lists, *reply.data) : nullptr;
        *dataSize = reply.size;
    }
    return reply.status;
}

void WINAPI FakeService::FreeCapabilities(void* data)
{
    const AllocationFaultPause pause;
    const std::lock_guard guard(g_service->m_lock);
    g_service->Note("freeCaps");
    EXPECT_EQ(1U, g_service->m_lists.erase(data));
}

} // namespace tsypr::test
