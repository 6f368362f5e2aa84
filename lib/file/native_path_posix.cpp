#include "lib/file/native_path.h"

#include "lib/unicode/codeset.h"

#include <cerrno>

namespace tsypr
{

SystemError ToNativePath(const char* path, NativePath& native)
{
    if (path == nullptr || *path == '\0')
    {
        return EINVAL;
    }
    native = path;
    Utf16String unused;
    unused.reserve(native.size()); // so that the conversion itself can only fail for ill-formed text
    return CodeSet_Utf8ToUtf16(native, unused) ? 0 : EINVAL;
}

std::string ToUtf8(const NativePath& name)
{
    return name;
}

} // namespace tsypr
