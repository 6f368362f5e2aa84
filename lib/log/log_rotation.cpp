#include "lib/log/log_rotation.h"

#include "lib/file/operations.h"

namespace tsypr
{
namespace
{

std::string NumberedName(const std::string& path, uint32_t number)
{
    return number == 0 ? path : path + "." + std::to_string(number);
}

// The first number without a file, or else the last one, whose file goes.
uint32_t FirstGap(const std::string& path, uint32_t keep)
{
    uint32_t number = 1;
    while (number < keep && PathExists(NumberedName(path, number).c_str()))
    {
        ++number;
    }
    return number;
}

// Those beyond the last one, from when more were kept.
void RemoveSurplus(const std::string& path, uint32_t keep)
{
    uint32_t number = keep + 1;
    while (RemoveFile(NumberedName(path, number).c_str(), kNoRetry).Ok())
    {
        ++number;
    }
}

} // namespace

FileResult ShiftLogFiles(const std::string& path, uint32_t keep)
{
    RemoveSurplus(path, keep);
    // Windows gives a deleted file's name free only when the last one has closed it, so it is renamed in any case.
    for (uint32_t number = FirstGap(path, keep); number != 0; --number)
    {
        const std::string from = NumberedName(path, number - 1);
        const std::string to = NumberedName(path, number);
        const FileResult result = MoveFileTo(from.c_str(), to.c_str(), true, kNoRetry);
        if (!result.Ok())
        {
            return result;
        }
    }
    if (keep == 0)
    {
        RemoveSurplus(path, keep);
    }
    return {};
}

} // namespace tsypr
