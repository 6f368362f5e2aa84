// The print ticket provider on a printer that only the service knows.
#ifndef TESSARY_BENCH_PROVIDER_H
#define TESSARY_BENCH_PROVIDER_H

#include "bench/device_mode.h"
#include "ptprovider/print_ticket_interface.h"

namespace tsypr::bench
{

inline constexpr const wchar_t* kTicketPrinter = L"Studio Color";

// While it lives, this thread uses COM and the code linked into this program has the service. Throws
// std::runtime_error when something is missing.
class ProviderSurroundings
{
public:
    ProviderSurroundings();
    ~ProviderSurroundings();
    ProviderSurroundings(const ProviderSurroundings&) = delete;
    ProviderSurroundings& operator=(const ProviderSurroundings&) = delete;

    IPrintTicketProvider* Provider() const noexcept
    {
        return m_provider.Get();
    }

private:
    ComPtr<IPrintTicketProvider> m_provider;
};

// A device mode of the printer with N-up, staple, punch and a media type.
DeviceMode MakeTicketDeviceMode() noexcept;

} // namespace tsypr::bench

#endif
