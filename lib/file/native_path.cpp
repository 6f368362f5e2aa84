#include "lib/file/native_path.h"

namespace tsypr
{
namespace
{

#ifdef _WIN32
constexpr NativeChar kSeparator = L'\\';
constexpr NativeChar kHere[] = L".";
#else
constexpr NativeChar kSeparator = '/';
constexpr NativeChar kHere[] = ".";
#endif

// Where the last part ends, and where it begins.
struct LastPart
{
    size_t begin;
    size_t end;
};

LastPart FindLastPart(const NativePath& path) noexcept
{
    size_t end = path.size();
    while (end != 0 && path[end - 1] == kSeparator)
    {
        --end;
    }
    size_t begin = end;
    while (begin != 0 && path[begin - 1] != kSeparator)
    {
        --begin;
    }
#ifdef _WIN32
    if (end != 0 && path[end - 1] == L':')
    {
        begin = end; // a drive's root
    }
#endif
    return {begin, end};
}

} // namespace

NativePath ParentOf(const NativePath& path)
{
    const LastPart last = FindLastPart(path);
    if (last.begin == last.end)
    {
        return {};
    }
    if (last.begin == 0)
    {
        return kHere;
    }
    return path.substr(0, last.begin);
}

NativePath NameOf(const NativePath& path)
{
    const LastPart last = FindLastPart(path);
    return path.substr(last.begin, last.end - last.begin);
}

NativePath JoinPath(const NativePath& folder, const NativePath& name)
{
    NativePath joined = folder;
    if (!joined.empty() && joined.back() != kSeparator)
    {
        joined += kSeparator;
    }
    return joined += name;
}

} // namespace tsypr
