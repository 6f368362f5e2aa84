// Stands in for two functions of ICU that its platform layer mentions and that no converter calls. The real ones would
// bring half a megabyte of locale and time zone code into every program.
#include <unicode/uloc.h>

U_CAPI const char* U_EXPORT2 uprv_detectWindowsTimeZone()
{
    return nullptr;
}

U_CAPI int32_t U_EXPORT2 uloc_canonicalize(const char*, char*, int32_t, UErrorCode* error)
{
    *error = U_UNSUPPORTED_ERROR;
    return 0;
}
