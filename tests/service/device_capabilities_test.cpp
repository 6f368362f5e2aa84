#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/service/service_library.h"

namespace tsypr::service::test
{
namespace
{

using DeviceCapabilitiesTest = SampleService;

TEST_F(DeviceCapabilitiesTest, NumbersHaveNoList)
{
    const struct
    {
        WORD index;
        DWORD sample; // the result for the printer that has everything
        DWORD sparse; // the result for the printer that has next to nothing
    } cases[] = {
        {DC_FIELDS, kSampleFields | DM_PAPERLENGTH | DM_PAPERWIDTH, kSparseFields},
        {DC_MINEXTENT, 1000 << 16 | 900, 2794 << 16 | 1000},
        {DC_MAXEXTENT, 5000 << 16 | 3000, 4200 << 16 | 2159},
        {DC_EXTRA, 1122, 1112},
        {DC_ORIENTATION, 270, 90},
        {DC_COPIES, 50, 1},
        {DC_PRINTRATE, 25, ~0u},
        {DC_STAPLE, 1, 0},
        {DC_MANUFACTURER, ~0u, ~0u},
        {36, ~0u, ~0u},
    };
    void* sample = library.Open(L"Sample");
    void* sparse = library.Open(L"Sparse");
    for (const auto& c : cases)
    {
        for (const auto& [handle, result] : {std::pair{sample, c.sample}, {sparse, c.sparse}})
        {
            const Answer answer = library.Ask(handle, c.index);
            EXPECT_EQ(static_cast<DWORD>(answer.result), result) << c.index;
            EXPECT_EQ(answer.status == ERROR_SUCCESS, answer.result != -1) << c.index;
            EXPECT_TRUE(answer.data.empty());
        }
    }
    for (const auto index : {DC_BINS, DC_BINNAMES, DC_ENUMRESOLUTIONS, DC_PERSONALITY, DC_NUP, DC_MEDIATYPES})
    {
        const Answer answer = library.Ask(sparse, static_cast<WORD>(index));
        EXPECT_TRUE(answer.result == 0 && answer.status == ERROR_SUCCESS && answer.data.empty()) << index;
    }
    EXPECT_EQ(library.Counters().outstandingReplies, 0u);
}

// An answer's list as flat elements, of which `perEntry` make one entry.
template <class Element>
std::vector<Element> Elements(const Answer& answer, std::size_t perEntry = 1)
{
    std::vector<Element> list(answer.data.size() / sizeof(Element));
    std::memcpy(list.data(), answer.data.data(), answer.data.size());
    EXPECT_EQ(list.size(), static_cast<std::size_t>(answer.result) * perEntry);
    return list;
}

// The texts of a list of fixed-size fields; the rest of each field must be zero.
std::vector<std::wstring> Names(const Answer& answer, std::size_t fieldLength)
{
    const std::vector<WCHAR> units = Elements<WCHAR>(answer, fieldLength);
    std::vector<std::wstring> names;
    for (std::size_t at = 0; at + fieldLength <= units.size(); at += fieldLength)
    {
        const std::wstring field(units.data() + at, fieldLength);
        names.push_back(field.substr(0, field.find(L'\0')));
        EXPECT_EQ(field.find_first_not_of(L'\0', names.back().size()), std::wstring::npos);
    }
    return names;
}

TEST_F(DeviceCapabilitiesTest, ListsHoldTheProfilesEntriesInOrder)
{
    void* handle = library.Open(L"Sample");
    const auto ask = [&](WORD index) { return library.Ask(handle, index); };
    using testing::ElementsAre;
    EXPECT_THAT(Elements<WORD>(ask(DC_PAPERS)), ElementsAre(9, 8, 256));
    EXPECT_THAT(Elements<LONG>(ask(DC_PAPERSIZE), 2), ElementsAre(2100, 2970, 2970, 4200, 1000, 2000));
    EXPECT_THAT(Names(ask(DC_PAPERNAMES), 64), ElementsAre(L"A4", L"A3", L"Custom"));
    EXPECT_THAT(Names(ask(DC_MEDIAREADY), 64), ElementsAre(L"A4"));
    EXPECT_THAT(Elements<WORD>(ask(DC_BINS)), ElementsAre(7, 15));
    EXPECT_THAT(Names(ask(DC_BINNAMES), 24), ElementsAre(L"Auto", L"Twenty-three characters"));
    EXPECT_THAT(Elements<DWORD>(ask(DC_MEDIATYPES)), ElementsAre(1u, 2u));
    EXPECT_THAT(Names(ask(DC_MEDIATYPENAMES), 64), ElementsAre(L"Plain", L"Glossy"));
    EXPECT_THAT(Elements<LONG>(ask(DC_ENUMRESOLUTIONS), 2), ElementsAre(600, 600, 1200, 600, 1200, 1200));
    EXPECT_THAT(Elements<DWORD>(ask(DC_NUP)), ElementsAre(1u, 2u, 4u));
}

} // namespace
} // namespace tsypr::service::test
