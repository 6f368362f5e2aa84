#include "lib/file/read_file.h"

#include "lib/file/file.h"
#include "lib/file/retrier.h"

#include <algorithm>

namespace tsypr
{
namespace
{

constexpr size_t kBlock = 64 * 1024;

// Reads until the file ends: its size may change meanwhile, and some files do not know theirs.
FileResult ReadAll(File& file, size_t maxBytes, std::string& contents)
{
    uint64_t size = 0;
    FileResult result = file.GetSize(size);
    if (result.Ok() && size > maxBytes)
    {
        return ToResult(ToSystemError(FileError::TooLarge));
    }
    size_t room = static_cast<size_t>(size) + 1; // one more, to meet the end
    while (result.Ok())
    {
        const size_t before = contents.size();
        contents.resize(before + room);
        size_t read = 0;
        result = file.Read(contents.data() + before, room, read);
        contents.resize(before + read);
        if (contents.size() > maxBytes)
        {
            return ToResult(ToSystemError(FileError::TooLarge));
        }
        if (read < room)
        {
            return result;
        }
        room = kBlock;
    }
    return result;
}

} // namespace

FileResult ReadFileContents(const char* path, size_t maxBytes, std::string& contents, const RetryPolicy& retry) noexcept
{
    contents.clear();
    FileResult result = Guarded(
        [&]
        {
            File file;
            FileResult opened = file.Open(path, FileAccess::Read, FileCreation::OpenExisting, retry);
            if (!opened.Ok())
            {
                return opened;
            }
            const FileResult read = ReadAll(file, maxBytes, contents);
            opened.error = read.error;
            opened.systemError = read.systemError;
            return opened;
        });
    if (!result.Ok())
    {
        contents.clear();
    }
    return result;
}

bool ReadWholeFile(const char* path, size_t maxBytes, std::string& out) noexcept
{
    return ReadFileContents(path, maxBytes, out, kNoRetry).Ok();
}

} // namespace tsypr
