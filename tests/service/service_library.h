#ifndef TESSARY_TESTS_SERVICE_SERVICE_LIBRARY_H
#define TESSARY_TESTS_SERVICE_SERVICE_LIBRARY_H

#include <stdexcept>
#include <string>
#include <vector>

#include <windows.h>

#include "service/vp_api.h"
#include "tests/service/sample_profile.h"

namespace tsypr::service::test
{

// Lets this process, and no other, see a registry of its own under HKEY_LOCAL_MACHINE.
class ScratchMachineRegistry
{
public:
    ScratchMachineRegistry()
    {
        m_path = L"Software\\TessaryServiceTests\\" + std::to_wstring(GetCurrentProcessId());
        HKEY key = nullptr;
        RegCreateKeyExW(HKEY_CURRENT_USER, m_path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, key);
        RegCloseKey(key);
    }
    ScratchMachineRegistry(const ScratchMachineRegistry&) = delete;
    ScratchMachineRegistry& operator=(const ScratchMachineRegistry&) = delete;
    ~ScratchMachineRegistry()
    {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
    }

    void SetProfileDirectory(const std::wstring& directory) const
    {
        RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                        L"Software\\Zelmora\\Tessary\\PrintRedir\\service",
                        L"PrinterProfiles",
                        REG_SZ,
                        directory.c_str(),
                        static_cast<DWORD>((directory.size() + 1) * sizeof(WCHAR)));
    }

private:
    std::wstring m_path;
};

// The library, freshly loaded, with every function bound by name as its users do it.
class ServiceLibrary
{
public:
    ServiceLibrary() : m_module(LoadLibraryW(L"tsyprserverapi.dll"))
    {
        Bind(open, "VpOpenRemotePrinter");
        Bind(close, "VpCloseRemotePrinter");
        Bind(getDevMode, "VpGetDevMode");
        Bind(freeDevMode, "VpFreeDevMode");
        Bind(getCapabilities, "VpGetDeviceCapabilities");
        Bind(freeCapabilities, "VpFreeDeviceCapabilities");
        Bind(makePTQuery, "VpMakePTQuery");
        Bind(freePTData, "VpFreePTData");
        Bind(readCounters, "VpReadCallCounters");
        Bind(resetCounters, "VpResetCallCounters");
        Bind(readProblems, "VpReadProfileProblems");
    }
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

    VpCallCounters Counters() const
    {
        VpCallCounters counters{};
        readCounters(&counters);
        return counters;
    }

    decltype(&VpOpenRemotePrinter) open = nullptr;
    decltype(&VpCloseRemotePrinter) close = nullptr;
    decltype(&VpGetDevMode) getDevMode = nullptr;
    decltype(&VpFreeDevMode) freeDevMode = nullptr;
    decltype(&VpGetDeviceCapabilities) getCapabilities = nullptr;
    decltype(&VpFreeDeviceCapabilities) freeCapabilities = nullptr;
    decltype(&VpMakePTQuery) makePTQuery = nullptr;
    decltype(&VpFreePTData) freePTData = nullptr;
    decltype(&VpReadCallCounters) readCounters = nullptr;
    decltype(&VpResetCallCounters) resetCounters = nullptr;
    decltype(&VpReadProfileProblems) readProblems = nullptr;

private:
    template <class Function>
    void Bind(Function& function, const char* name)
    {
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
        if (function == nullptr)
        {
            throw std::runtime_error(std::string("not exported: ") + name);
        }
    }

    HMODULE m_module;
};

// The library over a directory with the sample printers.
struct SampleService
{
    SampleService()
    {
        directory.Write("sample.json", SampleProfile().dump());
        directory.Write("sparse.json", SparseProfile().dump());
        registry.SetProfileDirectory(directory.Path().wstring());
    }

    ProfileDirectory directory;
    ScratchMachineRegistry registry;
    ServiceLibrary library;
};

// Bytes that end exactly where readable memory ends.
class GuardedBytes
{
public:
    explicit GuardedBytes(const std::vector<std::byte>& bytes)
    {
        constexpr std::size_t kPage = 4096;
        const std::size_t pages = (bytes.size() + kPage - 1) / kPage;
        m_memory = static_cast<std::byte*>(
            VirtualAlloc(nullptr, (pages + 1) * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before = 0;
        VirtualProtect(m_memory + pages * kPage, kPage, PAGE_NOACCESS, &before);
        m_begin = m_memory + pages * kPage - bytes.size();
        std::copy(bytes.begin(), bytes.end(), m_begin);
    }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;
    ~GuardedBytes()
    {
        VirtualFree(m_memory, 0, MEM_RELEASE);
    }

    std::byte* Data() const
    {
        return m_begin;
    }

private:
    std::byte* m_memory = nullptr;
    std::byte* m_begin = nullptr;
};

} // namespace tsypr::service::test

#endif
