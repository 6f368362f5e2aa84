#include "lib/file/fault_plan.h"

#include "lib/file/system_file.h"

#include <algorithm>

namespace tsypr
{

FileFaultPlan::FileFaultPlan() noexcept : FileFaultHook{&FileFaultPlan::Ask}
{
    SetFileFaultHook(this);
}

FileFaultPlan::~FileFaultPlan()
{
    SetFileFaultHook(nullptr);
}

void FileFaultPlan::Fail(FileOperation operation, uint32_t systemError, unsigned nth, unsigned count)
{
    Add({.operation = operation, .nth = nth, .count = count, .systemError = systemError});
}

void FileFaultPlan::Fail(FileOperation operation, FileError error, unsigned nth, unsigned count)
{
    Fail(operation, ToSystemError(error), nth, count);
}

void FileFaultPlan::Shorten(FileOperation operation, size_t bytes, unsigned nth, unsigned count)
{
    Add({.operation = operation, .nth = nth, .count = count, .most = bytes});
}

void FileFaultPlan::Call(FileOperation operation, void (*function)(void*), void* context, unsigned nth)
{
    Add({.operation = operation, .nth = nth, .function = function, .context = context});
}

void FileFaultPlan::Add(const Rule& rule)
{
    const ScopedLock guard(m_lock);
    m_rules.push_back(rule);
}

unsigned FileFaultPlan::Seen(FileOperation operation) const noexcept
{
    const ScopedLock guard(m_lock);
    return m_seen[static_cast<size_t>(operation)];
}

// What all rules that hold for this operation come to.
FileFaultPlan::Rule FileFaultPlan::Decide(FileOperation operation) noexcept
{
    const ScopedLock guard(m_lock);
    ++m_seen[static_cast<size_t>(operation)];
    ++m_seen[static_cast<size_t>(FileOperation::Any)];
    Rule sum;
    for (const Rule& rule : m_rules)
    {
        const unsigned seen = m_seen[static_cast<size_t>(rule.operation)];
        const bool counted = rule.operation == operation || rule.operation == FileOperation::Any;
        if (!counted || seen < rule.nth || seen - rule.nth >= rule.count)
        {
            continue;
        }
        sum.systemError = rule.systemError != 0 ? rule.systemError : sum.systemError;
        sum.most = std::min(sum.most, rule.most);
        if (rule.function != nullptr)
        {
            sum.function = rule.function;
            sum.context = rule.context;
        }
    }
    return sum;
}

uint32_t FileFaultPlan::Ask(FileFaultHook& hook, FileOperation operation, size_t* length) noexcept
{
    const Rule rule = static_cast<FileFaultPlan&>(hook).Decide(operation);
    if (rule.function != nullptr)
    {
        rule.function(rule.context);
    }
    if (length != nullptr)
    {
        *length = std::min(*length, rule.most);
    }
    return rule.systemError;
}

} // namespace tsypr
