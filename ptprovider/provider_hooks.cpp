#include "ptprovider/provider_hooks.h"

#include "module/log.h"

namespace tsypr
{

void InitPTProvider() noexcept
{
    LogVerbose("%s called.\n", "InitPTProvider");
}

void UninitPTProvider() noexcept
{
    LogVerbose("%s called.\n", "UninitPTProvider");
}

} // namespace tsypr
