// Giving back what the statically linked C++ runtime keeps for itself.
#ifndef TESSARY_LIB_MISC_RUNTIME_RELEASE_H
#define TESSARY_LIB_MISC_RUNTIME_RELEASE_H

namespace tsypr
{

// To be called as the last thing before a library of ours is unloaded: the runtime's reserve for exceptions (some 72
// KB) would otherwise stay in the host process with every load and unload. Harmless when repeated. No exception may be
// thrown by the library afterwards.
void ReleaseRuntimeMemory() noexcept;

} // namespace tsypr

#endif
