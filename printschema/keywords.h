// The print schema keywords that the driver names by itself. Keywords are compared exactly: case, whole text, and with
// their prefix, which is part of the text. Everything here is made by the compiler; looking something up allocates
// nothing.
#ifndef TESSARY_PRINTSCHEMA_KEYWORDS_H
#define TESSARY_PRINTSCHEMA_KEYWORDS_H

#include <span>
#include <string_view>

namespace tsypr
{

inline constexpr const wchar_t* kPresentationDirection = L"psk:PresentationDirection";
inline constexpr const wchar_t* kPagesPerSheet = L"psk:PagesPerSheet";

// Names under which a feature is looked for, in this order: for the whole job first, then for a document.
using FeatureNames = std::span<const wchar_t* const>;

inline constexpr const wchar_t* kNupFeatureNames[] = {L"psk:JobNUpAllDocumentsContiguously", L"psk:DocumentNUp"};
inline constexpr const wchar_t* kStapleFeatureNames[] = {L"psk:JobStapleAllDocuments", L"psk:DocumentStaple"};
inline constexpr const wchar_t* kPunchFeatureNames[] = {L"psk:JobHolePunch", L"psk:DocumentHolePunch"};
inline constexpr const wchar_t* kMediaTypeFeatureNames[] = {L"psk:PageMediaType"};

// An option that the driver offers, and what the property sheets call it.
struct KeywordName
{
    const wchar_t* keyword;
    const wchar_t* displayName;
};

// Both the set of the accepted keywords and their display names.
using KeywordTable = std::span<const KeywordName>;

// The first word tells where the pages of a row advance to, the second where the rows do.
inline constexpr KeywordName kNupDirections[] = {{L"psk:RightBottom", L"Right then Down"},
                                                 {L"psk:BottomRight", L"Down then Right"},
                                                 {L"psk:LeftBottom", L"Left then Down"},
                                                 {L"psk:BottomLeft", L"Down then Left"},
                                                 {L"psk:RightTop", L"Right then Up"},
                                                 {L"psk:TopRight", L"Up then Right"},
                                                 {L"psk:LeftTop", L"Left then Up"},
                                                 {L"psk:TopLeft", L"Up then Left"}};

// "Saddle Stitch" is the only name with a blank, and meant to be.
inline constexpr KeywordName kStaples[] = {{L"psk:None", L"None"},
                                           {L"psk:StapleTopLeft", L"TopLeft"},
                                           {L"psk:StapleTopRight", L"TopRight"},
                                           {L"psk:StapleDualTop", L"DualTop"},
                                           {L"psk:StapleDualLeft", L"DualLeft"},
                                           {L"psk:StapleDualRight", L"DualRight"},
                                           {L"psk:StapleBottomLeft", L"BottomLeft"},
                                           {L"psk:StapleBottomRight", L"BottomRight"},
                                           {L"psk:StapleDualBottom", L"DualBottom"},
                                           {L"psk:SaddleStitch", L"Saddle Stitch"}};

inline constexpr KeywordName kPunches[] = {{L"psk:None", L"None"},
                                           {L"psk:BottomEdge", L"BottomEdge"},
                                           {L"psk:LeftEdge", L"LeftEdge"},
                                           {L"psk:RightEdge", L"RightEdge"},
                                           {L"psk:TopEdge", L"TopEdge"}};

// The display name of a keyword; null when the table does not have it.
constexpr const wchar_t* FindDisplayName(KeywordTable table, std::wstring_view keyword) noexcept
{
    for (const KeywordName& entry : table)
    {
        if (keyword == entry.keyword)
        {
            return entry.displayName;
        }
    }
    return nullptr;
}

// Whether the keyword is one of the table's.
constexpr bool HasKeyword(KeywordTable table, std::wstring_view keyword) noexcept
{
    return FindDisplayName(table, keyword) != nullptr;
}

} // namespace tsypr

#endif
