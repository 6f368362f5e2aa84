// Real files for tests: a folder that goes away with its test, and what was written into it.
#ifndef TESSARY_TESTS_LIB_TEST_FILES_H
#define TESSARY_TESTS_LIB_TEST_FILES_H

#include "lib/file/operations.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tsypr
{

inline void PrintTo(FileError error, std::ostream* out)
{
    *out << FileErrorText(error);
}

} // namespace tsypr

namespace tsypr::test
{

// A new empty folder below the current directory, which CTest makes the one of the build.
struct ScratchFolder
{
    explicit ScratchFolder(const std::string& name) : path(std::filesystem::current_path() / ("scratch-" + name))
    {
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::filesystem::path operator/(const std::filesystem::path& name) const
    {
        return path / name;
    }

    // Makes the file with the folders above it; gives its path.
    std::filesystem::path Write(const std::filesystem::path& name, std::string_view contents) const
    {
        std::filesystem::path file = path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << contents;
        return file;
    }

    // Empty also when there is no such file.
    std::string Read(const std::filesystem::path& name) const
    {
        std::ifstream file(path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    const std::filesystem::path path;
};

inline std::string Utf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

// The names in a folder, one after the other with a blank behind each.
inline std::string Names(const std::string& folder)
{
    std::vector<DirectoryEntry> entries;
    std::string names = ListDirectory(folder.c_str(), entries).Ok() ? "" : "<cannot be listed>";
    for (const DirectoryEntry& entry : entries)
    {
        names += entry.name + ' ';
    }
    return names;
}

// The lines of a log. A last line without its end is marked as such.
inline std::vector<std::string> ReadLines(const std::filesystem::path& path)
{
    std::ifstream text(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
    {
        lines.push_back(text.eof() ? line + "<no end>" : line);
    }
    return lines;
}

} // namespace tsypr::test

#endif
