#include "lib/file/temporary_file.h"

#include "lib/misc/process.h"
#include "lib/unicode/utf16.h"

#include <atomic>
#include <string_view>

namespace tsypr
{
namespace
{

// Names of 255 bytes of UTF-8 are what every file system takes, also one behind a Windows share.
constexpr size_t kLongestStem = 220;
constexpr int kMostNames = 100;
constexpr std::string_view kEnding = ".tmp";

constinit std::atomic<uint32_t> g_counter{0};

// Whether the unit is one behind the first of a character.
bool GoesOn(NativeChar unit) noexcept
{
    const auto value = static_cast<uint32_t>(unit);
    return sizeof(unit) == 1 ? IsContinuation(value) : IsLowSurrogate(value);
}

// How much a unit of a name adds to its length as UTF-8.
size_t Utf8Bytes(NativeChar unit) noexcept
{
#ifdef _WIN32
    const auto value = static_cast<uint32_t>(unit);
    return value < 0x80 ? 1 : value < 0x800 || IsSurrogate(value) ? 2 : 3;
#else
    return sizeof(unit);
#endif
}

NativePath StemOf(const NativePath& name)
{
    size_t bytes = 0;
    size_t cut = 0; // the last place where it might end
    for (size_t at = 0; at < name.size(); ++at)
    {
        cut = GoesOn(name[at]) ? cut : at;
        bytes += Utf8Bytes(name[at]);
        if (bytes > kLongestStem)
        {
            return name.substr(0, cut);
        }
    }
    return name;
}

NativePath TemporaryName(const NativePath& stem, uint32_t number)
{
    const std::string suffix =
        '.' + std::to_string(CurrentProcessId()) + '-' + std::to_string(number) + std::string(kEnding);
    return stem + NativePath(suffix.begin(), suffix.end());
}

size_t CountDigits(const NativePath& text, size_t from) noexcept
{
    size_t end = from;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9')
    {
        ++end;
    }
    return end - from;
}

// Whether what follows the stem is ".PID-N.tmp".
bool IsTemporaryName(const NativePath& name, size_t stemLength) noexcept
{
    size_t at = stemLength;
    for (const char mark : {'.', '-'})
    {
        if (at >= name.size() || name[at] != static_cast<NativeChar>(mark))
        {
            return false;
        }
        const size_t digits = CountDigits(name, at + 1);
        if (digits == 0)
        {
            return false;
        }
        at += digits + 1;
    }
    return name.compare(at, NativePath::npos, NativePath(kEnding.begin(), kEnding.end())) == 0;
}

} // namespace

SystemError CheckReplaceable(const NativePath& path, bool& exists) noexcept
{
    FileStatus status;
    const SystemError error = sys::Status(path, status);
    exists = error == 0;
    if (!exists)
    {
        return ToFileError(error) == FileError::NotFound ? 0 : error;
    }
    switch (status.kind)
    {
    case FileKind::Directory:
        return ToSystemError(FileError::IsADirectory);
    case FileKind::Other:
        return ToSystemError(FileError::InvalidArgument); // a device must stay one
    case FileKind::File:
        break;
    }
    return status.readOnly ? ToSystemError(FileError::AccessDenied) : 0;
}

TemporaryFile::TemporaryFile(const NativePath& target, Retrier& retrier)
    : m_retrier(retrier), m_target(target), m_folder(ParentOf(target)), m_stem(StemOf(NameOf(target)))
{
}

TemporaryFile::~TemporaryFile()
{
    if (m_handle != kNoFile)
    {
        sys::Close(m_handle);
        if (!m_committed)
        {
            sys::DeleteFileOrLink(m_path);
        }
    }
}

void TemporaryFile::RemoveLeftovers() const
{
    // What cannot be listed or removed now is left to the next one.
    std::vector<sys::Entry> entries;
    sys::List(m_folder, m_stem + NativePath(1, '.'), entries);
    for (const sys::Entry& entry : entries)
    {
        if (entry.status.kind == FileKind::File && IsTemporaryName(entry.name, m_stem.size()))
        {
            sys::RemoveUnmarked(JoinPath(m_folder, entry.name));
        }
    }
}

SystemError TemporaryFile::Create(const NativePath& model, bool sameAccess)
{
    if (m_stem.empty())
    {
        return ToSystemError(FileError::IsADirectory); // a root
    }
    RemoveLeftovers();
    SystemError error = 0;
    for (int names = 0; names < kMostNames; ++names)
    {
        m_path = JoinPath(m_folder, TemporaryName(m_stem, ++g_counter));
        error = m_retrier.Run(m_path, [&] { return sys::CreateMarked(m_path, model, sameAccess, m_handle); });
        if (ToFileError(error) != FileError::AlreadyExists)
        {
            break;
        }
    }
    return error;
}

SystemError TemporaryFile::Write(const void* bytes, size_t length) noexcept
{
    return sys::WriteAll(m_handle, bytes, length);
}

SystemError TemporaryFile::Commit(bool overwrite)
{
    SystemError error = sys::Flush(m_handle);
    if (error != 0)
    {
        return error;
    }
    error = m_retrier.Run(m_target, [&] { return sys::RenameMarked(m_handle, m_path, m_target, overwrite); });
    if (error != 0)
    {
        return error;
    }
    m_committed = true;
    return sys::FlushRename(m_handle, m_folder);
}

} // namespace tsypr
