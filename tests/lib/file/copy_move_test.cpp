// Copying and moving, also to another volume.
#include "tests/lib/file/file_test.h"

namespace tsypr::test
{
namespace
{

TEST(CopyFileTo, ContentsTimesAndTargets)
{
    const ScratchFolder scratch("copy");
    const std::string base = Utf8(scratch.path);
    const std::string from = base + "/from";
    const std::string to = base + "/to";
    const std::string contents(1'000'001, 'x'); // several blocks
    ASSERT_EQ(Create(from, contents), FileError::None);
    std::filesystem::last_write_time(from, std::filesystem::last_write_time(from) - std::chrono::hours(24));

    EXPECT_EQ(CopyFileTo(from.c_str(), to.c_str(), false).error, FileError::None);
    EXPECT_EQ(Contents(to), contents);
    FileStatus source;
    FileStatus copy;
    ASSERT_TRUE(GetFileStatus(from.c_str(), source).Ok());
    ASSERT_TRUE(GetFileStatus(to.c_str(), copy).Ok());
    EXPECT_EQ(copy.modifiedMs, source.modifiedMs);

    ASSERT_EQ(Create(from, "short"), FileError::None);
    EXPECT_EQ(CopyFileTo(from.c_str(), to.c_str(), false).error, FileError::AlreadyExists);
    EXPECT_EQ(Contents(to), contents);
    EXPECT_EQ(CopyFileTo(from.c_str(), to.c_str(), true).error, FileError::None);
    EXPECT_EQ(Contents(to), "short");
    EXPECT_EQ(CopyFileTo(from.c_str(), from.c_str(), true).error, FileError::None);
    EXPECT_EQ(Contents(from), "short");
    EXPECT_EQ(CopyFileTo((base + "/missing").c_str(), to.c_str(), true).error, FileError::NotFound);
    EXPECT_EQ(CopyFileTo(from.c_str(), (base + "/missing/to").c_str(), true).error, FileError::NotFound);
    EXPECT_EQ(CopyFileTo(base.c_str(), to.c_str(), true).error, FileError::IsADirectory);
    EXPECT_EQ(CopyFileTo(from.c_str(), base.c_str(), true).error, FileError::IsADirectory);
    EXPECT_EQ(Names(base), "from to ");
}

TEST(MoveFileTo, FilesAndFolders)
{
    const ScratchFolder scratch("move");
    const std::string base = Utf8(scratch.path);
    const auto path = [&base](const char* name) { return base + '/' + name; };
    struct Case
    {
        const char* from;
        const char* to;
        bool overwrite;
        FileError error;
    };
    const Case cases[] = {
        {"a", "new", false, FileError::None},
        {"a", "b", false, FileError::AlreadyExists},
        {"a", "b", true, FileError::None},
        {"missing", "b", true, FileError::NotFound},
        {"a", "missing/b", true, FileError::NotFound},
        {"a", "folder", true, FileError::IsADirectory},
        {"a", "folder", false, FileError::AlreadyExists},
        {"folder", "other", false, FileError::None},
        {"folder", "b", true, FileError::AlreadyExists},
        {"folder", "empty", true, FileError::AlreadyExists},
    };
    for (const Case& test : cases)
    {
        SCOPED_TRACE(std::string(test.from) + " to " + test.to);
        ASSERT_TRUE(RemoveDirectoryTree(base.c_str()).Ok());
        ASSERT_TRUE(MakeDirectoryTree(path("folder").c_str()).Ok());
        ASSERT_TRUE(MakeDirectoryTree(path("empty").c_str()).Ok());
        ASSERT_EQ(Create(path("a"), "a"), FileError::None);
        ASSERT_EQ(Create(path("b"), "b"), FileError::None);
        const std::string before = Names(base);
        EXPECT_EQ(MoveFileTo(path(test.from).c_str(), path(test.to).c_str(), test.overwrite).error, test.error);
        if (test.error == FileError::None)
        {
            EXPECT_FALSE(PathExists(path(test.from).c_str()));
            EXPECT_TRUE(PathExists(path(test.to).c_str()));
        }
        else
        {
            EXPECT_EQ(Names(base), before);
            EXPECT_EQ(Contents(path("b")), "b");
        }
    }
}

TEST(MoveFileTo, AcrossVolumes)
{
    const ScratchFolder scratch("volumes");
    const std::string base = Utf8(scratch.path);
    const std::string from = base + "/from";
    const std::string to = base + "/to";
    ASSERT_EQ(Create(from), FileError::None);
    ASSERT_TRUE(MakeDirectory((base + "/folder").c_str()).Ok());
    {
        FileFaultPlan plan;
        plan.Fail(FileOperation::Rename, FileError::OtherVolume, 1, FileFaultPlan::kAlways);
        EXPECT_EQ(MoveFileTo((base + "/folder").c_str(), to.c_str(), false).error, FileError::OtherVolume);
        EXPECT_EQ(MoveFileTo(from.c_str(), to.c_str(), false).error, FileError::OtherVolume);
    }
    EXPECT_EQ(Names(base), "folder from ");
    FileFaultPlan plan;
    plan.Fail(FileOperation::Rename, FileError::OtherVolume); // then the copy gets its name
    EXPECT_EQ(MoveFileTo(from.c_str(), to.c_str(), false).error, FileError::None);
    EXPECT_EQ(Names(base), "folder to ");
    EXPECT_EQ(Contents(to), "contents");
}

} // namespace
} // namespace tsypr::test
