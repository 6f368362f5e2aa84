#include "lib/user/preference_file.h"

#include "lib/file/file_lock.h"
#include "lib/file/read_file.h"
#include "lib/file/replace_file.h"
#include "lib/string/dictionary_file.h"
#include "lib/string/key_value_text.h"

#include <string>

namespace tsypr
{
namespace
{

// Lines of UTF-8 in a file of UTF-16 would damage it for everybody.
bool IsUtf16(std::string_view text) noexcept
{
    return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
}

FileResult RewriteLocked(const char* path, std::string_view key, const std::string_view* value)
{
    std::string text;
    const FileResult read = ReadFileContents(path, kMaxKeyValueFileBytes, text);
    if (!read.Ok() && read.error != FileError::NotFound)
    {
        return read;
    }
    if (IsUtf16(text))
    {
        return Failure(FileError::Other);
    }
    std::string rewritten = text;
    if (!RewriteKeyValueText(rewritten, key, value))
    {
        return Failure(FileError::OutOfMemory);
    }
    if (rewritten == text)
    {
        return {};
    }
    if (rewritten.size() > kMaxKeyValueFileBytes)
    {
        return Failure(FileError::TooLarge);
    }
    return ReplaceFileContents(path, rewritten);
}

FileResult Rewrite(const char* path, std::string_view key, const std::string_view* value, uint32_t lockMs) noexcept
{
    if (path == nullptr || *path == '\0' || !IsWritableKey(key))
    {
        return Failure(FileError::InvalidArgument);
    }
    try
    {
        FileLock lock;
        const FileResult locked = lock.Acquire((std::string(path) + ".lock").c_str(), LockMode::Exclusive, lockMs);
        return locked.Ok() ? RewriteLocked(path, key, value) : locked;
    }
    catch (...)
    {
        return Failure(FileError::OutOfMemory);
    }
}

} // namespace

FileResult SetPreferenceInFile(const char* path, std::string_view key, std::string_view value, uint32_t lockMs) noexcept
{
    return Rewrite(path, key, &value, lockMs);
}

FileResult RemovePreferenceFromFile(const char* path, std::string_view key, uint32_t lockMs) noexcept
{
    return Rewrite(path, key, nullptr, lockMs);
}

} // namespace tsypr
