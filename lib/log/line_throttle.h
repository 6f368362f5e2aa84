// Keeps a message that comes over and over again from filling the disk.
#ifndef TESSARY_LIB_LOG_LINE_THROTTLE_H
#define TESSARY_LIB_LOG_LINE_THROTTLE_H

#include "lib/log/text_hash.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tsypr
{

// What makes two lines the same: all of it.
struct LineKey
{
    const void* site; // the format, which is one place in the code
    int level;
    size_t length; // of the message, without what stands in front of it
    TextHash hash;

    bool operator==(const LineKey&) const noexcept = default;
};

// Lines that were not written; times is 0 if there are none.
struct RepeatedLine
{
    uint32_t times = 0;
    int level = 0;
    std::string_view text; // how the message begins; valid until the throttle is asked about the next line
};

// Remembers the lines of the last seconds in a table of fixed size. A line that came more often than allowed is held
// back and counted; different lines never are. When many different lines push a rare one out of the table its count
// begins anew, so that too much is written rather than too little.
//
// Times are milliseconds of the system's clock; when that is set back, what was counted is over.
class LineThrottle
{
public:
    constexpr LineThrottle() noexcept = default;
    LineThrottle(const LineThrottle&) = delete;
    LineThrottle& operator=(const LineThrottle&) = delete;

    // Forgets everything. At most `lines` identical ones within `seconds` are written from now on; 0 of either: all.
    void Start(uint32_t lines, uint32_t seconds) noexcept;

    uint32_t Seconds() const noexcept
    {
        return static_cast<uint32_t>(m_windowMs / 1000);
    }

    // Whether the line is to be written. `displaced` is a line that can be counted no longer because this one needs its
    // place. Ask TakeDue first until it has no more.
    bool Admit(const LineKey& key, std::string_view text, int64_t now, RepeatedLine& displaced) noexcept;

    // The next line that was held back and whose time is over. Returns whether there is one.
    bool TakeDue(int64_t now, RepeatedLine& line) noexcept
    {
        return m_holding != 0 && FindDue(now, line);
    }

    // The next line that was held back at all; its counting is over.
    bool TakeAny(RepeatedLine& line) noexcept;

private:
    static constexpr size_t kWays = 4; // places where a line may be
    static constexpr size_t kSlots = 32 * kWays;
    static constexpr size_t kTextBytes = 200;

    struct Slot
    {
        LineKey key;
        int64_t begin;      // when the first of them came
        uint32_t count;     // 0: an unused place
        uint32_t heldBack;  // those of them that were not written
        uint32_t textBytes; // of the text, which is there when something is held back
        char text[kTextBytes];
    };

    bool IsOver(const Slot& slot, int64_t now) const noexcept
    {
        return now < slot.begin || now - slot.begin >= m_windowMs;
    }

    Slot& Find(const LineKey& key, int64_t now) noexcept;
    RepeatedLine Take(Slot& slot) noexcept;
    bool FindDue(int64_t now, RepeatedLine& line) noexcept;

    uint32_t m_lines = 0;
    int64_t m_windowMs = 0;
    uint32_t m_holding = 0; // slots with something held back
    int64_t m_looked = 0;   // when all slots were looked at, and when the first of them will be over
    int64_t m_nextDue = 0;
    Slot m_slots[kSlots] = {};
};

} // namespace tsypr

#endif
