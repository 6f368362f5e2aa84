// What a half-done installation has to take back.
#ifndef TESSARY_PRINTCTL_UNDO_LOG_H
#define TESSARY_PRINTCTL_UNDO_LOG_H

#include "tools/printctl/text.h"

#include <exception>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tsypr::printctl
{

// Collects one undo step for each change. Unless Commit was reached, the destructor runs them, last one first; a step
// that throws is reported on stderr and the others still run.
class UndoLog
{
public:
    UndoLog() = default;
    UndoLog(const UndoLog&) = delete;
    UndoLog& operator=(const UndoLog&) = delete;

    ~UndoLog()
    {
        // NOLINTNEXTLINE(modernize-loop-convert): clang 14 cannot compile the reverse view it asks for.
        for (auto step = m_undo.rbegin(); step != m_undo.rend(); ++step)
        {
            Run(step->second, "undoing \"" + step->first + "\"");
        }
    }

    // what: the change in words, for the message when undoing it fails.
    void OnFailure(std::string what, std::function<void()> undo)
    {
        m_undo.emplace_back(std::move(what), std::move(undo));
    }

    // Work that waits until everything has succeeded, such as deleting the copies kept for the undo steps.
    void OnSuccess(std::function<void()> action)
    {
        m_success.push_back(std::move(action));
    }

    void Commit()
    {
        m_undo.clear();
        for (const auto& action : m_success)
        {
            Run(action, "cleaning up");
        }
        m_success.clear();
    }

private:
    static void Run(const std::function<void()>& action, const std::string& what) noexcept
    {
        try
        {
            action();
        }
        catch (const std::exception& error)
        {
            WriteError("printctl: warning: " + what + ": " + error.what() + "\n");
        }
    }

    std::vector<std::pair<std::string, std::function<void()>>> m_undo;
    std::vector<std::function<void()>> m_success;
};

} // namespace tsypr::printctl

#endif
