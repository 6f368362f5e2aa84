#include "tools/ppdimport/atomic_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace tsypr::ppdimport
{
namespace
{

// A new file beside `path` that removes itself unless it is put in place.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& path) : m_target(path), m_name(path + ".XXXXXX")
    {
        m_file = mkstemp(m_name.data());
        if (m_file < 0)
        {
            Fail("cannot be created");
        }
    }

    ~TemporaryFile()
    {
        Close();
        if (!m_placed)
        {
            unlink(m_name.c_str());
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void Write(std::string_view content)
    {
        while (!content.empty())
        {
            const ssize_t written = write(m_file, content.data(), content.size());
            if (written < 0 && errno == EINTR)
            {
                continue;
            }
            if (written <= 0)
            {
                Fail("cannot be written");
            }
            content.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    // mkstemp makes private files; the result has the rights of any other new file.
    void PutInPlace()
    {
        const mode_t mask = umask(0);
        umask(mask);
        const bool complete = fchmod(m_file, 0666 & ~mask) == 0 && fsync(m_file) == 0;
        if (!complete || !Close() || std::rename(m_name.c_str(), m_target.c_str()) != 0)
        {
            Fail("cannot be completed");
        }
        m_placed = true;
    }

private:
    [[noreturn]] void Fail(const char* what) const
    {
        throw OutputError(m_target + " " + what + ": " + std::strerror(errno));
    }

    bool Close()
    {
        const int file = m_file;
        m_file = -1;
        return file < 0 || close(file) == 0;
    }

    std::string m_target;
    std::string m_name;
    int m_file = -1;
    bool m_placed = false;
};

} // namespace

void WriteFileAtomically(const std::string& path, std::string_view content)
{
    TemporaryFile file(path);
    file.Write(content);
    file.PutInPlace();
}

} // namespace tsypr::ppdimport
