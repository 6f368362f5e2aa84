// ICU's converters, opened once and then handed from one conversion to the next. Internal to lib/unicode.
#ifndef TESSARY_LIB_UNICODE_CODE_PAGE_POOL_H
#define TESSARY_LIB_UNICODE_CODE_PAGE_POOL_H

#include "lib/unicode/codeset_result.h"

struct UConverter;

namespace tsypr
{

// One of the code pages with a table of ICU's.
struct CodePageTable
{
    unsigned number;
    const char* name;
    const char* icuName; // of exactly this table
};

inline constexpr size_t kCodePageTables = 6;
extern const CodePageTable kCodePages[kCodePageTables];

// A converter in its initial state that is the holder's alone until its end. It stops at every bad part.
class PooledConverter
{
public:
    explicit PooledConverter(unsigned page) noexcept;
    ~PooledConverter();
    PooledConverter(const PooledConverter&) = delete;
    PooledConverter& operator=(const PooledConverter&) = delete;

    // nullptr for UTF-8, which needs none, and when Status is not Ok.
    UConverter* Get() const noexcept
    {
        return m_converter;
    }
    // Ok, UnknownCodePage or OutOfMemory.
    CodeSetStatus Status() const noexcept
    {
        return m_status;
    }

private:
    size_t m_slot = 0;
    UConverter* m_converter = nullptr;
    CodeSetStatus m_status = CodeSetStatus::Ok;
};

} // namespace tsypr

#endif
