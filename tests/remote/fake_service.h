// A remote printer service that answers by script and notes how it is called.
#ifndef TESSARY_TESTS_REMOTE_FAKE_SERVICE_H
#define TESSARY_TESTS_REMOTE_FAKE_SERVICE_H

#include "remote/remote_printer_service.h"
#include "tests/remote/device_mode_builder.h"
#include "tests/remote/guarded_memory.h"
#include "tests/remote/log_capture.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tsypr::test
{

struct CapabilityReply
{
    std::optional<int32_t> result; // not written when absent
    std::optional<Bytes> data;     // a null pointer when absent
    uint32_t size = 0;
    DWORD status = 0;
};

// A list with the number of its bytes stated truly.
template <typename Entry>
CapabilityReply ListReply(int32_t result, const std::vector<Entry>& entries)
{
    const auto* begin = reinterpret_cast<const BYTE*>(entries.data());
    const size_t size = entries.size() * sizeof(Entry);
    return {result, Bytes(begin, begin + size), static_cast<uint32_t>(size)};
}

// Names in fields of a fixed size, as the printer's lists have them; a name that fills its field has no terminator.
inline CapabilityReply NamesReply(size_t chars, const std::vector<std::wstring>& names)
{
    std::vector<wchar_t> fields(chars * names.size());
    for (size_t i = 0; i < names.size(); ++i)
    {
        std::copy_n(names[i].begin(), std::min(chars, names[i].size()), fields.begin() + static_cast<int>(i * chars));
    }
    return ListReply(static_cast<int32_t>(names.size()), fields);
}

// What the client makes of a print ticket question.
struct PTReply
{
    HRESULT result = S_OK;
    std::optional<Bytes> data = std::nullopt;    // a null pointer when absent
    std::optional<uint32_t> size = std::nullopt; // that of the data when absent
    DWORD status = 0;
};

// By number, as the service's calls have them.
inline constexpr const char* kPTKindNames[] = {"PT2DM", "DM2PT", "PT2PC", "PTCHK"};

struct CapabilityCall
{
    uint16_t capability;
    bool wantsData;
    uint32_t devModeSize;
    const DEVMODEW* devMode;
    int32_t presetResult;
};

// Binds itself as the service while it lives. Every reply lies against an inaccessible page. A handle that is not open,
// a reply given back wrongly, twice or never is a test failure.
class FakeService
{
public:
    FakeService();
    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;
    ~FakeService();

    // The script.
    bool opens = true;
    std::optional<Bytes> devMode; // null when absent
    std::map<uint16_t, CapabilityReply> capabilities;
    std::map<uint32_t, PTReply> ptReplies; // by kind
    bool notesCalls = true;
    DWORD delay = 0; // milliseconds that each call takes

    // The last input of each kind of print ticket question; a null pointer when absent.
    std::map<uint32_t, std::optional<Bytes>> ptInputs;

    // The calls since the last time: "open NAME", "close", "getDevMode", "freeDevMode", "caps INDEX", "freeCaps",
    // "query KIND", "freePT".
    Messages TakeCalls()
    {
        return std::exchange(m_calls, {});
    }
    const CapabilityCall& LastCapabilityCall() const
    {
        return m_lastCapabilityCall;
    }

private:
    friend struct ServiceCalls;

    std::mutex m_lock;
    Messages m_calls;
    std::set<RemotePrinterHandle> m_open;
    uintptr_t m_nextHandle = 0x1000;
    std::map<void*, std::unique_ptr<GuardedMemory>> m_devModes;
    std::map<void*, std::unique_ptr<GuardedMemory>> m_lists;
    std::map<void*, std::unique_ptr<GuardedMemory>> m_texts;
    CapabilityCall m_lastCapabilityCall = {};
};

// What nearly every test works with.
class RemoteTest : public testing::Test
{
protected:
    LogCapture log;
    FakeService service;
};

} // namespace tsypr::test

#endif
