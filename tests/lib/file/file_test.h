// What the tests of this folder share.
#ifndef TESSARY_TESTS_LIB_FILE_FILE_TEST_H
#define TESSARY_TESTS_LIB_FILE_FILE_TEST_H

#include "lib/file/fault_plan.h"
#include "lib/file/file.h"
#include "lib/file/file_lock.h"
#include "lib/file/operations.h"
#include "lib/file/read_file.h"
#include "lib/file/replace_file.h"
#include "tests/lib/test_files.h"

#include <gtest/gtest.h>

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

// What an operation of the table below is tried on.
enum class On
{
    File,
    Folder, // an empty one
    Tree,
    New
};

// Every operation on a path, and the step of it that another process may be in the way of (Any: it is not retried).
// `other` is the path of another file for those that take two.
struct PathOperation
{
    const char* name;
    FileOperation step;
    On on;
    FileResult (*run)(const char* path, const char* other, const RetryPolicy& retry);
};

using Text = const char*;
using Retry = const RetryPolicy&;

template <class Answer>
FileResult Asking(Text path, FileResult (*question)(Text path, Answer& answer) noexcept)
{
    Answer answer{};
    return question(path, answer);
}

inline constexpr PathOperation kPathOperations[] = {
    {"replace", FileOperation::Rename, On::File, [](Text p, Text, Retry r) { return ReplaceFileContents(p, "x", r); }},
    {"create", FileOperation::Open, On::New, [](Text p, Text, Retry r) { return ReplaceFileContents(p, "x", r); }},
    {"open",
     FileOperation::Open,
     On::File,
     [](Text p, Text, Retry r) { return File().Open(p, FileAccess::Read, FileCreation::OpenExisting, r); }},
    {"read",
     FileOperation::Open,
     On::File,
     [](Text p, Text, Retry r)
     {
         std::string contents = "old";
         const FileResult result = ReadFileContents(p, 100, contents, r);
         EXPECT_TRUE(result.Ok() || contents.empty());
         return result;
     }},
    {"copy", FileOperation::Open, On::File, [](Text p, Text o, Retry r) { return CopyFileTo(p, o, true, r); }},
    {"copy to", FileOperation::Open, On::New, [](Text p, Text o, Retry r) { return CopyFileTo(o, p, true, r); }},
    {"move", FileOperation::Rename, On::File, [](Text p, Text o, Retry r) { return MoveFileTo(p, o, true, r); }},
    {"move to", FileOperation::Rename, On::New, [](Text p, Text o, Retry r) { return MoveFileTo(o, p, true, r); }},
    {"remove", FileOperation::Delete, On::File, [](Text p, Text, Retry r) { return RemoveFile(p, r); }},
    {"remove folder",
     FileOperation::Delete,
     On::Folder,
     [](Text p, Text, Retry r) { return RemoveEmptyDirectory(p, r); }},
    {"remove tree", FileOperation::Delete, On::Tree, [](Text p, Text, Retry r) { return RemoveDirectoryTree(p, r); }},
    {"make", FileOperation::Any, On::New, [](Text p, Text, Retry) { return MakeDirectory(p); }},
    {"make tree", FileOperation::Any, On::New, [](Text p, Text, Retry) { return MakeDirectoryTree(p); }},
    {"lock",
     FileOperation::Any,
     On::New,
     [](Text p, Text, Retry) { return FileLock().Acquire(p, LockMode::Exclusive, 0); }},
    {"status", FileOperation::Any, On::File, [](Text p, Text, Retry) { return Asking<FileStatus>(p, GetFileStatus); }},
    {"free space",
     FileOperation::Any,
     On::File,
     [](Text p, Text, Retry) { return Asking<uint64_t>(p, GetFreeDiskSpace); }},
    {"list",
     FileOperation::Any,
     On::Tree,
     [](Text p, Text, Retry)
     {
         std::vector<DirectoryEntry> entries(1);
         const FileResult result = ListDirectory(p, entries);
         EXPECT_TRUE(result.Ok() || entries.empty());
         return result;
     }},
};

// A folder with what the operations are tried on.
struct Workplace
{
    explicit Workplace(const char* name) : scratch(name) {}

    // Makes whole again what an operation has changed.
    void TidyUp() const
    {
        RemoveDirectoryTree(fresh.c_str());
        RemoveFile(fresh.c_str());
        EXPECT_TRUE(MakeDirectoryTree(folder.c_str()).Ok() && MakeDirectoryTree((tree + "/folder").c_str()).Ok());
        EXPECT_EQ(Create(tree + "/folder/file"), FileError::None);
        EXPECT_TRUE(Create(file) == FileError::None && Create(other) == FileError::None);
    }

    FileResult Run(const PathOperation& operation, const RetryPolicy& retry = {}) const
    {
        const std::string& path = operation.on == On::File     ? file
                                  : operation.on == On::Folder ? folder
                                  : operation.on == On::Tree   ? tree
                                                               : fresh;
        return operation.run(path.c_str(), other.c_str(), retry);
    }

    const ScratchFolder scratch;
    const std::string base = Utf8(scratch.path);
    const std::string file = base + "/a-file-with-a-name-that-no-string-holds-without-an-allocation";
    const std::string other = base + "/another-file-with-a-name-of-some-length";
    const std::string fresh = base + "/something-that-is-not-there-at-the-beginning";
    const std::string folder = base + "/a-folder-with-a-name-of-some-length";
    const std::string tree = base + "/a-folder-with-something-in-it";
};

} // namespace tsypr::test

#endif
