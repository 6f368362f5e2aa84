// What other processes are in the way of is tried again, and the result tells.
#include "tests/lib/file/file_test.h"

#include "lib/file/file.h"
#include "lib/file/system_file.h"

#include <chrono>

#ifdef _WIN32
#include <windows.h>
#endif

namespace tsypr::test
{
namespace
{

// Operations that are retried, and the step of them that others are in the way of.
struct Retried
{
    FileOperation step;
    std::function<FileResult(const RetryPolicy& retry)> run;
};

TEST(Retries, SucceedOrEndWithTheTime)
{
    const ScratchFolder scratch("retries");
    const std::string base = Utf8(scratch.path);
    const std::string a = base + "/a";
    const std::string b = base + "/b";
    const std::string folder = base + "/folder";
    const Retried cases[] = {
        {FileOperation::Open,
         [&](const RetryPolicy& retry)
         {
             File file;
             return file.Open(a.c_str(), FileAccess::Read, FileCreation::OpenExisting, retry);
         }},
        {FileOperation::Open,
         [&](const RetryPolicy& retry)
         {
             std::string contents;
             return ReadFileContents(a.c_str(), 100, contents, retry);
         }},
        {FileOperation::Rename, [&](const RetryPolicy& retry) { return ReplaceFileContents(a.c_str(), "new", retry); }},
        {FileOperation::Open, [&](const RetryPolicy& retry) { return ReplaceFileContents(a.c_str(), "new", retry); }},
        {FileOperation::Open, [&](const RetryPolicy& retry) { return CopyFileTo(a.c_str(), b.c_str(), true, retry); }},
        {FileOperation::Rename,
         [&](const RetryPolicy& retry) { return MoveFileTo(a.c_str(), b.c_str(), true, retry); }},
        {FileOperation::Delete, [&](const RetryPolicy& retry) { return RemoveFile(a.c_str(), retry); }},
        {FileOperation::Delete, [&](const RetryPolicy& retry) { return RemoveEmptyDirectory(folder.c_str(), retry); }},
        {FileOperation::Delete, [&](const RetryPolicy& retry) { return RemoveDirectoryTree(base.c_str(), retry); }},
    };
    const SystemError busy = ToSystemError(FileError::InUse);
    int number = 0;
    for (const Retried& test : cases)
    {
        SCOPED_TRACE(number++);
        ASSERT_TRUE(MakeDirectoryTree(folder.c_str()).Ok());
        ASSERT_EQ(Create(a, "a"), FileError::None);
        FileFaultPlan plan;
        plan.Fail(test.step, busy, 1, FileFaultPlan::kAlways);
        FileResult result = test.run({1, 4, 15});
        EXPECT_EQ(result.error, FileError::InUse);
        EXPECT_EQ(result.systemError, busy);
        EXPECT_EQ(result.lastRetriedError, busy);
        EXPECT_GE(result.retries, 2U);
        EXPECT_LE(result.retries, 15U);
        EXPECT_GE(result.elapsedMs, 15U);
        EXPECT_LT(result.elapsedMs, 5000U);
        result = test.run(kNoRetry);
        EXPECT_EQ(result.error, FileError::InUse);
        EXPECT_EQ(result.retries, 0U);
        EXPECT_EQ(result.elapsedMs, 0U);
    }
    for (const Retried& test : cases)
    {
        SCOPED_TRACE(number++);
        ASSERT_TRUE(MakeDirectoryTree(folder.c_str()).Ok());
        ASSERT_EQ(Create(a, "a"), FileError::None);
        FileFaultPlan plan;
        plan.Fail(test.step, busy, 1, 3);
        const FileResult result = test.run({});
        EXPECT_TRUE(result.Ok());
        EXPECT_EQ(result.systemError, 0U);
        EXPECT_EQ(result.retries, 3U);
        EXPECT_EQ(result.lastRetriedError, busy);
        EXPECT_GE(result.elapsedMs, 3U);
    }
}

TEST(Retries, WhatDoesNotPassIsNotRetried)
{
    const ScratchFolder scratch("no-retries");
    const std::string path = Utf8(scratch / "file");
    for (const FileError error : {FileError::DiskFull, FileError::NotFound, FileError::AccessDenied, FileError::Other})
    {
        FileFaultPlan plan;
        plan.Fail(FileOperation::Open, error);
        const FileResult result = ReplaceFileContents(path.c_str(), "new");
        EXPECT_EQ(result.error, error);
        EXPECT_EQ(result.retries, 0U);
    }
}

#ifdef _WIN32
TEST(Retries, FilesThatOthersHoldOpen)
{
    const ScratchFolder scratch("held");
    const std::filesystem::path name = scratch / "file";
    const std::string path = Utf8(name);
    const std::function<FileResult(const RetryPolicy&)> operations[] = {
        [&](const RetryPolicy& retry) { return ReplaceFileContents(path.c_str(), "new", retry); },
        [&](const RetryPolicy& retry)
        {
            std::string contents;
            return ReadFileContents(path.c_str(), 100, contents, retry);
        },
        [&](const RetryPolicy& retry) { return RemoveFile(path.c_str(), retry); },
    };
    int number = 0;
    for (const auto& operation : operations)
    {
        SCOPED_TRACE(number++);
        ASSERT_EQ(Create(path, "old"), FileError::None);
        const HANDLE held = CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(held, INVALID_HANDLE_VALUE);
        FileResult result = operation({1, 10, 40});
        EXPECT_TRUE(result.error == FileError::InUse || result.error == FileError::AccessDenied);
        EXPECT_GE(result.elapsedMs, 40U);
        EXPECT_GE(result.retries, 3U);
        std::thread releasing(
            [held]
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                CloseHandle(held);
            });
        result = operation({1, 10, 10'000});
        EXPECT_TRUE(result.Ok());
        EXPECT_GE(result.retries, 1U);
        EXPECT_TRUE(result.lastRetriedError == ERROR_SHARING_VIOLATION ||
                    result.lastRetriedError == ERROR_ACCESS_DENIED);
        releasing.join();
    }
}
#endif

} // namespace
} // namespace tsypr::test
