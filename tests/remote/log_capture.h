// The log of the code under test, read back message by message.
#ifndef TESSARY_TESTS_REMOTE_LOG_CAPTURE_H
#define TESSARY_TESTS_REMOTE_LOG_CAPTURE_H

#include "lib/log/log.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace tsypr::test
{

using Messages = std::vector<std::string>;

inline Messages ErrorsOf(Messages messages)
{
    std::erase_if(messages, [](const std::string& message) { return !message.starts_with("error "); });
    return messages;
}

// Runs the log into a file of its own for as long as it lives.
class LogCapture
{
public:
    explicit LogCapture(const char* level = "verbose")
    {
        char folder[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, folder);
        static int s_files = 0;
        m_path = std::string(folder) + "remote_tests_" + std::to_string(GetCurrentProcessId()) + "_" +
                 std::to_string(++s_files) + ".log";
        Dictionary settings;
        settings.Set(kLogFileLevelKey, level);
        settings.Set(kLogFileNameKey, m_path);
        settings.Set(kLogThrottleLinesKey, "0"); // every line counts here, also the same one a thousand times
        EXPECT_TRUE(LogStart("remote", settings));
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture()
    {
        LogStop();
        DeleteFileA(m_path.c_str());
    }

    // The messages written since the last call, each as "level message". A line that is not whole is a test failure.
    Messages Take()
    {
        std::stringstream content;
        std::ifstream file(m_path, std::ios::binary);
        file.seekg(static_cast<std::streamoff>(m_read));
        content << file.rdbuf();
        const std::string text = content.str();
        m_read += text.size();
        Messages messages;
        size_t begin = 0;
        for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', begin))
        {
            messages.push_back(WithoutPrefix(text.substr(begin, end - begin)));
            begin = end + 1;
        }
        EXPECT_EQ(text.size(), begin) << "the log ends inside a line";
        return messages;
    }

    // The error messages written since the last call.
    Messages TakeErrors()
    {
        return ErrorsOf(Take());
    }

private:
    static std::string WithoutPrefix(const std::string& line)
    {
        char level[8] = {};
        unsigned process = 0;
        int length = -1;
        std::sscanf(line.c_str(), "%*4d-%*2d-%*2d %*2d:%*2d:%*2d.%*3dZ %7s %u:%*u%n", level, &process, &length);
        if (length < 0 || process != GetCurrentProcessId() || LogLevelFromName(level) < 0)
        {
            ADD_FAILURE() << "not a whole line: " << line;
            return line;
        }
        return level + line.substr(static_cast<size_t>(length));
    }

    std::string m_path;
    size_t m_read = 0;
};

} // namespace tsypr::test

#endif
