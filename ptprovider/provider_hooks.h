// Called by the module's start-up and release.
#ifndef TESSARY_PTPROVIDER_PROVIDER_HOOKS_H
#define TESSARY_PTPROVIDER_PROVIDER_HOOKS_H

namespace tsypr
{

// The last step of a successful start-up; only leaves a trace line.
void InitPTProvider() noexcept;

// The last step of the release; only leaves a trace line.
void UninitPTProvider() noexcept;

} // namespace tsypr

#endif
