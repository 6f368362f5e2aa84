#include "service/vp_api.h"

#include <array>
#include <atomic>
#include <cstring>
#include <span>
#include <string>

#include "service/device_capabilities.h"
#include "service/device_mode.h"
#include "service/handle_table.h"
#include "service/profile_loader.h"
#include "service/profile_source.h"
#include "service/reply_table.h"
#include "service/ticket/print_ticket_query.h"

namespace
{

using namespace tsypr::service;

// In the order of the fields of VpCallCounters.
enum class Call : std::size_t
{
    OpenRemotePrinter,
    CloseRemotePrinter,
    GetDevMode,
    FreeDevMode,
    GetDeviceCapabilities,
    FreeDeviceCapabilities,
    MakePTQuery,
    FreePTData,
    Count
};

struct Service
{
    HandleTable handles;
    ReplyTable replies;
};

std::array<std::atomic<ULONGLONG>, static_cast<std::size_t>(Call::Count)> g_calls;

void CountCall(Call call) noexcept
{
    g_calls[static_cast<std::size_t>(call)].fetch_add(1, std::memory_order_relaxed);
}

Service& TheService()
{
    static Service service;
    return service;
}

// Read at the first use, since loading a library must not touch files or the registry.
const ProfileSet& Printers()
{
    static const ProfileSet printers = []
    {
        ProfileSet set = LoadProfiles(ProfileDirectory());
        for (const ProfileProblem& problem : set.problems)
        {
            OutputDebugStringW((L"tsyprserverapi: " + DescribeProblems({problem})).c_str());
        }
        return set;
    }();
    return printers;
}

// Runs an export's body; nothing may be thrown into the host.
template <class Body>
auto Guarded(decltype(std::declval<Body>()()) failure, Body&& body) noexcept
{
    try
    {
        return body();
    }
    catch (...)
    {
        return failure;
    }
}

template <class Value>
void SetOutput(Value* output, Value value) noexcept
{
    if (output != nullptr)
    {
        *output = value;
    }
}

LONG OpenPrinterByName(const WCHAR* name, void** handle)
{
    constexpr std::size_t kLongestName = 255;
    const std::size_t length = wcsnlen(name, kLongestName + 1);
    const Profile* profile = Printers().Find(std::u16string(name, name + length));
    if (profile == nullptr)
    {
        return ERROR_INVALID_PRINTER_NAME;
    }
    *handle = TheService().handles.Open(*profile);
    return ERROR_SUCCESS;
}

LONG MakeDevMode(void* handle, DEVMODEW** deviceMode)
{
    const Profile* profile = TheService().handles.Find(handle);
    if (profile == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    *deviceMode = static_cast<DEVMODEW*>(TheService().replies.Add(ReplyKind::DeviceMode, BuildDevMode(*profile)));
    return ERROR_SUCCESS;
}

LONG AnswerCapability(void* handle, WORD index, DWORD* dataSize, void** data, LONG* queryResult)
{
    const Profile* profile = TheService().handles.Find(handle);
    if (profile == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    const CapabilityAnswer answer = QueryCapability(*profile, index);
    if (data != nullptr && dataSize != nullptr && !answer.data.empty())
    {
        *data = TheService().replies.Add(ReplyKind::Capabilities, answer.data);
        *dataSize = static_cast<DWORD>(answer.data.size());
    }
    *queryResult = answer.result;
    return answer.result == -1 ? ERROR_NOT_SUPPORTED : ERROR_SUCCESS;
}

// A query's answer, or the result and status of one that cannot be made.
LONG AnswerQuery(
    void* handle, TicketQuery query, std::span<const std::byte> input, DWORD* size, void** output, LONG* result)
{
    const Profile* profile = TheService().handles.Find(handle);
    if (profile == nullptr)
    {
        *result = E_HANDLE;
        return ERROR_INVALID_HANDLE;
    }
    const TicketAnswer answer = AnswerTicketQuery(*profile, query, input);
    if (!answer.data.empty())
    {
        const ReplyKind kind = query == TicketQuery::TicketToDevMode ? ReplyKind::DeviceMode : ReplyKind::PrintTicket;
        *output = TheService().replies.Add(kind, answer.data);
        *size = static_cast<DWORD>(answer.data.size());
    }
    *result = answer.result;
    return FAILED(answer.result) ? ERROR_INVALID_DATA : ERROR_SUCCESS;
}

void ReleaseReply(ReplyKind kind, void* reply) noexcept
{
    Guarded(0,
            [&]
            {
                TheService().replies.Release(kind, reply);
                return 0;
            });
}

DWORD CopyProblems(WCHAR* buffer, DWORD capacity)
{
    const std::wstring text = DescribeProblems(Printers().problems);
    if (buffer != nullptr && capacity > 0)
    {
        const std::size_t length = std::min<std::size_t>(text.size(), capacity - 1);
        std::ranges::copy_n(text.begin(), static_cast<std::ptrdiff_t>(length), buffer);
        buffer[length] = 0;
    }
    return static_cast<DWORD>(text.size());
}

} // namespace

LONG WINAPI VpOpenRemotePrinter(const WCHAR* printerName, void** handle)
{
    CountCall(Call::OpenRemotePrinter);
    SetOutput<void*>(handle, nullptr);
    if (printerName == nullptr || handle == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded(LONG{ERROR_OUTOFMEMORY}, [&] { return OpenPrinterByName(printerName, handle); });
}

void WINAPI VpCloseRemotePrinter(void* handle)
{
    CountCall(Call::CloseRemotePrinter);
    Guarded(false, [&] { return TheService().handles.Close(handle); });
}

LONG WINAPI VpGetDevMode(void* handle, DEVMODEW** deviceMode)
{
    CountCall(Call::GetDevMode);
    SetOutput<DEVMODEW*>(deviceMode, nullptr);
    if (deviceMode == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded(LONG{ERROR_OUTOFMEMORY}, [&] { return MakeDevMode(handle, deviceMode); });
}

void WINAPI VpFreeDevMode(void* deviceMode)
{
    CountCall(Call::FreeDevMode);
    ReleaseReply(ReplyKind::DeviceMode, deviceMode);
}

LONG WINAPI VpGetDeviceCapabilities(void* handle,
                                    WORD index,
                                    DWORD* dataSize,
                                    void** data,
                                    DWORD /*deviceModeSize*/,
                                    const DEVMODEW* /*deviceMode*/,
                                    LONG* queryResult)
{
    CountCall(Call::GetDeviceCapabilities);
    SetOutput<DWORD>(dataSize, 0);
    SetOutput<void*>(data, nullptr);
    SetOutput<LONG>(queryResult, -1);
    if (queryResult == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded(LONG{ERROR_OUTOFMEMORY},
                   [&] { return AnswerCapability(handle, index, dataSize, data, queryResult); });
}

void WINAPI VpFreeDeviceCapabilities(void* data)
{
    CountCall(Call::FreeDeviceCapabilities);
    ReleaseReply(ReplyKind::Capabilities, data);
}

LONG WINAPI VpMakePTQuery(
    void* handle, DWORD kind, DWORD inputSize, const void* input, DWORD* outputSize, void** output, LONG* queryResult)
{
    CountCall(Call::MakePTQuery);
    SetOutput<DWORD>(outputSize, 0);
    SetOutput<void*>(output, nullptr);
    SetOutput<LONG>(queryResult, E_INVALIDARG);
    const bool isKnown = kind <= static_cast<DWORD>(TicketQuery::ValidateTicket);
    const bool hasPlaces = outputSize != nullptr && output != nullptr && queryResult != nullptr;
    if (!isKnown || !hasPlaces || (input == nullptr && inputSize != 0))
    {
        return ERROR_INVALID_PARAMETER;
    }
    *queryResult = E_OUTOFMEMORY;
    const std::span bytes(static_cast<const std::byte*>(input), inputSize);
    return Guarded(
        LONG{ERROR_OUTOFMEMORY},
        [&] { return AnswerQuery(handle, static_cast<TicketQuery>(kind), bytes, outputSize, output, queryResult); });
}

void WINAPI VpFreePTData(void* output)
{
    CountCall(Call::FreePTData);
    ReleaseReply(ReplyKind::PrintTicket, output);
}

void WINAPI VpReadCallCounters(VpCallCounters* counters)
{
    if (counters == nullptr)
    {
        return;
    }
    const auto calls = [](Call call) { return g_calls[static_cast<std::size_t>(call)].load(); };
    *counters = {calls(Call::OpenRemotePrinter),
                 calls(Call::CloseRemotePrinter),
                 calls(Call::GetDevMode),
                 calls(Call::FreeDevMode),
                 calls(Call::GetDeviceCapabilities),
                 calls(Call::FreeDeviceCapabilities),
                 calls(Call::MakePTQuery),
                 calls(Call::FreePTData),
                 Guarded(ULONGLONG{0}, [] { return ULONGLONG{TheService().handles.Count()}; }),
                 Guarded(ULONGLONG{0}, [] { return ULONGLONG{TheService().replies.Count()}; })};
}

void WINAPI VpResetCallCounters()
{
    for (auto& calls : g_calls)
    {
        calls.store(0);
    }
}

DWORD WINAPI VpReadProfileProblems(WCHAR* buffer, DWORD capacityInChars)
{
    if (buffer != nullptr && capacityInChars > 0)
    {
        buffer[0] = 0;
    }
    return Guarded(DWORD{0}, [&] { return CopyProblems(buffer, capacityInChars); });
}
