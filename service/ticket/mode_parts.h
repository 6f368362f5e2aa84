#ifndef TESSARY_SERVICE_TICKET_MODE_PARTS_H
#define TESSARY_SERVICE_TICKET_MODE_PARTS_H

#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

#include <windows.h>

#include "service/private_block.h"

namespace tsypr::service
{

// A device mode of the service's own making, which ends with the private block, open for reading and changing.
struct ModeParts
{
    explicit ModeParts(std::vector<std::byte> whole) : bytes(std::move(whole))
    {
        std::memcpy(&mode, bytes.data(), sizeof(mode));
        std::memcpy(&block, bytes.data() + bytes.size() - sizeof(block), sizeof(block));
    }

    // The device mode with what was changed.
    std::vector<std::byte> Join() const
    {
        std::vector<std::byte> whole = bytes;
        std::memcpy(whole.data(), &mode, sizeof(mode));
        std::memcpy(whole.data() + whole.size() - sizeof(block), &block, sizeof(block));
        return whole;
    }

    std::vector<std::byte> bytes;
    DEVMODEW mode{};
    PrivateBlock block{};
};

} // namespace tsypr::service

#endif
