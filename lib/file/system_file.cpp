#include "lib/file/system_file.h"

namespace tsypr
{

FileError ToFileError(SystemError error) noexcept
{
    for (const ErrorMeaning& meaning : ErrorMeanings())
    {
        if (meaning.code == error)
        {
            return meaning.error;
        }
    }
    return FileError::Other;
}

SystemError ToSystemError(FileError error) noexcept
{
    for (const ErrorMeaning& meaning : ErrorMeanings())
    {
        if (meaning.error == error)
        {
            return meaning.code;
        }
    }
    return ErrorMeanings().back().code;
}

SystemError sys::WriteAll(FileHandle handle, const void* bytes, size_t length) noexcept
{
    const auto* next = static_cast<const char*>(bytes);
    while (length != 0)
    {
        size_t written = 0;
        const SystemError error = Write(handle, next, length, written);
        if (error != 0)
        {
            return error;
        }
        if (written == 0)
        {
            return ToSystemError(FileError::DiskFull);
        }
        next += written;
        length -= written;
    }
    return 0;
}

} // namespace tsypr
