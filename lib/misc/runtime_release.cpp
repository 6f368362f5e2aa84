#include "lib/misc/runtime_release.h"

#include <version>

#ifdef __GLIBCXX__
namespace __gnu_cxx
{
void __freeres(); // NOLINT(bugprone-reserved-identifier): libstdc++'s own name; no header declares it
} // namespace __gnu_cxx
#endif

namespace tsypr
{

void ReleaseRuntimeMemory() noexcept
{
#ifdef __GLIBCXX__
    __gnu_cxx::__freeres();
#endif
}

} // namespace tsypr
