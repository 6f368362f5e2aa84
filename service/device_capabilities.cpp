#include "service/device_capabilities.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include <winspool.h>

#include "service/device_mode.h"
#include "service/wide_text.h"

namespace tsypr::service
{

namespace
{

constexpr std::size_t kBinNameLength = 24;
constexpr std::size_t kNameLength = 64;

// A list of equally sized elements, one for each item.
template <class Element, class Items, class Make>
CapabilityAnswer MakeList(const Items& items, Make&& make)
{
    CapabilityAnswer answer;
    answer.result = static_cast<LONG>(items.size());
    answer.data.resize(items.size() * sizeof(Element));
    std::byte* position = answer.data.data();
    for (const auto& item : items)
    {
        const Element element = make(item);
        std::memcpy(position, &element, sizeof(element));
        position += sizeof(element);
    }
    return answer;
}

template <std::size_t Length>
struct NameField
{
    WCHAR text[Length];
};

template <std::size_t Length, class Items>
CapabilityAnswer MakeNames(const Items& items)
{
    return MakeList<NameField<Length>>(items,
                                       [](const auto& item)
                                       {
                                           NameField<Length> field;
                                           FillField(field.text, item.name);
                                           return field;
                                       });
}

// Width in the low word, height in the high word.
LONG PackExtent(short width, short height)
{
    return static_cast<LONG>(MAKELONG(width, height));
}

LONG MinExtent(const Profile& profile)
{
    if (profile.customPaper)
    {
        return PackExtent(profile.customPaper->minWidth, profile.customPaper->minHeight);
    }
    return PackExtent(std::ranges::min(profile.papers, {}, &Paper::width).width,
                      std::ranges::min(profile.papers, {}, &Paper::height).height);
}

LONG MaxExtent(const Profile& profile)
{
    if (profile.customPaper)
    {
        return PackExtent(profile.customPaper->maxWidth, profile.customPaper->maxHeight);
    }
    return PackExtent(std::ranges::max(profile.papers, {}, &Paper::width).width,
                      std::ranges::max(profile.papers, {}, &Paper::height).height);
}

bool CanStaple(const Profile& profile)
{
    return std::ranges::any_of(profile.staple, [](const std::string& keyword) { return keyword != "psk:None"; });
}

// A profile does not say what lies in the trays; the paper that the printer is set to counts as ready.
CapabilityAnswer ReadyMedia(const Profile& profile)
{
    std::vector<Paper> ready;
    if (const Paper* paper = profile.FindPaper(profile.deviceMode.paper))
    {
        ready.push_back(*paper);
    }
    return MakeNames<kNameLength>(ready);
}

std::optional<CapabilityAnswer> ListAnswer(const Profile& profile, WORD index)
{
    switch (index)
    {
    case DC_PAPERS:
        return MakeList<WORD>(profile.papers, [](const Paper& paper) { return paper.id; });
    case DC_PAPERSIZE:
        return MakeList<POINT>(profile.papers, [](const Paper& paper) { return POINT{paper.width, paper.height}; });
    case DC_PAPERNAMES:
        return MakeNames<kNameLength>(profile.papers);
    case DC_MEDIAREADY:
        return ReadyMedia(profile);
    case DC_BINS:
        return MakeList<WORD>(profile.bins, [](const Bin& bin) { return bin.id; });
    case DC_BINNAMES:
        return MakeNames<kBinNameLength>(profile.bins);
    case DC_MEDIATYPES:
        return MakeList<DWORD>(profile.mediaTypes, [](const MediaType& type) { return type.id; });
    case DC_MEDIATYPENAMES:
        return MakeNames<kNameLength>(profile.mediaTypes);
    case DC_ENUMRESOLUTIONS:
        return MakeList<POINT>(profile.resolutions,
                               [](const Resolution& resolution) {
                                   return POINT{resolution.x, resolution.y};
                               });
    case DC_NUP:
        return MakeList<DWORD>(profile.nup ? profile.nup->pagesPerSheet : std::vector<std::uint32_t>(),
                               [](std::uint32_t pages) { return DWORD{pages}; });
    case DC_FILEDEPENDENCIES:
    case DC_PERSONALITY:
        // No further files to install, and no page description language of the printer's is ever spoken.
        return CapabilityAnswer{0, {}};
    default:
        return std::nullopt;
    }
}

LONG ValueAnswer(const Profile& profile, WORD index)
{
    switch (index)
    {
    case DC_FIELDS:
        return static_cast<LONG>(SupportedFields(profile));
    case DC_MINEXTENT:
        return MinExtent(profile);
    case DC_MAXEXTENT:
        return MaxExtent(profile);
    case DC_DUPLEX:
        return profile.deviceMode.duplex ? 1 : 0;
    case DC_SIZE:
        return kPublicDevModeSize;
    case DC_EXTRA:
        return profile.deviceMode.leadingExtra + static_cast<LONG>(kPrivateBlockSize);
    case DC_VERSION:
        return DM_SPECVERSION;
    case DC_DRIVER:
        return kDriverVersion;
    case DC_TRUETYPE:
        return DCTT_BITMAP;
    case DC_ORIENTATION:
        return profile.landscapeRotation;
    case DC_COPIES:
        return profile.maxCopies;
    case DC_COLLATE:
        return profile.collation ? 1 : 0;
    case DC_PRINTRATE:
    case DC_PRINTRATEPPM:
        return profile.pagesPerMinute > 0 ? profile.pagesPerMinute : -1;
    case DC_PRINTRATEUNIT:
        return profile.pagesPerMinute > 0 ? PRINTRATEUNIT_PPM : -1;
    case DC_STAPLE:
        return CanStaple(profile) ? 1 : 0;
    case DC_COLORDEVICE:
        return profile.color ? 1 : 0;
    default:
        // Among them DC_BINADJUST, DC_EMF_COMPLIANT, DC_DATATYPE_PRODUCED, DC_MANUFACTURER and DC_MODEL, which have no
        // meaning on this Windows, and DC_PRINTERMEM, which a profile does not tell.
        return -1;
    }
}

} // namespace

CapabilityAnswer QueryCapability(const Profile& profile, WORD index)
{
    if (std::optional<CapabilityAnswer> list = ListAnswer(profile, index))
    {
        return std::move(*list);
    }
    return {ValueAnswer(profile, index), {}};
}

} // namespace tsypr::service
