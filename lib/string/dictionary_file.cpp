#include "lib/string/dictionary_file.h"

#include "lib/file/read_file.h"
#include "lib/file/replace_file.h"

namespace tsypr
{

FileResult LoadDictionary(const char* path,
                          Dictionary& out,
                          std::vector<size_t>* damagedLines,
                          size_t* damagedCount,
                          const RetryPolicy& retry) noexcept
{
    std::string text;
    const FileResult result = ReadFileContents(path, kMaxKeyValueFileBytes, text, retry);
    const size_t damaged = out.Load(text, damagedLines);
    if (damagedCount != nullptr)
    {
        *damagedCount = damaged;
    }
    return result;
}

FileResult SaveDictionary(const char* path, const Dictionary& dictionary) noexcept
{
    std::string text;
    if (!dictionary.Save(text))
    {
        return Failure(FileError::InvalidArgument);
    }
    if (text.size() > kMaxKeyValueFileBytes)
    {
        return Failure(FileError::TooLarge);
    }
    return ReplaceFileContents(path, text);
}

} // namespace tsypr
