// Open files, whole files read in one go, and files that are appended to.
#include "tests/lib/file/file_test.h"

#include "lib/file/append_file.h"
#include "lib/file/file.h"

namespace tsypr::test
{
namespace
{

TEST(File, ReadWriteSeekResize)
{
    const ScratchFolder scratch("file");
    const std::string path = Utf8(scratch / "file");
    File file;
    ASSERT_TRUE(file.Open(path.c_str(), FileAccess::ReadWrite, FileCreation::CreateNew).Ok());
    EXPECT_TRUE(file.Write("0123456789", 10).Ok());
    EXPECT_TRUE(file.Seek(3).Ok());
    char buffer[16] = {};
    size_t read = 0;
    EXPECT_TRUE(file.Read(buffer, sizeof(buffer), read).Ok());
    EXPECT_EQ(std::string(buffer, read), "3456789");
    EXPECT_TRUE(file.Read(buffer, sizeof(buffer), read).Ok());
    EXPECT_EQ(read, 0U);
    EXPECT_TRUE(file.Resize(4).Ok());
    EXPECT_TRUE(file.Seek(6).Ok());
    EXPECT_TRUE(file.Write("x", 1).Ok());
    EXPECT_TRUE(file.Sync().Ok());
    uint64_t size = 0;
    EXPECT_TRUE(file.GetSize(size).Ok());
    EXPECT_EQ(size, 7U);
    File moved = std::move(file);
    EXPECT_FALSE(file.IsOpen()); // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(moved.Close().Ok());
    EXPECT_EQ(Contents(path), std::string("0123\0\0x", 7));
    EXPECT_EQ(moved.Write("x", 1).error, FileError::InvalidArgument);
    EXPECT_EQ(moved.Read(buffer, 1, read).error, FileError::InvalidArgument);
    EXPECT_TRUE(moved.Close().Ok());
}

TEST(File, AccessAndCreation)
{
    const ScratchFolder scratch("creation");
    const std::string old = Utf8(scratch / "old");
    const std::string missing = Utf8(scratch / "missing");
    struct Case
    {
        const std::string& path;
        FileAccess access;
        FileCreation creation;
        FileError error;
        const char* contents; // after writing "NEW" where that is possible
    };
    const Case cases[] = {
        {old, FileAccess::Read, FileCreation::OpenExisting, FileError::None, "old text"},
        {old, FileAccess::Write, FileCreation::OpenExisting, FileError::None, "NEW text"},
        {old, FileAccess::ReadWrite, FileCreation::OpenOrCreate, FileError::None, "NEW text"},
        {old, FileAccess::Append, FileCreation::OpenOrCreate, FileError::None, "old textNEW"},
        {old, FileAccess::Write, FileCreation::Truncate, FileError::None, "NEW"},
        {old, FileAccess::Read, FileCreation::Truncate, FileError::InvalidArgument, "old text"},
        {old, FileAccess::Write, FileCreation::CreateNew, FileError::AlreadyExists, "old text"},
        {missing, FileAccess::Read, FileCreation::OpenExisting, FileError::NotFound, "<not found>"},
        {missing, FileAccess::Append, FileCreation::OpenExisting, FileError::NotFound, "<not found>"},
        {missing, FileAccess::Write, FileCreation::OpenOrCreate, FileError::None, "NEW"},
        {missing, FileAccess::Append, FileCreation::CreateNew, FileError::None, "NEW"},
        {missing, FileAccess::Write, FileCreation::Truncate, FileError::None, "NEW"},
    };
    int number = 0;
    for (const Case& test : cases)
    {
        SCOPED_TRACE(number++);
        ASSERT_EQ(Create(old, "old text"), FileError::None);
        RemoveFile(missing.c_str());
        File file;
        EXPECT_EQ(file.Open(test.path.c_str(), test.access, test.creation).error, test.error);
        EXPECT_EQ(file.IsOpen(), test.error == FileError::None);
        if (file.IsOpen())
        {
            EXPECT_EQ(file.Write("NEW", 3).Ok(), test.access != FileAccess::Read);
        }
        file.Close();
        EXPECT_EQ(Contents(test.path), test.contents);
    }
    File file;
    for (const FileAccess access : {FileAccess::Read, FileAccess::Write, FileAccess::Append})
    {
        EXPECT_EQ(file.Open(Utf8(scratch.path).c_str(), access, FileCreation::OpenOrCreate).error,
                  FileError::IsADirectory);
    }
}

TEST(File, FaultsAreReported)
{
    const ScratchFolder scratch("file-faults");
    const std::string path = Utf8(scratch / "file");
    File file;
    FileFaultPlan plan;
    for (const FileOperation operation : {FileOperation::Read,
                                          FileOperation::Write,
                                          FileOperation::Flush,
                                          FileOperation::Resize,
                                          FileOperation::Status,
                                          FileOperation::Close})
    {
        plan.Fail(operation, FileError::DiskFull, 1);
    }
    ASSERT_TRUE(file.Open(path.c_str(), FileAccess::ReadWrite, FileCreation::CreateNew).Ok());
    char buffer[8];
    size_t count = 0;
    uint64_t size = 0;
    EXPECT_EQ(file.Read(buffer, sizeof(buffer), count).error, FileError::DiskFull);
    EXPECT_EQ(file.Write("text", 4).error, FileError::DiskFull);
    EXPECT_EQ(file.Sync().error, FileError::DiskFull);
    EXPECT_EQ(file.Resize(1).error, FileError::DiskFull);
    EXPECT_EQ(file.GetSize(size).error, FileError::DiskFull);
    EXPECT_TRUE(file.Write("12345678", 8).Ok());
    EXPECT_EQ(file.Close().error, FileError::DiskFull);
    EXPECT_FALSE(file.IsOpen());
    plan.Shorten(FileOperation::Read, 1, 2, 5);
    EXPECT_EQ(Contents(path), "12345678");
}

TEST(ReadFileContents, LimitsAndFailures)
{
    const ScratchFolder scratch("read");
    const std::string path = Utf8(scratch / "file");
    const std::string text(200'000, 't');
    ASSERT_EQ(Create(path, text), FileError::None);
    std::string contents;
    EXPECT_TRUE(ReadFileContents(path.c_str(), text.size(), contents).Ok());
    EXPECT_EQ(contents, text);
    EXPECT_EQ(ReadFileContents(path.c_str(), text.size() - 1, contents).error, FileError::TooLarge);
    EXPECT_TRUE(contents.empty());
    EXPECT_FALSE(ReadWholeFile(path.c_str(), 1, contents));
    EXPECT_TRUE(ReadWholeFile(path.c_str(), text.size(), contents));
    EXPECT_EQ(ReadFileContents(Utf8(scratch.path).c_str(), 100, contents).error, FileError::IsADirectory);
    EXPECT_EQ(ReadFileContents(Utf8(scratch / "missing").c_str(), 100, contents).error, FileError::NotFound);
    ASSERT_EQ(Create(path, ""), FileError::None);
    EXPECT_TRUE(ReadFileContents(path.c_str(), 0, contents).Ok());
#ifndef _WIN32
    EXPECT_TRUE(ReadFileContents("/proc/self/status", 1 << 20, contents).Ok()); // says that its size is 0
    EXPECT_NE(contents.find("Pid:"), std::string::npos);
    EXPECT_EQ(ReadFileContents("/dev/zero", 1 << 20, contents).error, FileError::TooLarge);
#endif
}

TEST(AppendFile, MakesOneFolderAndReportsShortWrites)
{
    const ScratchFolder scratch("append");
    const std::string path = Utf8(scratch / "logs" / "file");
    AppendFile file;
    EXPECT_FALSE(file.Append("x", 1));
    EXPECT_FALSE(file.Open(nullptr));
    EXPECT_FALSE(file.Open(Utf8(scratch / "a" / "b" / "c").c_str()));
    ASSERT_TRUE(file.Open(path.c_str()));
    AppendFile other;
    ASSERT_TRUE(other.Open(path.c_str()));
    EXPECT_TRUE(file.Append("one ", 4));
    EXPECT_TRUE(other.Append("two ", 4));
    EXPECT_TRUE(file.Append("three ", 6));
    {
        FileFaultPlan plan;
        plan.Fail(FileOperation::Write, FileError::DiskFull);
        plan.Shorten(FileOperation::Write, 2, 2);
        EXPECT_FALSE(file.Append("lost", 4));
        EXPECT_FALSE(file.Append("for", 3));
    }
    EXPECT_FALSE(file.Append(nullptr, 1));
    const std::string renamed = Utf8(scratch / "renamed"); // as a tool that tidies up may do meanwhile
    std::filesystem::rename(path, renamed);
    EXPECT_TRUE(other.Append(".", 1));
    file.Close();
    other.Close();
    EXPECT_FALSE(file.Append("x", 1));
    EXPECT_EQ(Contents(renamed), "one two three fo.");
}

} // namespace
} // namespace tsypr::test
