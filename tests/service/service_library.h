#ifndef TESSARY_TESTS_SERVICE_SERVICE_LIBRARY_H
#define TESSARY_TESTS_SERVICE_SERVICE_LIBRARY_H

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>
#include <winspool.h>

#include "service/vp_api.h"
#include "tests/module/test_registry.h"
#include "tests/service/sample_profile.h"

namespace tsypr::service::test
{

// The fields of the sample printers' default device modes.
constexpr DWORD kSampleFields = DM_ORIENTATION | DM_PAPERSIZE | DM_SCALE | DM_COPIES | DM_DEFAULTSOURCE |
                                DM_PRINTQUALITY | DM_COLOR | DM_DUPLEX | DM_YRESOLUTION | DM_COLLATE | DM_FORMNAME |
                                DM_MEDIATYPE;
constexpr DWORD kSparseFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_PRINTQUALITY | DM_FORMNAME;

// One answer about capabilities, copied and given back.
struct Answer
{
    LONG status = 0;
    LONG result = 5;
    std::vector<std::byte> data;
};

// The library, freshly loaded, with every function bound by name as its users do it.
class ServiceLibrary
{
    const HMODULE m_module = LoadLibraryW(L"tsyprserverapi.dll");

    // Becomes the function of that name.
    struct Symbol
    {
        HMODULE module;
        const char* name;

        template <class Function>
        operator Function*() const
        {
            const auto address = reinterpret_cast<void*>(GetProcAddress(module, name));
            return address != nullptr ? reinterpret_cast<Function*>(address) : throw std::runtime_error(name);
        }
    };

public:
    ServiceLibrary() = default;
    ServiceLibrary(const ServiceLibrary&) = delete;
    ServiceLibrary& operator=(const ServiceLibrary&) = delete;
    ~ServiceLibrary()
    {
        FreeLibrary(m_module);
    }

    void* Open(const WCHAR* name) const
    {
        void* handle = m_module; // anything but null
        open(name, &handle);
        return handle;
    }

    Answer Ask(void* handle, WORD index) const
    {
        Answer answer;
        DWORD size = 77;
        void* data = &size;
        answer.status = getCapabilities(handle, index, &size, &data, 0, nullptr, &answer.result);
        const auto* bytes = static_cast<const std::byte*>(data);
        answer.data.assign(bytes, bytes + size);
        freeCapabilities(data);
        return answer;
    }

    VpCallCounters Counters() const
    {
        VpCallCounters counters{};
        readCounters(&counters);
        return counters;
    }

    decltype(&VpOpenRemotePrinter) open = Symbol{m_module, "VpOpenRemotePrinter"};
    decltype(&VpCloseRemotePrinter) close = Symbol{m_module, "VpCloseRemotePrinter"};
    decltype(&VpGetDevMode) getDevMode = Symbol{m_module, "VpGetDevMode"};
    decltype(&VpFreeDevMode) freeDevMode = Symbol{m_module, "VpFreeDevMode"};
    decltype(&VpGetDeviceCapabilities) getCapabilities = Symbol{m_module, "VpGetDeviceCapabilities"};
    decltype(&VpFreeDeviceCapabilities) freeCapabilities = Symbol{m_module, "VpFreeDeviceCapabilities"};
    decltype(&VpMakePTQuery) makePTQuery = Symbol{m_module, "VpMakePTQuery"};
    decltype(&VpFreePTData) freePTData = Symbol{m_module, "VpFreePTData"};
    decltype(&VpReadCallCounters) readCounters = Symbol{m_module, "VpReadCallCounters"};
    decltype(&VpResetCallCounters) resetCounters = Symbol{m_module, "VpResetCallCounters"};
    decltype(&VpReadProfileProblems) readProblems = Symbol{m_module, "VpReadProfileProblems"};
};

// The service's setting: a directory with the sample printers, named in a registry that only this process sees under
// HKEY_LOCAL_MACHINE.
struct ServiceSetting : testing::Test
{
    ServiceSetting()
    {
        directory.Write("sample.json", SampleProfile().dump());
        directory.Write("sparse.json", SparseProfile().dump());
        tsypr::test::SetText(kKey, L"PrinterProfiles", directory.path.c_str());
    }

    static constexpr auto kKey = L"Software\\Zelmora\\Tessary\\PrintRedir\\service";
    ProfileDirectory directory;
    tsypr::test::TestRegistry registry;
};

struct SampleService : ServiceSetting
{
    ServiceLibrary library;
};

// Copies the bytes, at most a page, to where readable memory ends. The next call takes the place again.
inline std::byte* AtTheEndOfMemory(const std::vector<std::byte>& bytes)
{
    constexpr std::size_t kPage = 4096;
    static const auto memory = static_cast<std::byte*>(VirtualAlloc(nullptr, 2 * kPage, MEM_COMMIT, PAGE_READWRITE));
    DWORD before = 0;
    VirtualProtect(memory + kPage, kPage, PAGE_NOACCESS, &before);
    return std::copy_backward(bytes.begin(), bytes.end(), memory + kPage);
}

} // namespace tsypr::service::test

#endif
