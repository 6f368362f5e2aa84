#include "tools/printctl/spooler.h"

#include "tools/printctl/errors.h"
#include "tools/printctl/text.h"

#include <algorithm>

namespace tsypr::printctl
{

namespace
{

// The result of a spooler function of the kind "call with the size it asked for", called until its buffer is large
// enough. call(buffer, size, &needed) returns the function's result.
template <typename Call>
std::vector<BYTE> Fetch(const std::string& what, Call call)
{
    std::vector<BYTE> buffer;
    for (int attempt = 0; attempt < 5; ++attempt)
    {
        DWORD needed = 0;
        if (call(buffer.data(), static_cast<DWORD>(buffer.size()), &needed) != FALSE)
        {
            return buffer;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_INSUFFICIENT_BUFFER || needed <= buffer.size())
        {
            ThrowSystem(what, error);
        }
        buffer.assign(needed, 0);
    }
    throw Failure(ExitCode::System, what + " failed: it asks for more memory every time");
}

std::wstring Text(const wchar_t* text)
{
    return text == nullptr ? std::wstring() : std::wstring(text);
}

DriverEntry Entry(const DRIVER_INFO_3W& info)
{
    return {Text(info.pName), Text(info.pDriverPath), Text(info.pDataFile), Text(info.pConfigFile)};
}

template <typename Info>
const Info* Items(const std::vector<BYTE>& buffer)
{
    return reinterpret_cast<const Info*>(buffer.data());
}

// The spooler's structures want writable texts that they do not write to.
wchar_t* Writable(const std::wstring& text)
{
    return const_cast<wchar_t*>(text.c_str());
}

} // namespace

PrinterHandle OpenPrinterByName(const std::wstring& name, ACCESS_MASK access)
{
    HANDLE handle = nullptr;
    PRINTER_DEFAULTSW defaults{nullptr, nullptr, access};
    if (OpenPrinterW(Writable(name), &handle, &defaults) == FALSE)
    {
        const DWORD error = GetLastError();
        if (error == ERROR_INVALID_PRINTER_NAME)
        {
            throw Failure(ExitCode::NotFound, "there is no printer named " + Quoted(name));
        }
        ThrowSystem("OpenPrinterW for " + Quoted(name), error);
    }
    return PrinterHandle(handle);
}

std::vector<BYTE> PrinterInfo(const PrinterHandle& printer, DWORD level)
{
    return Fetch("GetPrinterW level " + std::to_string(level),
                 [&](BYTE* buffer, DWORD size, DWORD* needed)
                 { return GetPrinterW(printer.Get(), level, buffer, size, needed); });
}

DriverEntry DriverOf(const PrinterHandle& printer, const std::wstring& name)
{
    std::wstring environment = kEnvironment;
    const auto buffer = Fetch("GetPrinterDriverW for " + Quoted(name),
                              [&](BYTE* data, DWORD size, DWORD* needed)
                              { return GetPrinterDriverW(printer.Get(), environment.data(), 3, data, size, needed); });
    return Entry(*Items<DRIVER_INFO_3W>(buffer));
}

std::vector<PrinterEntry> ListPrinters(const std::optional<std::wstring>& driver)
{
    DWORD count = 0;
    const auto buffer = Fetch("EnumPrintersW",
                              [&](BYTE* data, DWORD size, DWORD* needed)
                              { return EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, data, size, needed, &count); });
    std::vector<PrinterEntry> printers;
    for (DWORD i = 0; i < count; ++i)
    {
        const PRINTER_INFO_2W& info = Items<PRINTER_INFO_2W>(buffer)[i];
        PrinterEntry entry{Text(info.pPrinterName), Text(info.pDriverName), Text(info.pPortName)};
        if (!entry.name.empty() && (!driver || entry.driver == *driver))
        {
            printers.push_back(std::move(entry));
        }
    }
    std::sort(printers.begin(), printers.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return printers;
}

std::vector<DriverEntry> ListDrivers()
{
    DWORD count = 0;
    std::wstring environment = kEnvironment;
    const auto buffer =
        Fetch("EnumPrinterDriversW",
              [&](BYTE* data, DWORD size, DWORD* needed)
              { return EnumPrinterDriversW(nullptr, environment.data(), 3, data, size, needed, &count); });
    std::vector<DriverEntry> drivers;
    for (DWORD i = 0; i < count; ++i)
    {
        drivers.push_back(Entry(Items<DRIVER_INFO_3W>(buffer)[i]));
    }
    return drivers;
}

std::optional<DriverEntry> FindDriver(const std::wstring& name)
{
    for (auto& driver : ListDrivers())
    {
        if (driver.name == name)
        {
            return driver;
        }
    }
    return std::nullopt;
}

std::filesystem::path DriverDirectory()
{
    std::wstring environment = kEnvironment;
    const auto buffer = Fetch("GetPrinterDriverDirectoryW",
                              [&](BYTE* data, DWORD size, DWORD* needed) {
                                  return GetPrinterDriverDirectoryW(nullptr, environment.data(), 1, data, size, needed);
                              });
    return FixedWide(Items<wchar_t>(buffer), buffer.size() / sizeof(wchar_t));
}

void RegisterDriver(const DriverEntry& driver)
{
    std::wstring environment = kEnvironment;
    const std::wstring driverFile = driver.driverFile.wstring();
    const std::wstring dataFile = driver.dataFile.wstring();
    const std::wstring configFile = driver.configFile.wstring();
    DRIVER_INFO_3W info{};
    info.cVersion = 3;
    info.pName = Writable(driver.name);
    info.pEnvironment = environment.data();
    info.pDriverPath = Writable(driverFile);
    info.pDataFile = Writable(dataFile);
    info.pConfigFile = Writable(configFile);
    const DWORD flags = APD_COPY_ALL_FILES | APD_COPY_FROM_DIRECTORY;
    if (AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&info), flags) == FALSE)
    {
        const DWORD error = GetLastError();
        ThrowSystem("AddPrinterDriverExW for " + Quoted(driver.name), error);
    }
}

void UnregisterDriver(const std::wstring& name)
{
    std::wstring environment = kEnvironment;
    DWORD error = ERROR_SUCCESS;
    for (const DWORD flags : {DWORD{DPD_DELETE_UNUSED_FILES}, DWORD{0}})
    {
        if (DeletePrinterDriverExW(nullptr, environment.data(), Writable(name), flags, 0) != FALSE)
        {
            return;
        }
        error = GetLastError();
        // Not every spooler knows the flag, and not every one reports success: the list of drivers decides.
        if (!FindDriver(name))
        {
            return;
        }
    }
    ThrowSystem("DeletePrinterDriverExW for " + Quoted(name), error);
}

void CreatePrinter(const PrinterEntry& printer, DEVMODEW* deviceMode)
{
    std::wstring processor = L"winprint";
    std::wstring dataType = L"RAW";
    PRINTER_INFO_2W info{};
    info.pPrinterName = Writable(printer.name);
    info.pPortName = Writable(printer.port);
    info.pDriverName = Writable(printer.driver);
    info.pPrintProcessor = processor.data();
    info.pDatatype = dataType.data();
    info.pDevMode = deviceMode;
    const PrinterHandle handle(AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&info)));
    if (handle.Get() == nullptr)
    {
        const DWORD error = GetLastError();
        ThrowSystem("AddPrinterW for " + Quoted(printer.name), error);
    }
}

void DeletePrinterByName(const std::wstring& name)
{
    const PrinterHandle printer = OpenPrinterByName(name, PRINTER_ALL_ACCESS);
    if (DeletePrinter(printer.Get()) == FALSE)
    {
        const DWORD error = GetLastError();
        ThrowSystem("DeletePrinter for " + Quoted(name), error);
    }
}

std::wstring FileVersion(const std::filesystem::path& file)
{
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), &ignored);
    std::vector<BYTE> block(size);
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    if (size == 0 || GetFileVersionInfoW(file.c_str(), 0, size, block.data()) == FALSE ||
        VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&info), &length) == FALSE || info == nullptr)
    {
        return {};
    }
    return std::to_wstring(HIWORD(info->dwFileVersionMS)) + L"." + std::to_wstring(LOWORD(info->dwFileVersionMS)) +
           L"." + std::to_wstring(HIWORD(info->dwFileVersionLS)) + L"." +
           std::to_wstring(LOWORD(info->dwFileVersionLS));
}

} // namespace tsypr::printctl
