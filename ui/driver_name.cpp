#include "ui/driver_name.h"

#include "lib/misc/exclusive_lock.h"

#include <utility>

namespace tsypr
{
namespace
{

// Two sheets may be open in one process.
class NameGuard
{
public:
    NameGuard() noexcept
    {
        s_lock.Acquire();
    }
    ~NameGuard()
    {
        s_lock.Release();
    }
    NameGuard(const NameGuard&) = delete;
    NameGuard& operator=(const NameGuard&) = delete;

    std::wstring& Name() noexcept
    {
        return s_name;
    }

private:
    inline static ExclusiveLock s_lock;
    inline static std::wstring s_name;
};

} // namespace

void SetCurrentDriverName(std::wstring name) noexcept
{
    NameGuard guard;
    guard.Name() = std::move(name);
}

std::wstring CurrentDriverName()
{
    NameGuard guard;
    return guard.Name();
}

bool IsOwnDriver() noexcept
{
    NameGuard guard;
    return guard.Name() == kOwnDriverName;
}

} // namespace tsypr
