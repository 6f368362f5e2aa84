#include "lib/log/line_throttle.h"

#include "lib/unicode/utf16.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

namespace tsypr
{
namespace
{

// How the text begins: its first line, at most `most` bytes of it, without half a character at the end.
std::string_view Beginning(std::string_view text, size_t most) noexcept
{
    text = text.substr(0, text.find_first_of("\r\n"));
    return text.size() <= most ? text : text.substr(0, WholeCharacters(text.data(), most));
}

} // namespace

void LineThrottle::Start(uint32_t lines, uint32_t seconds) noexcept
{
    for (Slot& slot : m_slots)
    {
        if (slot.count != 0) // leaves memory alone that was never used
        {
            slot.count = 0;
            slot.heldBack = 0;
        }
    }
    m_lines = seconds == 0 ? 0 : lines;
    m_windowMs = static_cast<int64_t>(seconds) * 1000;
    m_holding = 0;
}

// The line's slot, or the one that it may have instead: an unused one, one that is over, or the rarest.
LineThrottle::Slot& LineThrottle::Find(const LineKey& key, int64_t now) noexcept
{
    const std::span<Slot> set(m_slots + key.hash.first % (kSlots / kWays) * kWays, kWays);
    Slot* best = set.data();
    uint32_t bestCount = UINT32_MAX;
    for (Slot& slot : set)
    {
        if (slot.count != 0 && slot.key == key)
        {
            return slot;
        }
        const uint32_t count = IsOver(slot, now) ? 0 : slot.count;
        if (count < bestCount || (count == bestCount && slot.begin < best->begin))
        {
            best = &slot;
            bestCount = count;
        }
    }
    return *best;
}

bool LineThrottle::Admit(const LineKey& key, std::string_view text, int64_t now, RepeatedLine& displaced) noexcept
{
    if (m_lines == 0)
    {
        return true;
    }
    Slot& slot = Find(key, now);
    if (slot.count == 0 || slot.key != key || IsOver(slot, now))
    {
        if (slot.heldBack != 0)
        {
            displaced = Take(slot);
        }
        slot.key = key;
        slot.begin = now;
        slot.count = 0;
    }
    if (slot.count < m_lines)
    {
        ++slot.count;
        return true;
    }
    if (slot.heldBack++ == 0)
    {
        const std::string_view beginning = Beginning(text, kTextBytes);
        std::memcpy(slot.text, beginning.data(), beginning.size());
        slot.textBytes = static_cast<uint32_t>(beginning.size());
        const int64_t due = slot.begin + m_windowMs;
        m_nextDue = m_holding == 0 ? due : std::min(m_nextDue, due);
        m_looked = m_holding == 0 ? now : m_looked;
        ++m_holding;
    }
    return false;
}

RepeatedLine LineThrottle::Take(Slot& slot) noexcept
{
    const RepeatedLine line = {slot.heldBack, slot.key.level, {slot.text, slot.textBytes}};
    slot.count = 0;
    slot.heldBack = 0;
    --m_holding;
    return line;
}

bool LineThrottle::FindDue(int64_t now, RepeatedLine& line) noexcept
{
    if (now >= m_looked && now < m_nextDue)
    {
        return false;
    }
    m_looked = now;
    m_nextDue = now + m_windowMs;
    for (Slot& slot : m_slots)
    {
        if (slot.heldBack == 0)
        {
            continue;
        }
        if (IsOver(slot, now))
        {
            line = Take(slot);
            m_nextDue = now; // there may be more of them
            return true;
        }
        m_nextDue = std::min(m_nextDue, slot.begin + m_windowMs);
    }
    return false;
}

bool LineThrottle::TakeAny(RepeatedLine& line) noexcept
{
    const auto slot = m_holding == 0
                          ? std::end(m_slots)
                          : std::ranges::find_if(m_slots, [](const Slot& each) { return each.heldBack != 0; });
    if (slot == std::end(m_slots))
    {
        return false;
    }
    line = Take(*slot);
    return true;
}

} // namespace tsypr
