// Diagnostic logging of the module, configured from the registry and the preferences store.
#ifndef TESSARY_MODULE_LOGGING_SETUP_H
#define TESSARY_MODULE_LOGGING_SETUP_H

namespace tsypr
{

// Starts the log of the module that `tag` names ("ui"). Returns 0 on success, 2 when the tag is null, 3 when the
// logging library refuses to start.
int InitLogging(const char* tag) noexcept;

// Stops the log, then the preferences store. Harmless when repeated.
void ShutdownLogging() noexcept;

} // namespace tsypr

#endif
