// Device modes as a program handles them: a block of memory that a driver fills and a file may hold.
#ifndef TESSARY_PRINTCTL_DEVMODE_BUFFER_H
#define TESSARY_PRINTCTL_DEVMODE_BUFFER_H

#include "tools/printctl/spooler.h"

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tsypr::printctl
{

// Memory for one device mode, zero-filled, with room to spare behind it for drivers that write too much.
class DevModeBuffer
{
public:
    explicit DevModeBuffer(size_t size);

    // A copy of a complete device mode.
    static DevModeBuffer CopyOf(const DEVMODEW* dm);

    // The device mode in a file. A Failure with ExitCode::BadFile unless the sizes it states add up to the file's.
    static DevModeBuffer FromFile(const std::filesystem::path& file);

    DEVMODEW* Get() noexcept;
    const DEVMODEW* Get() const noexcept;

    // Bytes asked for at construction.
    size_t Capacity() const noexcept;

    // Checks what a driver wrote: a Failure with ExitCode::System, naming the source, when the sizes that the device
    // mode states are impossible or do not fit.
    void CheckFilled(const std::string& source) const;

    void ToFile(const std::filesystem::path& file) const;

private:
    size_t m_capacity;
    std::vector<uint8_t> m_bytes;
};

// The printer's default settings as DocumentPropertiesW gives them to every application.
DevModeBuffer DefaultDevMode(const PrinterHandle& printer, const std::wstring& name);

// DocumentPropertiesW's merge of requested settings into the printer's, without a dialog.
DevModeBuffer MergeDevMode(const PrinterHandle& printer, const std::wstring& name, DevModeBuffer& requested);

// Lets the user edit the settings in the printer's dialog, which begins with those requested. Nothing when the user
// cancels.
std::optional<DevModeBuffer> PromptDevMode(const PrinterHandle& printer,
                                           const std::wstring& name,
                                           DevModeBuffer& requested);

} // namespace tsypr::printctl

#endif
