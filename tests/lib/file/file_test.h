// What the tests of this folder share.
#ifndef TESSARY_TESTS_LIB_FILE_FILE_TEST_H
#define TESSARY_TESTS_LIB_FILE_FILE_TEST_H

#include "lib/file/fault_plan.h"
#include "lib/file/file_lock.h"
#include "lib/file/operations.h"
#include "lib/file/read_file.h"
#include "lib/file/replace_file.h"
#include "tests/lib/test_files.h"

#include <gtest/gtest.h>

#include <ostream>

namespace tsypr
{

inline void PrintTo(FileError error, std::ostream* out)
{
    *out << FileErrorText(error);
}

} // namespace tsypr

namespace tsypr::test
{

// "東京 😀 ö": characters of two, three and four bytes.
inline constexpr char kForeignName[] = "\xE6\x9D\xB1\xE4\xBA\xAC \xF0\x9F\x98\x80 \xC3\xB6";

inline FileError Create(const std::string& path, std::string_view contents = "contents")
{
    return ReplaceFileContents(path.c_str(), contents).error;
}

// "<error text>" for a file that cannot be read.
inline std::string Contents(const std::string& path)
{
    std::string contents;
    const FileResult result = ReadFileContents(path.c_str(), size_t{1} << 30, contents);
    return result.Ok() ? contents : '<' + std::string(FileErrorText(result.error)) + '>';
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

// What a child process does that is started with these arguments; its exit code.
int RunChild(const std::vector<std::string>& arguments);

} // namespace tsypr::test

#endif
