// Folders and names: make, list, remove, status.
#include "tests/lib/file/file_test.h"

#include "lib/misc/clock.h"

#include <pthread.h>

namespace tsypr::test
{
namespace
{

TEST(Paths, IllFormedOnesAreInvalidEverywhere)
{
    const Workplace place("ill-formed");
    place.TidyUp();
    for (const PathOperation& operation : kPathOperations)
    {
        SCOPED_TRACE(operation.name);
        const auto error = [&](const char* path) { return operation.run(path, place.other.c_str(), {}).error; };
        for (const char* const path : {static_cast<const char*>(nullptr), "", "cut-\xE6\x9D"})
        {
            EXPECT_EQ(error(path), FileError::InvalidArgument);
        }
        for (const size_t length : {300U, 40'000U})
        {
            EXPECT_EQ(error(std::string(length, 'n').c_str()), FileError::NameTooLong);
        }
    }
    EXPECT_FALSE(PathExists(nullptr));
}

// Every operation in a folder of a given path.
void WorkIn(const std::string& folder)
{
    ASSERT_EQ(MakeDirectoryTree(folder.c_str()).error, FileError::None);
    const std::string file = folder + '/' + kForeignName;
    const std::string copy = folder + "/copy";
    EXPECT_EQ(Create(file), FileError::None);
    EXPECT_EQ(CopyFileTo(file.c_str(), copy.c_str(), false).error, FileError::None);
    EXPECT_EQ(Names(folder), std::string("copy ") + kForeignName + ' ');
    EXPECT_EQ(MoveFileTo(file.c_str(), copy.c_str(), true).error, FileError::None);
    EXPECT_EQ(Contents(copy), "contents");
    FileLock lock;
    EXPECT_EQ(lock.Acquire((folder + "/lock").c_str(), LockMode::Exclusive, 0).error, FileError::None);
    lock.Release();
    FileStatus status;
    EXPECT_EQ(GetFileStatus(copy.c_str(), status).error, FileError::None);
    EXPECT_EQ(status.bytes, 8U);
    EXPECT_EQ(RemoveFile(copy.c_str()).error, FileError::None);
    EXPECT_EQ(Names(folder), "lock ");
}

TEST(Paths, LongAndForeign)
{
    const ScratchFolder scratch("paths");
    const std::string base = Utf8(scratch.path);
    for (const size_t length : {size_t{0}, size_t{245}, size_t{256}, size_t{400}, size_t{3000}})
    {
        SCOPED_TRACE(length);
        std::string folder = base + '/' + kForeignName;
        while (folder.size() < length)
        {
            folder += '/' + std::string(std::min<size_t>(100, length - folder.size()), 'd');
        }
        WorkIn(folder);
    }
    // Relative, with dots, and with a separator at the end.
    const std::string relative = Utf8(scratch.path.filename()) + "/./x/../y/";
    ASSERT_EQ(MakeDirectory((base + "/x").c_str()).error, FileError::None);
    WorkIn(relative);
    EXPECT_EQ(RemoveDirectoryTree(base.c_str()).error, FileError::None);
    EXPECT_FALSE(PathExists(base.c_str()));
}

#ifdef _WIN32
TEST(Paths, BackslashesAndWindowsOwnForms)
{
    const ScratchFolder scratch("backslashes");
    const std::string base = scratch.path.string(); // with backslashes
    WorkIn(base + "\\a\\b/c");
    WorkIn("\\\\?\\" + base + "\\verbatim");
    EXPECT_EQ(Create(base + "\\a\\what?"), FileError::InvalidArgument);
}
#endif

TEST(Directories, MakeListRemove)
{
    const ScratchFolder scratch("directories");
    const std::string base = Utf8(scratch.path);
    const std::string file = base + "/file";
    ASSERT_EQ(Create(file), FileError::None);

    EXPECT_EQ(MakeDirectory((base + "/a/b").c_str()).error, FileError::NotFound);
    EXPECT_EQ(MakeDirectoryTree((base + "/a/b").c_str()).error, FileError::None);
    EXPECT_EQ(MakeDirectoryTree((base + "/a/b").c_str()).error, FileError::None);
    EXPECT_EQ(MakeDirectory((base + "/a").c_str()).error, FileError::AlreadyExists);
    EXPECT_EQ(MakeDirectoryTree(file.c_str()).error, FileError::AlreadyExists);
    EXPECT_EQ(MakeDirectoryTree((file + "/x").c_str()).error, FileError::NotADirectory);

    std::vector<DirectoryEntry> entries;
    ASSERT_EQ(ListDirectory(base.c_str(), entries).error, FileError::None);
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].name, "a");
    EXPECT_EQ(entries[0].status.kind, FileKind::Directory);
    EXPECT_EQ(entries[1].status.kind, FileKind::File);
    EXPECT_EQ(entries[1].status.bytes, 8U);
    EXPECT_NEAR(static_cast<double>(entries[1].status.modifiedMs), static_cast<double>(UtcNowMilliseconds()), 60'000);
    EXPECT_EQ(ListDirectory(file.c_str(), entries).error, FileError::NotADirectory);
    EXPECT_EQ(ListDirectory((base + "/missing").c_str(), entries).error, FileError::NotFound);
    EXPECT_TRUE(entries.empty());

    EXPECT_EQ(RemoveEmptyDirectory((base + "/a").c_str(), kNoRetry).error, FileError::NotEmpty);
    EXPECT_EQ(RemoveEmptyDirectory((base + "/a/b").c_str()).error, FileError::None);
    EXPECT_EQ(RemoveEmptyDirectory((base + "/a/b").c_str()).error, FileError::NotFound);
    EXPECT_EQ(RemoveEmptyDirectory(file.c_str()).error, FileError::NotADirectory);
    EXPECT_EQ(RemoveDirectoryTree(file.c_str()).error, FileError::NotADirectory);
    EXPECT_EQ(RemoveDirectoryTree((base + "/missing").c_str()).error, FileError::NotFound);
    EXPECT_EQ(RemoveFile((base + "/a").c_str()).error, FileError::IsADirectory);
    EXPECT_EQ(RemoveFile((base + "/missing").c_str()).error, FileError::NotFound);

    uint64_t bytes = 0;
    EXPECT_EQ(GetFreeDiskSpace(file.c_str(), bytes).error, FileError::None);
    EXPECT_GT(bytes, 0U);
    EXPECT_EQ(GetFreeDiskSpace((base + "/missing").c_str(), bytes).error, FileError::NotFound);
}

TEST(Directories, ReadOnlyFiles)
{
    const ScratchFolder scratch("readonly");
    const std::string base = Utf8(scratch.path);
    const std::string file = base + "/tree/file";
    ASSERT_TRUE(MakeDirectoryTree((base + "/tree").c_str()).Ok());
    ASSERT_EQ(Create(file), FileError::None);
    std::filesystem::permissions(file, std::filesystem::perms(0444));

    FileStatus status;
    ASSERT_TRUE(GetFileStatus(file.c_str(), status).Ok());
    EXPECT_TRUE(status.readOnly);
    EXPECT_EQ(RemoveFile(file.c_str()).error, FileError::AccessDenied);
    EXPECT_EQ(Create(file, "new"), FileError::AccessDenied);
    ASSERT_EQ(Create(base + "/source"), FileError::None);
    EXPECT_EQ(CopyFileTo((base + "/source").c_str(), file.c_str(), true).error, FileError::AccessDenied);
    EXPECT_EQ(MoveFileTo((base + "/source").c_str(), file.c_str(), true).error, FileError::AccessDenied);
    EXPECT_EQ(Names(base + "/tree"), "file ");
    EXPECT_EQ(RemoveDirectoryTree((base + "/tree").c_str()).error, FileError::None);
}

TEST(Directories, ATreeIsRemovedAsFarAsItGoes)
{
    const ScratchFolder scratch("tree");
    const std::string tree = Utf8(scratch.path) + "/tree";
    for (const char* const name : {"/1", "/2", "/3"})
    {
        ASSERT_TRUE(MakeDirectoryTree((tree + name).c_str()).Ok());
        ASSERT_EQ(Create(tree + name + "/file"), FileError::None);
    }
    {
        FileFaultPlan plan;
        plan.Fail(FileOperation::Delete, FileError::DiskFull); // the first file
        EXPECT_EQ(RemoveDirectoryTree(tree.c_str()).error, FileError::DiskFull);
        plan.Fail(FileOperation::List, FileError::AccessDenied, plan.Seen(FileOperation::List) + 2);
        EXPECT_EQ(RemoveDirectoryTree(tree.c_str(), kNoRetry).error, FileError::AccessDenied);
    }
    std::vector<DirectoryEntry> entries;
    ASSERT_TRUE(ListDirectory(tree.c_str(), entries).Ok());
    EXPECT_EQ(entries.size(), 1U);

    // As when somebody else removes the tree as well, or still has a file of it open that is deleted already.
    FileFaultPlan plan;
    plan.Fail(FileOperation::Delete, FileError::NotFound);
    plan.Fail(FileOperation::Delete, FileError::NotEmpty, 2);
    const FileResult result = RemoveDirectoryTree(tree.c_str());
    EXPECT_EQ(result.error, FileError::None);
    EXPECT_GE(result.retries, 1U);
    EXPECT_FALSE(PathExists(tree.c_str()));
}

TEST(Directories, LinksGoAndWhatTheyLeadToStays)
{
    const ScratchFolder scratch("links");
    const std::string base = Utf8(scratch.path);
    ASSERT_TRUE(MakeDirectoryTree((base + "/kept").c_str()).Ok());
    ASSERT_TRUE(MakeDirectoryTree((base + "/tree").c_str()).Ok());
    ASSERT_EQ(Create(base + "/kept/file"), FileError::None);
    for (const std::string& link : {base + "/tree/link", base + "/link"})
    {
        std::error_code error;
        std::filesystem::create_directory_symlink(base + "/kept", link, error);
        if (error)
        {
            GTEST_SKIP() << "no symbolic links here: " << error.message();
        }
        EXPECT_EQ(RemoveDirectoryTree(link.c_str()).error, FileError::NotADirectory);
    }
    EXPECT_EQ(RemoveDirectoryTree((base + "/tree").c_str()).error, FileError::None);
    EXPECT_EQ(RemoveFile((base + "/link").c_str()).error, FileError::None);
    EXPECT_EQ(Names(base), "kept ");
    EXPECT_EQ(Contents(base + "/kept/file"), "contents");
}

// As deep as a path can be, on a stack that does not bear a call for each level.
void* MakeAndRemoveDeepTree(void* /*nothing*/)
{
    const ScratchFolder scratch("deep");
    std::string path = Utf8(scratch.path);
#ifdef _WIN32
    constexpr int kLevels = 150; // Wine looks through every folder on the way, each time
#else
    constexpr int kLevels = 1800;
#endif
    for (int level = 0; level < kLevels; ++level)
    {
        path += "/d";
    }
    EXPECT_EQ(MakeDirectoryTree(path.c_str()).error, FileError::None);
    EXPECT_EQ(Create(path + "/file"), FileError::None);
    EXPECT_EQ(RemoveDirectoryTree(Utf8(scratch / "d").c_str()).error, FileError::None);
    EXPECT_EQ(Names(Utf8(scratch.path)), "");
    return nullptr;
}

TEST(Directories, DepthCostsNoStack)
{
    constexpr size_t kStackBytes = 256 * 1024;
    pthread_attr_t attributes;
    pthread_t thread{};
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStackBytes), 0);
    ASSERT_EQ(pthread_create(&thread, &attributes, MakeAndRemoveDeepTree, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

} // namespace
} // namespace tsypr::test
