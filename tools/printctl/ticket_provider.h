// The driver's print ticket provider, used as Windows' print ticket services use it.
#ifndef TESSARY_PRINTCTL_TICKET_PROVIDER_H
#define TESSARY_PRINTCTL_TICKET_PROVIDER_H

#include "ptprovider/print_ticket_interface.h"
#include "tools/printctl/config_library.h"
#include "tools/printctl/devmode_buffer.h"
#include "tools/printctl/spooler.h"

#include <combaseapi.h>

#include <optional>
#include <string>

namespace tsypr::printctl
{

// COM for the calling thread.
class ComApartment
{
public:
    ComApartment();
    ~ComApartment();
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};

// A provider bound to one printer. Documents are bytes of XML. A Failure with ExitCode::BadFile for one that cannot be
// loaded, with ExitCode::System for a call that fails.
class TicketProvider
{
public:
    TicketProvider(const PrinterHandle& printer, const std::wstring& name);

    // A document, or nothing where it is a device mode, and whether the printer had to resolve conflicts.
    struct Answer
    {
        std::string document;
        bool isConflictResolved = false;
    };

    std::string FromDevMode(const DevModeBuffer& deviceMode) const;
    DevModeBuffer ToDevMode(const std::string& ticket, bool& isConflictResolved) const;
    // Without a ticket, for the printer's defaults.
    std::string Capabilities(const std::optional<std::string>& ticket) const;
    Answer Validate(const std::string& ticket) const;

private:
    std::string CallName(const char* method) const;

    ComApartment m_com;
    std::wstring m_printer;
    LibraryHandle m_library;
    ComPtr<IPrintTicketProvider> m_provider;
};

} // namespace tsypr::printctl

#endif
