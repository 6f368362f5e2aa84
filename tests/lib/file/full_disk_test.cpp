// A file system of two MiB: full, and read-only.
#ifndef _WIN32

#include "tests/lib/file/file_test.h"

#include "lib/file/append_file.h"

#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstring>

namespace tsypr::test
{
namespace
{

class FullDisk : public testing::Test
{
protected:
    void SetUp() override
    {
        // In a space of this process's own, so that nothing stays mounted whatever becomes of it.
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("tmpfs", m_base.c_str(), "tmpfs", 0, "size=2m") != 0)
        {
            GTEST_SKIP() << "may not mount: " << std::strerror(errno);
        }
        m_mounted = true;
    }

    void TearDown() override
    {
        if (m_mounted)
        {
            umount2(m_base.c_str(), MNT_DETACH);
        }
    }

    const ScratchFolder m_scratch{"small-disk"};
    const std::string m_base = Utf8(m_scratch.path);
    bool m_mounted = false;
};

TEST_F(FullDisk, LeavesWhatWasThere)
{
    const std::string path = m_base + "/file";
    const std::string large(1'500'000, 'l');
    ASSERT_EQ(Create(path, large), FileError::None);
    EXPECT_EQ(Create(path, std::string(1'000'000, 'n')), FileError::DiskFull);
    EXPECT_EQ(Contents(path), large);
    EXPECT_EQ(CopyFileTo(path.c_str(), (m_base + "/copy").c_str(), true).error, FileError::DiskFull);
    EXPECT_EQ(Names(m_base), "file ");

    uint64_t free = 0;
    EXPECT_TRUE(GetFreeDiskSpace(m_base.c_str(), free).Ok());
    EXPECT_LT(free, 700'000U);
    File file;
    ASSERT_TRUE(file.Open((m_base + "/other").c_str(), FileAccess::Write, FileCreation::CreateNew).Ok());
    EXPECT_EQ(file.Write(large.data(), large.size()).error, FileError::DiskFull);
    uint64_t size = 0;
    EXPECT_TRUE(file.GetSize(size).Ok());
    EXPECT_GT(size, 0U);
    EXPECT_LE(size, free);
    AppendFile log;
    ASSERT_TRUE(log.Open((m_base + "/log").c_str()));
    EXPECT_FALSE(log.Append(large.data(), 8192));
    log.Close();
    FileLock lock;
    EXPECT_TRUE(lock.Acquire((m_base + "/lock").c_str(), LockMode::Exclusive, 0).Ok());
    // Room again.
    file.Close();
    EXPECT_TRUE(RemoveFile((m_base + "/other").c_str()).Ok());
    EXPECT_EQ(Create(m_base + "/small", "small"), FileError::None);
}

TEST_F(FullDisk, ReadOnlyFolders)
{
    const Workplace place("small-disk/read-only");
    place.TidyUp();
    const std::string held = place.base + "/lock";
    ASSERT_TRUE(FileLock().Acquire(held.c_str(), LockMode::Exclusive, 0).Ok());
    ASSERT_EQ(mount(nullptr, m_base.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0) << std::strerror(errno);
    for (const PathOperation& operation : kPathOperations)
    {
        const bool reads =
            std::string_view("open read status free space list").find(operation.name) != std::string::npos;
        EXPECT_EQ(place.Run(operation).error, reads ? FileError::None : FileError::AccessDenied) << operation.name;
    }
    File file;
    FileLock lock;
    EXPECT_EQ(file.Open(place.file.c_str(), FileAccess::Write, FileCreation::OpenExisting).error,
              FileError::AccessDenied);
    EXPECT_EQ(lock.Acquire(held.c_str(), LockMode::Exclusive, 0).error, FileError::AccessDenied);
    EXPECT_TRUE(lock.Acquire(held.c_str(), LockMode::Shared, 0).Ok());
    const std::string copied = Utf8(m_scratch.path.parent_path()) + "/copied";
    EXPECT_TRUE(CopyFileTo(place.file.c_str(), copied.c_str(), true).Ok());
    EXPECT_TRUE(RemoveFile(copied.c_str()).Ok());
}

} // namespace
} // namespace tsypr::test

#endif
