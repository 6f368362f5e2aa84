// Print ticket questions to the client printer.
#ifndef TESSARY_PTPROVIDER_REMOTE_QUERY_H
#define TESSARY_PTPROVIDER_REMOTE_QUERY_H

#include "remote/remote_printer_service.h"

#include <cstdint>
#include <utility>

namespace tsypr
{

// An open client printer, or none.
class RemotePrinter
{
public:
    // Opens the client printer behind a local printer name.
    explicit RemotePrinter(const wchar_t* localPrinterName) noexcept
        : m_handle(OpenRemotePrinterByName(localPrinterName))
    {
    }
    ~RemotePrinter()
    {
        Close();
    }
    RemotePrinter(const RemotePrinter&) = delete;
    RemotePrinter& operator=(const RemotePrinter&) = delete;

    bool IsOpen() const noexcept
    {
        return m_handle != nullptr;
    }
    RemotePrinterHandle Handle() const noexcept
    {
        return m_handle;
    }
    void Close() noexcept
    {
        if (m_handle != nullptr)
        {
            RemoteService.VpCloseRemotePrinter(std::exchange(m_handle, nullptr));
        }
    }

private:
    RemotePrinterHandle m_handle;
};

enum class QueryKind : uint32_t
{
    PT2DM = 0, // print ticket to device mode
    DM2PT = 1, // device mode to print ticket
    PT2PC = 2, // print ticket to print capabilities
    PTCHK = 3  // print ticket to a valid print ticket
};

// Asks one question and holds the reply, which stays the service's own, until it is given back.
class RemoteQuery
{
public:
    // `input` may be null with a size (in bytes) of 0. The outcome is logged on behalf of `function`.
    RemoteQuery(const RemotePrinter& printer,
                QueryKind kind,
                const void* input,
                uint32_t inputSize,
                const char* function) noexcept;
    ~RemoteQuery()
    {
        Release();
    }
    RemoteQuery(const RemoteQuery&) = delete;
    RemoteQuery& operator=(const RemoteQuery&) = delete;

    // What the conversion on the client came to.
    HRESULT Result() const noexcept
    {
        return m_result;
    }
    // Null when no reply came.
    const BYTE* Data() const noexcept
    {
        return static_cast<const BYTE*>(m_data);
    }
    uint32_t Size() const noexcept
    {
        return m_size;
    }
    bool HasData() const noexcept
    {
        return m_data != nullptr && m_size != 0;
    }
    // Gives the reply back.
    void Release() noexcept;

private:
    QueryKind m_kind;
    void* m_data = nullptr;
    uint32_t m_size = 0;
    int32_t m_result = E_FAIL; // unless the service says otherwise
};

} // namespace tsypr

#endif
