// The driver's UI library, called directly where Windows has no function that an application could call.
#ifndef TESSARY_PRINTCTL_CONFIG_LIBRARY_H
#define TESSARY_PRINTCTL_CONFIG_LIBRARY_H

#include "tools/printctl/devmode_buffer.h"

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>

namespace tsypr::printctl
{

// Owner of a loaded library.
struct LibraryCloser
{
    void operator()(HMODULE library) const noexcept
    {
        FreeLibrary(library);
    }
};
using LibraryHandle = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryCloser>;

// Loads a library by its full path and checks that it exports all the names. A Failure with ExitCode::System that says
// what is missing otherwise.
LibraryHandle LoadLibraryWithExports(const std::filesystem::path& file, const std::vector<const char*>& exports);

class ConfigLibrary
{
public:
    explicit ConfigLibrary(const std::filesystem::path& file);

    // The device mode that the spooler would store for a new printer. The printer need not exist yet.
    DevModeBuffer DriverDefault(const std::wstring& printer) const;

    // Converts input into output, which must hold a complete device mode already.
    void Convert(const std::wstring& printer, DevModeBuffer& input, DevModeBuffer& output) const;

private:
    using ConvertFunction = BOOL(WINAPI*)(wchar_t*, DEVMODEW*, DEVMODEW*, LONG*, DWORD);

    LibraryHandle m_library;
    ConvertFunction m_convert;
};

} // namespace tsypr::printctl

#endif
