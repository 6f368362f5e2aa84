#ifndef TESSARY_SERVICE_REPLY_TABLE_H
#define TESSARY_SERVICE_REPLY_TABLE_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <mutex>
#include <span>
#include <unordered_map>
#include <utility>

namespace tsypr::service
{

// Which VpFree function takes a reply back.
enum class ReplyKind
{
    DeviceMode,
    Capabilities,
    PrintTicket
};

// Owns the replies that callers have not given back yet.
class ReplyTable
{
public:
    // Copies a reply and returns the copy's address. Throws std::bad_alloc.
    void* Add(ReplyKind kind, std::span<const std::byte> bytes)
    {
        auto copy = std::make_unique<std::byte[]>(bytes.size());
        std::ranges::copy(bytes, copy.get());
        void* address = copy.get();
        const std::lock_guard lock(m_mutex);
        m_replies.emplace(address, Reply{kind, std::move(copy)});
        return address;
    }

    // Frees a reply. A pointer that is no outstanding reply of this kind is left alone.
    void Release(ReplyKind kind, void* address)
    {
        Reply released;
        const std::lock_guard lock(m_mutex);
        const auto found = m_replies.find(address);
        if (found != m_replies.end() && found->second.kind == kind)
        {
            released = std::move(found->second);
            m_replies.erase(found);
        }
    }

    std::size_t Count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_replies.size();
    }

private:
    struct Reply
    {
        ReplyKind kind = ReplyKind::DeviceMode;
        std::unique_ptr<std::byte[]> bytes;
    };

    mutable std::mutex m_mutex;
    std::unordered_map<void*, Reply> m_replies;
};

} // namespace tsypr::service

#endif
