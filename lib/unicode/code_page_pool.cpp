#include "lib/unicode/code_page_pool.h"

#include "lib/unicode/code_page.h"

#include <unicode/uclean.h>
#include <unicode/ucnv.h>

#include <atomic>
#include <utility>

namespace tsypr
{

// The tables that Windows and ICU mean by the same numbers; docs/unicode.md lists where the two differ.
const CodePageTable kCodePages[kCodePageTables] = {
    {1252, "windows-1252", "ibm-5348_P100-1997"},
    {932, "shift_jis", "ibm-943_P15A-2003"},
    {936, "gbk", "windows-936-2000"},
    {949, "euc-kr", "windows-949-2000"},
    {950, "big5", "windows-950-2000"},
    {54936, "gb18030", "gb18030"},
};

namespace
{

// One converter of each page waits for its next use; opening one costs more than converting a line.
constinit std::atomic<UConverter*> waiting[kCodePageTables];

void Close(UConverter* converter) noexcept
{
    if (converter != nullptr)
    {
        ucnv_close(converter);
    }
}

// ICU's own callback for stopping does not stop at characters that are usually invisible, such as a soft hyphen: it
// drops them. This leaves every error as it is.
void StopAtEach(const void*,
                UConverterFromUnicodeArgs*,
                const UChar*,
                int32_t,
                UChar32,
                UConverterCallbackReason,
                UErrorCode*) noexcept
{
}

UConverter* Open(const char* icuName, CodeSetStatus& status) noexcept
{
    UErrorCode error = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(icuName, &error);
    if (U_SUCCESS(error))
    {
        ucnv_setToUCallBack(converter, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
        ucnv_setFromUCallBack(converter, StopAtEach, nullptr, nullptr, nullptr, &error);
        ucnv_setFallback(converter, 0); // no similar characters
    }
    if (U_FAILURE(error))
    {
        Close(std::exchange(converter, nullptr));
        status = error == U_MEMORY_ALLOCATION_ERROR ? CodeSetStatus::OutOfMemory : CodeSetStatus::UnknownCodePage;
    }
    return converter;
}

} // namespace

PooledConverter::PooledConverter(unsigned page) noexcept
{
    if (page == kCodePageUtf8)
    {
        return;
    }
    while (m_slot < kCodePageTables && kCodePages[m_slot].number != page)
    {
        ++m_slot;
    }
    if (m_slot == kCodePageTables)
    {
        m_status = CodeSetStatus::UnknownCodePage;
        return;
    }
    m_converter = waiting[m_slot].exchange(nullptr, std::memory_order_acquire);
    if (m_converter == nullptr)
    {
        m_converter = Open(kCodePages[m_slot].icuName, m_status);
    }
}

PooledConverter::~PooledConverter()
{
    if (m_converter != nullptr)
    {
        ucnv_reset(m_converter);
        Close(waiting[m_slot].exchange(m_converter, std::memory_order_acq_rel));
    }
}

void CodeSetRelease() noexcept
{
    for (std::atomic<UConverter*>& converter : waiting)
    {
        Close(converter.exchange(nullptr, std::memory_order_acq_rel));
    }
    u_cleanup();
}

} // namespace tsypr
