// Where tests step in between the library and the system. In production it is one test of a pointer that is null.
#ifndef TESSARY_LIB_FILE_FAULT_H
#define TESSARY_LIB_FILE_FAULT_H

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tsypr
{

enum class FileOperation
{
    Open, // of a file of any kind, also creating one
    Read,
    Write,
    Flush, // to the disk, also of a folder after a change of names in it
    Close,
    Resize,
    Rename,
    Delete, // a file or an empty folder
    Lock,
    List,
    MakeDirectory,
    Status,
    Any // in a plan: whichever comes
};

// Asked before each operation. `length` is that of a read or write and may be lessened, else null. A result other than
// 0 is taken for the system's error code, and the operation does not take place (closing does).
struct FileFaultHook
{
    uint32_t (*ask)(FileFaultHook& hook, FileOperation operation, size_t* length) noexcept;
};

namespace detail
{
extern std::atomic<FileFaultHook*> fileFaultHook;
uint32_t AskFileFaultHook(FileOperation operation, size_t* length) noexcept;
} // namespace detail

// Null takes the hook out again. It may be asked by several threads at once.
void SetFileFaultHook(FileFaultHook* hook) noexcept;

inline uint32_t InjectedFault(FileOperation operation, size_t* length = nullptr) noexcept
{
    return detail::fileFaultHook.load(std::memory_order_relaxed) == nullptr
               ? 0
               : detail::AskFileFaultHook(operation, length);
}

} // namespace tsypr

#endif
