// Real files for tests: a folder that goes away with its test, and what was written into it.
#ifndef TESSARY_TESTS_LIB_TEST_FILES_H
#define TESSARY_TESTS_LIB_TEST_FILES_H

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace tsypr::test
{

// A new empty folder below the current directory, which CTest makes the one of the build.
class ScratchFolder
{
public:
    explicit ScratchFolder(const char* name)
        : m_path(std::filesystem::current_path() / (std::string("scratch-") + name))
    {
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const
    {
        return m_path;
    }
    std::filesystem::path operator/(const std::filesystem::path& name) const
    {
        return m_path / name;
    }

private:
    std::filesystem::path m_path;
};

inline std::string Utf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

inline std::string ReadFile(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline void WriteFile(const std::filesystem::path& path, std::string_view text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// The lines of a log. A last line without its end is marked as such.
inline std::vector<std::string> ReadLines(const std::filesystem::path& path)
{
    const std::string text = ReadFile(path);
    std::vector<std::string> lines;
    for (size_t begin = 0; begin < text.size();)
    {
        const size_t end = text.find('\n', begin);
        lines.push_back(end != std::string::npos ? text.substr(begin, end - begin) : text.substr(begin) + "<no end>");
        begin = end != std::string::npos ? end + 1 : text.size();
    }
    return lines;
}

} // namespace tsypr::test

#endif
