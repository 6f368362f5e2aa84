#include "ui/driver_name.h"

#include "lib/misc/exclusive_lock.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
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

FixedText<256> CurrentDriverName() noexcept
{
    FixedText<256> name = {};
    const ScopedLock guard(g_lock);
    std::wmemcpy(name.text, g_name.data(), std::min(g_name.size(), std::size(name.text) - 1));
    return name;
}

bool IsOwnDriver() noexcept
{
    const ScopedLock guard(g_lock);
    return g_name == kOwnDriverName;
}

} // namespace tsypr
