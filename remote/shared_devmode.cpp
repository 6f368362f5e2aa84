#include "remote/shared_devmode.h"

#include "remote/devmode_copy.h"
#include "remote/private_devmode.h"

#include <algorithm>
#include <cstddef>

namespace tsypr
{

DevModeCopy CopyDevMode(const DEVMODEW* dm) noexcept
{
    // Room for the two size fields even if the device mode claims to be smaller: whoever holds the copy reads them.
    constexpr size_t kSmallest = offsetof(DEVMODEW, dmFields);
    const size_t size = DevModeTotalSize(dm);
    DevModeCopy copy(static_cast<DEVMODEW*>(std::malloc(std::max(size, kSmallest))));
    if (copy != nullptr)
    {
        std::memcpy(static_cast<void*>(copy.get()), dm, size);
        copy->dmSize = dm->dmSize;
        copy->dmDriverExtra = dm->dmDriverExtra;
    }
    return copy;
}

SharedDevMode CopyToSharedDevMode(const DEVMODEW* dm) noexcept
{
    try
    {
        return CopyDevMode(dm);
    }
    catch (...)
    {
        return {};
    }
}

} // namespace tsypr
