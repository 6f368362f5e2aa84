// Locks between objects, threads and processes.
#include "lib/misc/process.h"
#include "tests/lib/child_process.h"
#include "tests/lib/file/file_test.h"

namespace tsypr::test
{
namespace
{

TEST(FileLock, ModesOwnersAndTimeOuts)
{
    const ScratchFolder scratch("lock");
    const std::string path = Utf8(scratch / "lock");
    FileLock first;
    FileLock second;
    std::string owner = "old";
    ASSERT_TRUE(first.Acquire(path.c_str(), LockMode::Exclusive, 0, &owner).Ok());
    EXPECT_TRUE(first.IsHeld());
    EXPECT_EQ(owner, "");
    for (const LockMode mode : {LockMode::Exclusive, LockMode::Shared})
    {
        FileResult result = second.Acquire(path.c_str(), mode, 0, &owner);
        EXPECT_EQ(result.error, FileError::TimedOut);
        EXPECT_EQ(result.retries, 0U);
        EXPECT_FALSE(second.IsHeld());
        const std::string expected = "process " + std::to_string(CurrentProcessId()) + " (lib_file_tests";
        EXPECT_EQ(owner.substr(0, expected.size()), expected);
        EXPECT_NE(owner.find(" on "), std::string::npos);
        EXPECT_EQ(owner.back(), 'Z');
        result = second.Acquire(path.c_str(), mode, 40);
        EXPECT_EQ(result.error, FileError::TimedOut);
        EXPECT_GE(result.elapsedMs, 40U);
        EXPECT_GE(result.retries, 1U);
        EXPECT_NE(result.lastRetriedError, 0U);
    }
    first.Release();
    EXPECT_EQ(Contents(path), ""); // the file stays, empty
    EXPECT_TRUE(first.Acquire(path.c_str(), LockMode::Shared, 0).Ok());
    EXPECT_TRUE(second.Acquire(path.c_str(), LockMode::Shared, 0).Ok());
    FileLock third;
    EXPECT_EQ(third.Acquire(path.c_str(), LockMode::Exclusive, 0, &owner).error, FileError::TimedOut);
    EXPECT_EQ(owner, "");
    first.Release();
    first.Release();
    second.Release();
    EXPECT_TRUE(third.Acquire(path.c_str(), LockMode::Exclusive, 0).Ok());
    EXPECT_TRUE(third.Acquire(path.c_str(), LockMode::Shared, 0).Ok()); // what was held is released first
}

TEST(FileLock, BadPathsAndFaults)
{
    const ScratchFolder scratch("lock-bad");
    const std::string path = Utf8(scratch / "lock");
    FileLock lock;
    std::string owner;
    EXPECT_EQ(lock.Acquire(Utf8(scratch / "missing" / "lock").c_str(), LockMode::Exclusive, 0).error,
              FileError::NotFound);
    EXPECT_EQ(lock.Acquire(Utf8(scratch.path).c_str(), LockMode::Shared, 0).error, FileError::IsADirectory);
    {
        FileFaultPlan plan;
        plan.Fail(FileOperation::Lock, FileError::DiskFull); // as where there are no locks
        EXPECT_EQ(lock.Acquire(path.c_str(), LockMode::Exclusive, 1000).error, FileError::DiskFull);
        EXPECT_FALSE(lock.IsHeld());
        // A full disk keeps nobody from locking, it only leaves the owner unknown.
        plan.Fail(FileOperation::Write, FileError::DiskFull);
        EXPECT_TRUE(lock.Acquire(path.c_str(), LockMode::Exclusive, 0).Ok());
        // A read-only folder whose lock file can be read.
        plan.Fail(FileOperation::Open, FileError::AccessDenied, plan.Seen(FileOperation::Open) + 1);
        FileLock reader;
        EXPECT_EQ(reader.Acquire(path.c_str(), LockMode::Shared, 0, &owner).error, FileError::TimedOut);
        EXPECT_EQ(owner, "");
    }
    lock.Release();
    std::ofstream(scratch / "lock") << "process 1 (dead.exe) on HOST since 2024-03-05 14:15:02Z\n";
    EXPECT_TRUE(lock.Acquire(path.c_str(), LockMode::Shared, 0).Ok());
    FileLock other;
    EXPECT_EQ(other.Acquire(path.c_str(), LockMode::Exclusive, 0, &owner).error, FileError::TimedOut);
    EXPECT_EQ(owner, ""); // not the dead one
}

#ifndef _WIN32
TEST(FileLock, ARemovedLockFileIsMadeAnew)
{
    const ScratchFolder scratch("lock-removed");
    std::string path = Utf8(scratch / "lock");
    FileLock first;
    FileLock second;
    FileLock third;
    ASSERT_TRUE(first.Acquire(path.c_str(), LockMode::Exclusive, 0).Ok());
    // It waits on the file, which is removed before it tries again, and must notice.
    FileFaultPlan plan;
    plan.Call(
        FileOperation::Lock,
        [](void* context) { RemoveFile(static_cast<const std::string*>(context)->c_str()); },
        &path,
        2);
    EXPECT_TRUE(second.Acquire(path.c_str(), LockMode::Exclusive, 10'000).Ok());
    EXPECT_EQ(third.Acquire(path.c_str(), LockMode::Exclusive, 0).error, FileError::TimedOut);
}
#endif

TEST(FileLock, BetweenProcesses)
{
    const ScratchFolder scratch("lock-processes");
    const std::string path = Utf8(scratch / "lock");
    const std::string ready = Utf8(scratch / "ready");
    ChildProcess child({"hold-lock", path, ready});
    WaitForContents(scratch / "ready");
    FileLock lock;
    std::string owner;
    EXPECT_EQ(lock.Acquire(path.c_str(), LockMode::Exclusive, 20, &owner).error, FileError::TimedOut);
    EXPECT_EQ(owner.substr(0, 8), "process ");
    EXPECT_EQ(owner.find(std::to_string(CurrentProcessId()) + ' '), std::string::npos);
    child.Kill();
    EXPECT_TRUE(lock.Acquire(path.c_str(), LockMode::Exclusive, 5000).Ok());
}

} // namespace
} // namespace tsypr::test
