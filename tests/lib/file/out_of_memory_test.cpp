// Memory that runs out at any allocation is a result like others.
// clang's sanitizers have an allocator that a program cannot replace.
#if !defined(__clang__) || defined(_WIN32)

#include "tests/lib/file/file_test.h"

#include <cstdlib>
#include <new>

namespace
{

thread_local int g_allocationsLeft = -1; // negative: as many as there are

} // namespace

void* operator new(size_t size)
{
    if (g_allocationsLeft == 0)
    {
        throw std::bad_alloc();
    }
    g_allocationsLeft -= g_allocationsLeft > 0 ? 1 : 0;
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
    {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t /*size*/) noexcept
{
    std::free(memory);
}

namespace tsypr::test
{
namespace
{

TEST(OutOfMemory, IsAResult)
{
    const ScratchFolder scratch("memory");
    const std::string base = Utf8(scratch.path);
    const std::string a = base + "/a-name-that-no-string-holds-without-an-allocation";
    const std::string b = a + 'b';
    const std::string folder = base + "/a-folder-with-a-name-of-some-length";
    std::string contents;
    std::vector<DirectoryEntry> entries;
    const std::function<FileResult()> operations[] = {
        [&] { return ReplaceFileContents(a.c_str(), "new"); },
        [&] { return ReadFileContents(a.c_str(), 100, contents); },
        [&] { return CopyFileTo(a.c_str(), b.c_str(), true); },
        [&] { return MoveFileTo(b.c_str(), (a + 'c').c_str(), true); },
        [&] { return MakeDirectoryTree(folder.c_str()); },
        [&] { return ListDirectory(base.c_str(), entries); },
        [&]
        {
            FileLock lock;
            return lock.Acquire(a.c_str(), LockMode::Exclusive, 0);
        },
        [&] { return RemoveDirectoryTree(base.c_str()); },
    };
    int number = 0;
    for (const auto& operation : operations)
    {
        SCOPED_TRACE(number++);
        ASSERT_TRUE(MakeDirectoryTree(base.c_str()).Ok());
        ASSERT_EQ(Create(a, "old"), FileError::None);
        ASSERT_EQ(Create(b, "old"), FileError::None);
        FileResult result;
        int allocations = -1;
        do
        {
            contents = std::string();
            entries = {};
            g_allocationsLeft = ++allocations;
            try
            {
                result = operation();
            }
            catch (const std::bad_alloc&)
            {
                result.error = FileError::OutOfMemory; // the test's own argument
            }
            g_allocationsLeft = -1;
            ASSERT_TRUE(result.Ok() || result.error == FileError::OutOfMemory) << FileErrorText(result.error);
            ASSERT_EQ(Names(base).find(".tmp"), std::string::npos);
        } while (!result.Ok());
        EXPECT_GE(allocations, 1);
    }
}

} // namespace
} // namespace tsypr::test

#endif
