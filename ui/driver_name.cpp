#include "ui/driver_name.h"

#include "lib/misc/exclusive_lock.h"

#include <utility>

namespace tsypr
{
namespace
{

ExclusiveLock g_lock; // two sheets may be open in one process
std::wstring g_name;

} // namespace

void SetCurrentDriverName(std::wstring name) noexcept
{
    const ScopedLock guard(g_lock);
    g_name = std::move(name);
}

std::wstring CurrentDriverName()
{
    const ScopedLock guard(g_lock);
    return g_name;
}

bool IsOwnDriver() noexcept
{
    const ScopedLock guard(g_lock);
    return g_name == kOwnDriverName;
}

} // namespace tsypr
