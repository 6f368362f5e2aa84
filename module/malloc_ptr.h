// Ownership of memory that is released with free().
#ifndef TESSARY_MODULE_MALLOC_PTR_H
#define TESSARY_MODULE_MALLOC_PTR_H

#include <cstdlib>
#include <memory>

namespace tsypr
{

struct FreeDeleter
{
    void operator()(void* memory) const noexcept
    {
        std::free(memory);
    }
};

template <typename T>
using MallocPtr = std::unique_ptr<T, FreeDeleter>;

} // namespace tsypr

#endif
