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
    const Workplace place("memory");
    for (const PathOperation& operation : kPathOperations)
    {
        SCOPED_TRACE(operation.name);
        place.TidyUp();
        int allocations = 0;
        FileResult result;
        do
        {
            g_allocationsLeft = allocations++;
            try
            {
                result = place.Run(operation);
            }
            catch (const std::bad_alloc&)
            {
                result.error = FileError::OutOfMemory; // the test's own texts
            }
            g_allocationsLeft = -1;
            ASSERT_TRUE(result.Ok() || result.error == FileError::OutOfMemory) << FileErrorText(result.error);
            ASSERT_EQ(Names(place.base).find(".tmp"), std::string::npos);
        } while (!result.Ok());
        EXPECT_GT(allocations, 1);
    }
}

} // namespace
} // namespace tsypr::test

#endif
