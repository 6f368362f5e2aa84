#include "tools/printctl/config_library.h"

#include "remote/private_devmode.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/text.h"

namespace tsypr::printctl
{

namespace
{

constexpr DWORD kConvert = 1;       // CDM_CONVERT
constexpr DWORD kDriverDefault = 4; // CDM_DRIVER_DEFAULT

std::string CallName(const std::wstring& printer, const char* mode)
{
    return "DrvConvertDevMode for " + Quoted(printer) + " (" + mode + ")";
}

} // namespace

LibraryHandle LoadLibraryWithExports(const std::filesystem::path& file, const std::vector<const char*>& exports)
{
    LibraryHandle library(LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!library)
    {
        const DWORD error = GetLastError();
        ThrowSystem("loading " + Shown(file), error);
    }
    for (const char* name : exports)
    {
        if (GetProcAddress(library.get(), name) == nullptr)
        {
            throw Failure(ExitCode::System, Shown(file) + " does not export " + name);
        }
    }
    return library;
}

ConfigLibrary::ConfigLibrary(const std::filesystem::path& file)
    : m_library(
          LoadLibraryWithExports(file, {"DrvConvertDevMode", "DrvDocumentPropertySheets", "DrvDeviceCapabilities"})),
      m_convert(reinterpret_cast<ConvertFunction>(
          reinterpret_cast<void*>(GetProcAddress(m_library.get(), "DrvConvertDevMode"))))
{
}

DevModeBuffer ConfigLibrary::DriverDefault(const std::wstring& printer) const
{
    std::wstring name = printer;
    LONG needed = 0;
    SetLastError(ERROR_SUCCESS);
    const BOOL sized = m_convert(name.data(), nullptr, nullptr, &needed, kDriverDefault);
    const DWORD sizeError = GetLastError();
    if ((sized == FALSE && sizeError != ERROR_INSUFFICIENT_BUFFER) || needed <= 0)
    {
        ThrowSystem(CallName(printer, "size query"), sizeError);
    }
    DevModeBuffer result(static_cast<size_t>(needed));
    SetLastError(ERROR_SUCCESS);
    if (m_convert(name.data(), nullptr, result.Get(), &needed, kDriverDefault) == FALSE)
    {
        const DWORD error = GetLastError();
        ThrowSystem(CallName(printer, "driver default"), error);
    }
    result.CheckFilled(CallName(printer, "driver default"));
    return result;
}

void ConfigLibrary::Convert(const std::wstring& printer, DevModeBuffer& input, DevModeBuffer& output) const
{
    std::wstring name = printer;
    LONG needed = static_cast<LONG>(DevModeTotalSize(output.Get()));
    SetLastError(ERROR_SUCCESS);
    if (m_convert(name.data(), input.Get(), output.Get(), &needed, kConvert) == FALSE)
    {
        const DWORD error = GetLastError();
        ThrowSystem(CallName(printer, "convert"), error);
    }
    output.CheckFilled(CallName(printer, "convert"));
}

} // namespace tsypr::printctl
