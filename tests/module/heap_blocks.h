// What the process has allocated.
#ifndef TESSARY_TESTS_MODULE_HEAP_BLOCKS_H
#define TESSARY_TESTS_MODULE_HEAP_BLOCKS_H

#include <windows.h>

#include <cstddef>

namespace tsypr::test
{

// All the busy blocks of all heaps.
inline size_t BusyBlocks()
{
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    size_t blocks = 0;
    for (DWORD i = 0; i < count; ++i)
    {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry) != FALSE)
        {
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
        }
    }
    return blocks;
}

} // namespace tsypr::test

#endif
