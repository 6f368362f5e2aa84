#include "lib/log/log_output.h"

#include "lib/file/file_lock.h"
#include "lib/log/log.h"
#include "lib/log/log_line.h"
#include "lib/log/log_retention.h"
#include "lib/log/log_rotation.h"
#include "lib/misc/clock.h"

#include <algorithm>

namespace tsypr
{
namespace
{

constexpr int64_t kLookMs = 1000;           // how long a file that was renamed away is still written to, at most
constexpr int64_t kRetryMs = 1000;          // between attempts to write when that failed
constexpr int64_t kRotationRetryMs = 1000;  // when a rotation failed, at first,
constexpr int64_t kRotationMostMs = 60'000; // and at most
constexpr int64_t kRotationBusyMs = 2;      // when another process is about to rotate

} // namespace

LogOutput::LogOutput(const char* tag, const LogSettings& settings)
    : m_path(settings.file), m_lockPath(m_path + ".lock"), m_ownFile(settings.ownFile),
      m_rotateBytes(settings.rotateBytes), m_keepRotated(settings.keepRotated)
{
    Reopen();
    const int64_t now = UtcNowMilliseconds();
    m_nextLook.Begin(now, kLookMs);
    if (m_file.IsOpen())
    {
        RemoveOldLogs(m_path, tag, settings.keepFiles);
    }
}

LogOutput::~LogOutput()
{
    m_file.Close();
}

void LogOutput::Write(std::string_view line, int64_t now) noexcept
{
    if (m_failing)
    {
        if (!m_nextTry.IsOver(now))
        {
            ++m_lost;
            return;
        }
        LookAtFile(now);
    }
    else if (m_nextLook.IsOver(now))
    {
        LookAtFile(now);
    }
    if (IsFull(line.size()) && m_nextRotation.IsOver(now))
    {
        Rotate(now);
    }
    m_failing = !ReportLost(now) || !Append(line);
    if (m_failing)
    {
        ++m_lost;
        m_nextTry.Begin(now, kRetryMs);
        return;
    }
    ++m_sinceLook;
}

void LogOutput::Close(int64_t now) noexcept
{
    ReportLost(now);
    m_file.Close();
}

// Whether the line would make the file larger than allowed. An empty file takes any line.
bool LogOutput::IsFull(size_t length) noexcept
{
    if (m_rotateBytes == 0)
    {
        return false;
    }
    // Others fill the file, too, so its size is asked for at times even when we have not written that much.
    if (m_size + length > m_rotateBytes || (!m_ownFile && m_unseen > m_rotateBytes / 8))
    {
        m_size = m_file.Size();
        m_unseen = 0;
    }
    return m_size != 0 && m_size + length > m_rotateBytes;
}

// Opens the file that is at the path now, if it is not the one that we have open.
void LogOutput::LookAtFile(int64_t now) noexcept
{
    m_nextLook.Begin(now, kLookMs);
    if (!m_file.IsOpen())
    {
        Reopen();
    }
    else if (!m_file.IsStillAt(m_path.c_str()))
    {
        m_lost += m_file.IsDeleted() ? m_sinceLook : 0;
        Reopen();
    }
    else if (m_ownFile && m_file.Size() < m_size)
    {
        Reopen(); // somebody has emptied it: its end is somewhere else now
    }
    m_sinceLook = 0;
}

// The old file stays in use when there is no new one.
void LogOutput::Reopen() noexcept
{
    AppendFile file;
    if (m_file.IsDeleted())
    {
        m_file.Close(); // Windows gives its name free only then
    }
    if (file.Open(m_path.c_str(), Mode()))
    {
        m_file.TakeFrom(file);
        m_torn = false;
        m_size = m_file.Size();
        m_unseen = 0;
    }
}

void LogOutput::Rotate(int64_t now) noexcept
{
    try
    {
        RotateWithLock(now);
    }
    catch (...)
    {
        m_nextRotation.Begin(now, kRotationRetryMs);
    }
}

void LogOutput::RotateWithLock(int64_t now)
{
    FileLock lock;
    if (!m_ownFile)
    {
        const FileResult locked = lock.Acquire(m_lockPath.c_str(), LockMode::Exclusive, 0);
        if (locked.error == FileError::TimedOut || locked.error == FileError::InUse)
        {
            m_nextRotation.Begin(now, kRotationBusyMs);
            return;
        }
        // Without any lock, as in a folder where no new file may be made, the renaming fails as well.
    }
    if (!m_file.IsStillAt(m_path.c_str()))
    {
        LookAtFile(now); // another process was faster
        return;
    }
    ShiftFiles(now);
}

void LogOutput::ShiftFiles(int64_t now)
{
    if (!ShiftLogFiles(m_path, m_keepRotated).Ok())
    {
        // Somebody looks at one of the files in a way that forbids it. It goes on in the same file.
        m_rotationPause = std::clamp(m_rotationPause * 2, kRotationRetryMs, kRotationMostMs);
        m_nextRotation.Begin(now, m_rotationPause);
        return;
    }
    m_rotationPause = 0;
    m_sinceLook = 0;
    Reopen();
}

bool LogOutput::Append(std::string_view line) noexcept
{
    if (m_torn && m_file.Append("\n", 1))
    {
        m_torn = false;
    }
    size_t written = 0;
    const bool done = !m_torn && m_file.Append(line.data(), line.size(), &written);
    m_torn = m_torn || (!done && written != 0);
    m_size += written;
    m_unseen += written;
    return done;
}

// Returns false when not even that can be written.
bool LogOutput::ReportLost(int64_t now) noexcept
{
    if (m_lost == 0)
    {
        return true;
    }
    TextBuffer line;
    AppendLinePrefix(line, kLogWarning, now);
    AppendFormat(line, "LogWrite, %llu lines were lost.\n", static_cast<unsigned long long>(m_lost));
    const bool done = Append(line.View());
    m_lost = done ? 0 : m_lost;
    return done;
}

} // namespace tsypr
