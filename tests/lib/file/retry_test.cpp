// What other processes are in the way of is tried again, and the result tells.
#include "lib/file/system_file.h"
#include "tests/lib/file/file_test.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace tsypr::test
{
namespace
{

TEST(Retries, SucceedOrEndWithTheTime)
{
    const Workplace place("retries");
    const SystemError busy = ToSystemError(FileError::InUse);
    for (const PathOperation& operation : kPathOperations)
    {
        if (operation.step == FileOperation::Any)
        {
            continue;
        }
        SCOPED_TRACE(operation.name);
        place.TidyUp();
        FileResult result;
        {
            FileFaultPlan plan;
            plan.Fail(operation.step, busy, 1, FileFaultPlan::kAlways);
            result = place.Run(operation, {1, 4, 100}); // flushing alone takes its time
            EXPECT_EQ(result.error, FileError::InUse);
            EXPECT_EQ(result.systemError, busy);
            EXPECT_EQ(result.lastRetriedError, busy);
            EXPECT_TRUE(result.retries >= 1 && result.retries <= 100) << result.retries;
            EXPECT_TRUE(result.elapsedMs >= 100 && result.elapsedMs < 5000) << result.elapsedMs;
            result = place.Run(operation, kNoRetry);
            EXPECT_EQ(result.error, FileError::InUse);
            EXPECT_EQ(result.retries + result.elapsedMs, 0U);
        }
        place.TidyUp();
        FileFaultPlan plan;
        plan.Fail(operation.step, busy, 1, 3);
        result = place.Run(operation);
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
    const Workplace place("held");
    for (const PathOperation& operation : kPathOperations)
    {
        const std::string_view name = operation.name;
        if (name != "replace" && name != "read" && name != "remove")
        {
            continue;
        }
        SCOPED_TRACE(name);
        place.TidyUp();
        const HANDLE held =
            CreateFileW(std::filesystem::path(place.file).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(held, INVALID_HANDLE_VALUE);
        FileResult result = place.Run(operation, {1, 10, 40});
        EXPECT_TRUE(result.error == FileError::InUse || result.error == FileError::AccessDenied);
        EXPECT_GE(result.elapsedMs, 40U);
        EXPECT_GE(result.retries, 1U);
        FileFaultPlan plan;
        plan.Call(
            operation.step, [](void* handle) { CloseHandle(handle); }, held, 2);
        result = place.Run(operation, {1, 10, 10'000});
        EXPECT_TRUE(result.Ok());
        EXPECT_GE(result.retries, 1U);
        EXPECT_TRUE(result.lastRetriedError == ERROR_SHARING_VIOLATION ||
                    result.lastRetriedError == ERROR_ACCESS_DENIED);
    }
}
#endif

} // namespace
} // namespace tsypr::test
