// Printers and drivers as Windows' spooler knows them.
#ifndef TESSARY_PRINTCTL_SPOOLER_H
#define TESSARY_PRINTCTL_SPOOLER_H

#include <windows.h>
#include <winspool.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tsypr::printctl
{

inline constexpr wchar_t kDriverName[] = L"Tessary Universal EMF Driver";
inline constexpr wchar_t kEnvironment[] = L"Windows x64";

// Owner of a printer handle.
class PrinterHandle
{
public:
    PrinterHandle() = default;

    explicit PrinterHandle(HANDLE handle) noexcept : m_handle(handle) {}

    PrinterHandle(PrinterHandle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}

    PrinterHandle& operator=(PrinterHandle&& other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }

    ~PrinterHandle()
    {
        if (m_handle != nullptr)
        {
            ClosePrinter(m_handle);
        }
    }

    HANDLE Get() const noexcept
    {
        return m_handle;
    }

private:
    HANDLE m_handle = nullptr;
};

struct PrinterEntry
{
    std::wstring name;
    std::wstring driver;
    std::wstring port;
};

struct DriverEntry
{
    std::wstring name;
    std::filesystem::path driverFile;
    std::filesystem::path dataFile;
    std::filesystem::path configFile;
};

// access: PRINTER_ACCESS_USE or PRINTER_ALL_ACCESS. A Failure with ExitCode::NotFound when there is no such printer.
PrinterHandle OpenPrinterByName(const std::wstring& name, ACCESS_MASK access = PRINTER_ACCESS_USE);

// The printer's PRINTER_INFO structure of the given level in a buffer of its own.
std::vector<BYTE> PrinterInfo(const PrinterHandle& printer, DWORD level);

// The driver that an open printer uses.
DriverEntry DriverOf(const PrinterHandle& printer, const std::wstring& name);

// Local printers by name; with a driver name only that driver's.
std::vector<PrinterEntry> ListPrinters(const std::optional<std::wstring>& driver);

// The installed 64-bit drivers.
std::vector<DriverEntry> ListDrivers();
std::optional<DriverEntry> FindDriver(const std::wstring& name);

// Where the spooler keeps 64-bit drivers; the files of the installed ones are in its folder "3".
std::filesystem::path DriverDirectory();

// Registers a driver whose files are given by full paths; the spooler copies them.
void RegisterDriver(const DriverEntry& driver);
void UnregisterDriver(const std::wstring& name);

// deviceMode: the printer's default settings.
void CreatePrinter(const PrinterEntry& printer, DEVMODEW* deviceMode);
void DeletePrinterByName(const std::wstring& name);

// "1.2.3.4" from the file's version resource, or empty.
std::wstring FileVersion(const std::filesystem::path& file);

} // namespace tsypr::printctl

#endif
