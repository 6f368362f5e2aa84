// What shall go wrong with file operations, for tests of any folder.
#ifndef TESSARY_LIB_FILE_FAULT_PLAN_H
#define TESSARY_LIB_FILE_FAULT_PLAN_H

#include "lib/file/fault.h"
#include "lib/file/file_result.h"
#include "lib/misc/exclusive_lock.h"

#include <array>
#include <vector>

namespace tsypr
{

// In force as long as it lives, for the whole process; one at a time. Operations are counted from its construction,
// those that it lets fail included. Rules may be added at any time, from any thread.
class FileFaultPlan : private FileFaultHook
{
public:
    FileFaultPlan() noexcept;
    ~FileFaultPlan();
    FileFaultPlan(const FileFaultPlan&) = delete;
    FileFaultPlan& operator=(const FileFaultPlan&) = delete;

    static constexpr unsigned kAlways = ~0U;

    // The n-th operation of the kind (1 is the first) and those after it, `count` in all, fail with the system's code.
    void Fail(FileOperation operation, uint32_t systemError, unsigned nth = 1, unsigned count = 1);

    // The same with the code by which this system says it.
    void Fail(FileOperation operation, FileError error, unsigned nth = 1, unsigned count = 1);

    // The n-th read or write takes at most `bytes`.
    void Shorten(FileOperation operation, size_t bytes, unsigned nth = 1, unsigned count = 1);

    // Calls `function` before the n-th operation, outside the plan's lock. It may end the process.
    void Call(FileOperation operation, void (*function)(void* context), void* context, unsigned nth = 1);

    // How many there were.
    unsigned Seen(FileOperation operation) const noexcept;

private:
    struct Rule
    {
        FileOperation operation = FileOperation::Any;
        unsigned nth = 1;
        unsigned count = 1;
        uint32_t systemError = 0;
        size_t most = ~size_t{0};
        void (*function)(void*) = nullptr;
        void* context = nullptr;
    };

    static uint32_t Ask(FileFaultHook& hook, FileOperation operation, size_t* length) noexcept;
    Rule Decide(FileOperation operation) noexcept;
    void Add(const Rule& rule);

    mutable ExclusiveLock m_lock;
    std::vector<Rule> m_rules;
    std::array<unsigned, static_cast<size_t>(FileOperation::Any) + 1> m_seen{};
};

} // namespace tsypr

#endif
