#include "tools/printctl/devmode_buffer.h"

#include "remote/private_devmode.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/text.h"

#include <cstddef>

namespace tsypr::printctl
{

namespace
{

constexpr size_t kSpareBytes = 64 * 1024;

// The smallest device mode that has all the fields printers use.
constexpr size_t kSmallestSize = offsetof(DEVMODEW, dmFormName);

// DocumentPropertiesW's answer to "how large", in bytes. Only the return value counts: not every spooler passes on the
// size that the driver puts into its header.
size_t QuerySize(const PrinterHandle& printer, std::wstring name)
{
    SetLastError(ERROR_SUCCESS);
    const LONG size = DocumentPropertiesW(nullptr, printer.Get(), name.data(), nullptr, nullptr, 0);
    if (size <= 0)
    {
        const DWORD error = GetLastError();
        ThrowSystem("DocumentPropertiesW for " + Quoted(name) + " (size query, returned " + std::to_string(size) + ")",
                    error);
    }
    return static_cast<size_t>(size);
}

// Nothing when a dialog was cancelled.
std::optional<DevModeBuffer> Ask(const PrinterHandle& printer, std::wstring name, DEVMODEW* requested, DWORD mode)
{
    DevModeBuffer result(QuerySize(printer, name));
    SetLastError(ERROR_SUCCESS);
    const LONG answer = DocumentPropertiesW(nullptr, printer.Get(), name.data(), result.Get(), requested, mode);
    if (answer == IDCANCEL && (mode & DM_IN_PROMPT) != 0)
    {
        return std::nullopt;
    }
    if (answer != IDOK)
    {
        const DWORD error = GetLastError();
        ThrowSystem("DocumentPropertiesW for " + Quoted(name) + " (returned " + std::to_string(answer) + ")", error);
    }
    result.CheckFilled("DocumentPropertiesW for " + Quoted(name));
    return result;
}

} // namespace

DevModeBuffer::DevModeBuffer(size_t size) : m_capacity(size), m_bytes(size + kSpareBytes) {}

DevModeBuffer DevModeBuffer::CopyOf(const DEVMODEW* dm)
{
    const size_t size = DevModeTotalSize(dm);
    DevModeBuffer copy(size);
    std::memcpy(copy.m_bytes.data(), dm, size);
    return copy;
}

DevModeBuffer DevModeBuffer::FromFile(const std::filesystem::path& file)
{
    const std::vector<uint8_t> bytes = ReadWholeFile(file);
    DevModeBuffer buffer(bytes.size());
    std::copy(bytes.begin(), bytes.end(), buffer.m_bytes.begin());
    const DEVMODEW* dm = buffer.Get();
    if (bytes.size() < kSmallestSize || dm->dmSize < kSmallestSize)
    {
        throw Failure(ExitCode::BadFile, Shown(file) + " is not a device mode: it is too short");
    }
    if (DevModeTotalSize(dm) != bytes.size())
    {
        throw Failure(ExitCode::BadFile,
                      Shown(file) + " is not a device mode: it states " + std::to_string(dm->dmSize) + " public and " +
                          std::to_string(dm->dmDriverExtra) + " driver bytes, but the file has " +
                          std::to_string(bytes.size()));
    }
    return buffer;
}

DEVMODEW* DevModeBuffer::Get() noexcept
{
    return reinterpret_cast<DEVMODEW*>(m_bytes.data());
}

const DEVMODEW* DevModeBuffer::Get() const noexcept
{
    return reinterpret_cast<const DEVMODEW*>(m_bytes.data());
}

size_t DevModeBuffer::Capacity() const noexcept
{
    return m_capacity;
}

void DevModeBuffer::CheckFilled(const std::string& source) const
{
    const size_t total = DevModeTotalSize(Get());
    if (Get()->dmSize < kSmallestSize || total > m_capacity)
    {
        throw Failure(ExitCode::System,
                      source + " gave a device mode of " + std::to_string(Get()->dmSize) + " public and " +
                          std::to_string(Get()->dmDriverExtra) + " driver bytes after asking for " +
                          std::to_string(m_capacity));
    }
}

void DevModeBuffer::ToFile(const std::filesystem::path& file) const
{
    WriteWholeFile(file, m_bytes.data(), DevModeTotalSize(Get()));
}

DevModeBuffer DefaultDevMode(const PrinterHandle& printer, const std::wstring& name)
{
    return *Ask(printer, name, nullptr, DM_OUT_BUFFER);
}

DevModeBuffer MergeDevMode(const PrinterHandle& printer, const std::wstring& name, DevModeBuffer& requested)
{
    return *Ask(printer, name, requested.Get(), DM_IN_BUFFER | DM_OUT_BUFFER);
}

std::optional<DevModeBuffer> PromptDevMode(const PrinterHandle& printer,
                                           const std::wstring& name,
                                           DevModeBuffer& requested)
{
    return Ask(printer, name, requested.Get(), DM_IN_PROMPT | DM_IN_BUFFER | DM_OUT_BUFFER);
}

} // namespace tsypr::printctl
