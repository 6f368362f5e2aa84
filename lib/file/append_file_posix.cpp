#include "lib/file/append_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace tsypr
{
namespace
{

int OpenForAppend(const char* path) noexcept
{
    return open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
}

bool CreateParent(const std::string& path)
{
    const size_t separator = path.rfind('/');
    return separator != std::string::npos && separator != 0 && mkdir(path.substr(0, separator).c_str(), 0777) == 0;
}

} // namespace

bool AppendFile::Open(const char* path) noexcept
{
    Close();
    if (path == nullptr)
    {
        return false;
    }
    try
    {
        int descriptor = OpenForAppend(path);
        if (descriptor < 0 && errno == ENOENT && CreateParent(path))
        {
            descriptor = OpenForAppend(path);
        }
        m_handle = descriptor;
    }
    catch (...)
    {
        return false;
    }
    return IsOpen();
}

bool AppendFile::Append(const char* bytes, size_t length) noexcept
{
    if (!IsOpen())
    {
        return false;
    }
    ssize_t written = 0;
    do
    {
        written = write(static_cast<int>(m_handle), bytes, length);
    } while (written < 0 && errno == EINTR);
    return written >= 0 && static_cast<size_t>(written) == length;
}

void AppendFile::Close() noexcept
{
    if (IsOpen())
    {
        close(static_cast<int>(m_handle));
        m_handle = kNone;
    }
}

} // namespace tsypr
