#include "remote/printer_name.h"

#include "module/log.h"
#include "module/malloc_ptr.h"

#include <windows.h>

#include <winspool.h>

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "PrintUtils::GetDriverName";

class PrinterHandle
{
public:
    explicit PrinterHandle(HANDLE handle) noexcept : m_handle(handle) {}
    ~PrinterHandle()
    {
        ClosePrinter(m_handle);
    }
    PrinterHandle(const PrinterHandle&) = delete;
    PrinterHandle& operator=(const PrinterHandle&) = delete;

private:
    HANDLE m_handle;
};

// Asks for DRIVER_INFO_1W; null on failure, which is logged.
MallocPtr<BYTE> QueryDriver(HANDLE printer, const wchar_t* printerName) noexcept
{
    DWORD size = 0;
    if (GetPrinterDriverW(printer, nullptr, 1, nullptr, 0, &size) != FALSE ||
        GetLastError() != ERROR_INSUFFICIENT_BUFFER)
    {
        LogError(
            "%s(): GetPrinterDriver() failed to return size (err=%d)\n", kFunction, static_cast<int>(GetLastError()));
        return nullptr;
    }
    MallocPtr<BYTE> buffer(static_cast<BYTE*>(std::malloc(size)));
    if (buffer == nullptr)
    {
        LogError("%s(): failed to allocate buffer (size = %d)\n", kFunction, static_cast<int>(size));
        return nullptr;
    }
    if (GetPrinterDriverW(printer, nullptr, 1, buffer.get(), size, &size) == FALSE)
    {
        LogError("%s(): GetPrinterDriver(\"%S\") failed (err=%d)\n",
                 kFunction,
                 printerName,
                 static_cast<int>(GetLastError()));
        return nullptr;
    }
    return buffer;
}

} // namespace

std::wstring PrintUtils::GetDriverName(const wchar_t* printerName) noexcept
{
    HANDLE handle = nullptr;
    if (OpenPrinterW(const_cast<wchar_t*>(printerName), &handle, nullptr) == FALSE)
    {
        // The message has no line end.
        LogError("%s, OpenPrinter failed with error=%d", kFunction, static_cast<int>(GetLastError()));
        return {};
    }
    const PrinterHandle printer(handle);
    const MallocPtr<BYTE> buffer = QueryDriver(handle, printerName);
    if (buffer == nullptr)
    {
        return {};
    }
    try
    {
        const auto* info = reinterpret_cast<const DRIVER_INFO_1W*>(buffer.get());
        return info->pName != nullptr ? info->pName : L"";
    }
    catch (...)
    {
        return {};
    }
}

} // namespace tsypr
