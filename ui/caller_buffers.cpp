#include "ui/caller_buffers.h"

#include "remote/private_devmode.h"

namespace tsypr
{
namespace
{

bool IsLikeFetched(DEVMODEW* buffer, const DEVMODEW* fetched) noexcept
{
    return buffer->dmSize == fetched->dmSize && buffer->dmDriverExtra == fetched->dmDriverExtra &&
           (GetPrivateDevMode(buffer) != nullptr) == (GetPrivateDevMode(fetched) != nullptr);
}

} // namespace

DEVMODEW* InputOf(const DOCUMENTPROPERTYHEADER& header, const DEVMODEW* fetched) noexcept
{
    DEVMODEW* in = header.pdmIn;
    return in != nullptr && ((header.fMode & DM_IN_BUFFER) != 0 || IsLikeFetched(in, fetched)) ? in : nullptr;
}

DEVMODEW* OutputOf(const DOCUMENTPROPERTYHEADER& header, const DEVMODEW* fetched) noexcept
{
    DEVMODEW* out = header.pdmOut;
    return out != nullptr && ((header.fMode & DM_OUT_BUFFER) != 0 || IsLikeFetched(out, fetched)) ? out : nullptr;
}

} // namespace tsypr
