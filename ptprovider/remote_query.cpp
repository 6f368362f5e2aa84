#include "ptprovider/remote_query.h"

#include "module/log.h"

namespace tsypr
{
namespace
{

constexpr const char* kKindNames[] = {"PT2DM", "DM2PT", "PT2PC", "PTCHK"};

} // namespace

RemoteQuery::RemoteQuery(
    const RemotePrinter& printer, QueryKind kind, const void* input, uint32_t inputSize, const char* function) noexcept
    : m_kind(kind)
{
    const auto number = static_cast<uint32_t>(kind);
    const DWORD status =
        RemoteService.VpMakePTQuery(printer.Handle(), number, inputSize, input, &m_size, &m_data, &m_result);
    LogVerbose("%s, VpMakePTQuery(%s) returned %d with query result %d and data size %d.\n",
               function,
               kKindNames[number],
               static_cast<int>(status),
               m_result,
               static_cast<int>(m_size));
}

void RemoteQuery::Release() noexcept
{
    void* data = std::exchange(m_data, nullptr);
    m_size = 0;
    if (data == nullptr)
    {
        return;
    }
    // The one reply that is a device mode goes back another way than the texts.
    if (m_kind == QueryKind::PT2DM)
    {
        RemoteService.VpFreeDevMode(data);
    }
    else
    {
        RemoteService.VpFreePTData(data);
    }
}

} // namespace tsypr
