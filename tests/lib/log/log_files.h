// What the tests of the log share.
#ifndef TESSARY_TESTS_LIB_LOG_LOG_FILES_H
#define TESSARY_TESTS_LIB_LOG_LOG_FILES_H

#include "lib/log/log.h"
#include "tests/lib/test_files.h"

#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <map>
#include <utility>

namespace tsypr::test
{

inline Dictionary Settings(const std::string& file,
                           std::initializer_list<std::pair<const char*, const char*>> others = {})
{
    Dictionary settings;
    settings.Set(kLogFileNameKey, file);
    settings.Set(kLogFileLevelKey, "debug1");
    for (const auto& [key, value] : others)
    {
        settings.Set(key, value);
    }
    return settings;
}

// NAME.N, ..., NAME.1, NAME: the files of a rotation, the oldest first. A rotation that was cut off leaves a gap.
inline std::vector<std::filesystem::path> RotatedFiles(const std::filesystem::path& file)
{
    const std::string prefix = Utf8(file.filename()) + '.';
    std::map<int, std::filesystem::path, std::greater<>> files{{0, file}};
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path()))
    {
        const std::string name = Utf8(entry.path().filename());
        const int number = name.starts_with(prefix) ? std::atoi(name.c_str() + prefix.size()) : 0;
        if (number != 0)
        {
            files[number] = entry.path();
        }
    }
    std::vector<std::filesystem::path> ordered;
    for (const auto& [number, path] : files)
    {
        ordered.push_back(path);
    }
    return ordered;
}

// The lines of all of them.
inline std::vector<std::string> ReadRotated(const std::filesystem::path& file)
{
    std::vector<std::string> lines;
    for (const std::filesystem::path& each : RotatedFiles(file))
    {
        const std::vector<std::string> more = ReadLines(each);
        lines.insert(lines.end(), more.begin(), more.end());
    }
    return lines;
}

} // namespace tsypr::test

#endif
