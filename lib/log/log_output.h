// The log's file: lines go in, the file is rotated, replaced when it vanishes, and what cannot be written is counted.
#ifndef TESSARY_LIB_LOG_LOG_OUTPUT_H
#define TESSARY_LIB_LOG_LOG_OUTPUT_H

#include "lib/file/append_file.h"
#include "lib/log/log_settings.h"
#include "lib/string/text_buffer.h"

#include <cstdint>
#include <string>

namespace tsypr
{

// Used by one thread at a time. Times are milliseconds of the system's clock.
class LogOutput
{
public:
    // Opens the file and removes old ones of the same tag. A file that cannot be opened is tried again later. Throws
    // std::bad_alloc.
    LogOutput(const char* tag, const LogSettings& settings);
    ~LogOutput();
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;

    // Appends the line, which ends with a line break, in one write. Before that the file is rotated when it is full,
    // and opened again when another process has put a new one in its place.
    void Write(std::string_view line, int64_t now) noexcept;

    // Nothing but the write: for the last thread of a process, which may have stopped another one in here.
    void WriteBare(std::string_view line) noexcept
    {
        m_file.AppendImpatiently(line.data(), line.size());
    }

    // Writes how many lines were lost, if any were, and closes the file.
    void Close(int64_t now) noexcept;

private:
    // An action that must not be tried all the time.
    class Pause
    {
    public:
        bool IsOver(int64_t now) const noexcept
        {
            return now < m_begin || now - m_begin >= m_length;
        }
        void Begin(int64_t now, int64_t length) noexcept
        {
            m_begin = now;
            m_length = length;
        }

    private:
        int64_t m_begin = 0;
        int64_t m_length = 0;
    };

    bool IsFull(size_t length) noexcept;
    void LookAtFile(int64_t now) noexcept;
    void Reopen() noexcept;
    void Rotate(int64_t now) noexcept;
    void RotateWithLock(int64_t now);
    void ShiftFiles(int64_t now);
    bool Append(std::string_view line) noexcept;
    bool ReportLost(int64_t now) noexcept;
    AppendMode Mode() const noexcept
    {
        return m_ownFile ? AppendMode::Own : AppendMode::Shared;
    }

    const std::string m_path;
    const std::string m_lockPath;
    const bool m_ownFile;
    const uint64_t m_rotateBytes;
    const uint32_t m_keepRotated;

    AppendFile m_file;
    uint64_t m_size = 0;      // what we know of the file's size; others may have appended meanwhile
    uint64_t m_unseen = 0;    // what we appended since we last asked for it
    uint64_t m_sinceLook = 0; // lines since the file was last seen in its place
    uint64_t m_lost = 0;      // lines that could not be written
    bool m_torn = false;      // the file ends with a part of a line
    bool m_failing = false;   // the last attempt to open or write failed
    int64_t m_rotationPause = 0;
    Pause m_nextLook;
    Pause m_nextTry;
    Pause m_nextRotation;
};

} // namespace tsypr

#endif
