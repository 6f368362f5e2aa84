#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/service/service_library.h"

#include <winspool.h>

namespace tsypr::service::test
{
namespace
{

// One answer of the library, copied and given back.
struct Answer
{
    LONG status = 0;
    LONG result = 0;
    std::vector<std::byte> data;
};

Answer Ask(const ServiceLibrary& library, const WCHAR* printer, WORD index)
{
    Answer answer;
    void* handle = library.Open(printer);
    DWORD size = 77;
    void* data = &size;
    answer.status = library.getCapabilities(handle, index, &size, &data, 0, nullptr, &answer.result);
    library.close(handle);
    const auto* bytes = static_cast<const std::byte*>(data);
    answer.data.assign(bytes, bytes + size);
    library.freeCapabilities(data);
    return answer;
}

struct Expected
{
    WORD index;
    LONG sample;             // the result for the printer that has everything
    LONG sparse;             // the result for the printer that has next to nothing
    std::size_t elementSize; // of the list, 0 for an index without one
};

constexpr LONG kSampleFields = DM_ORIENTATION | DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_SCALE | DM_COPIES |
                               DM_DEFAULTSOURCE | DM_PRINTQUALITY | DM_COLOR | DM_DUPLEX | DM_YRESOLUTION | DM_COLLATE |
                               DM_FORMNAME | DM_MEDIATYPE;
constexpr LONG kSparseFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_PRINTQUALITY | DM_FORMNAME;

constexpr Expected kExpected[] = {
    {DC_FIELDS, kSampleFields, kSparseFields, 0},
    {DC_PAPERS, 3, 1, sizeof(WORD)},
    {DC_PAPERSIZE, 3, 1, sizeof(POINT)},
    {DC_MINEXTENT, 1000 << 16 | 900, 2794 << 16 | 2159, 0},
    {DC_MAXEXTENT, 5000 << 16 | 3000, 2794 << 16 | 2159, 0},
    {DC_BINS, 2, 0, sizeof(WORD)},
    {DC_DUPLEX, 1, 0, 0},
    {DC_SIZE, 220, 220, 0},
    {DC_EXTRA, 1122, 1112, 0},
    {DC_VERSION, 0x401, 0x401, 0},
    {DC_DRIVER, 0x100, 0x100, 0},
    {DC_BINNAMES, 2, 0, 24 * sizeof(WCHAR)},
    {DC_ENUMRESOLUTIONS, 3, 0, 2 * sizeof(LONG)},
    {DC_FILEDEPENDENCIES, 0, 0, 64 * sizeof(WCHAR)},
    {DC_TRUETYPE, DCTT_BITMAP, DCTT_BITMAP, 0},
    {DC_PAPERNAMES, 3, 1, 64 * sizeof(WCHAR)},
    {DC_ORIENTATION, 270, 90, 0},
    {DC_COPIES, 50, 1, 0},
    {DC_BINADJUST, -1, -1, 0},
    {DC_EMF_COMPLIANT, -1, -1, 0},
    {DC_DATATYPE_PRODUCED, -1, -1, 0},
    {DC_COLLATE, 1, 0, 0},
    {DC_MANUFACTURER, -1, -1, 0},
    {DC_MODEL, -1, -1, 0},
    {DC_PERSONALITY, 0, 0, 32 * sizeof(WCHAR)},
    {DC_PRINTRATE, 25, -1, 0},
    {DC_PRINTRATEUNIT, PRINTRATEUNIT_PPM, -1, 0},
    {DC_PRINTERMEM, -1, -1, 0},
    {DC_MEDIAREADY, 1, 1, 64 * sizeof(WCHAR)},
    {DC_STAPLE, 1, 0, 0},
    {DC_PRINTRATEPPM, 25, -1, 0},
    {DC_COLORDEVICE, 1, 0, 0},
    {DC_NUP, 3, 0, sizeof(DWORD)},
    {DC_MEDIATYPENAMES, 2, 0, 64 * sizeof(WCHAR)},
    {DC_MEDIATYPES, 2, 0, sizeof(DWORD)},
    {0, -1, -1, 0},
    {36, -1, -1, 0},
    {0xFFFF, -1, -1, 0},
};

TEST(DeviceCapabilities, EveryIndexAnswersResultAndListOfMatchingSize)
{
    const SampleService service;
    for (const Expected& expected : kExpected)
    {
        SCOPED_TRACE("index " + std::to_string(expected.index));
        for (const auto& [printer, result] : {std::pair{L"Sample", expected.sample}, {L"Sparse", expected.sparse}})
        {
            const Answer answer = Ask(service.library, printer, expected.index);
            EXPECT_EQ(answer.result, result);
            EXPECT_EQ(answer.data.size(), expected.elementSize * static_cast<std::size_t>(result));
            EXPECT_EQ(answer.status == ERROR_SUCCESS, result != -1);

            void* handle = service.library.Open(printer);
            LONG countOnly = -2;
            service.library.getCapabilities(handle, expected.index, nullptr, nullptr, 0, nullptr, &countOnly);
            EXPECT_EQ(countOnly, result);
            service.library.close(handle);
        }
    }
    EXPECT_EQ(service.library.Counters().outstandingReplies, 0u);
}

template <class Element>
std::vector<Element> Elements(const Answer& answer)
{
    std::vector<Element> list(answer.data.size() / sizeof(Element));
    std::memcpy(list.data(), answer.data.data(), answer.data.size());
    return list;
}

// The texts of a list of fixed-size fields; the rest of each field must be zero.
std::vector<std::wstring> Names(const Answer& answer, std::size_t fieldLength)
{
    const std::vector<WCHAR> units = Elements<WCHAR>(answer);
    std::vector<std::wstring> names;
    for (std::size_t at = 0; at + fieldLength <= units.size(); at += fieldLength)
    {
        const std::wstring field(units.data() + at, fieldLength);
        names.push_back(field.substr(0, field.find(L'\0')));
        EXPECT_EQ(field.find_first_not_of(L'\0', names.back().size()), std::wstring::npos);
    }
    return names;
}

TEST(DeviceCapabilities, ListsHoldTheProfilesEntriesInOrder)
{
    const SampleService service;
    const auto ask = [&](WORD index) { return Ask(service.library, L"Sample", index); };
    using testing::ElementsAre;
    EXPECT_THAT(Elements<WORD>(ask(DC_PAPERS)), ElementsAre(9, 8, 256));
    EXPECT_THAT(Elements<LONG>(ask(DC_PAPERSIZE)), ElementsAre(2100, 2970, 2970, 4200, 1000, 2000));
    EXPECT_THAT(Names(ask(DC_PAPERNAMES), 64), ElementsAre(L"A4", L"A3", L"Custom"));
    EXPECT_THAT(Names(ask(DC_MEDIAREADY), 64), ElementsAre(L"A4"));
    EXPECT_THAT(Elements<WORD>(ask(DC_BINS)), ElementsAre(7, 15));
    EXPECT_THAT(Names(ask(DC_BINNAMES), 24), ElementsAre(L"Auto", L"Twenty-three characters"));
    EXPECT_THAT(Elements<DWORD>(ask(DC_MEDIATYPES)), ElementsAre(1u, 2u));
    EXPECT_THAT(Names(ask(DC_MEDIATYPENAMES), 64), ElementsAre(L"Plain", L"Glossy"));
    EXPECT_THAT(Elements<LONG>(ask(DC_ENUMRESOLUTIONS)), ElementsAre(600, 600, 1200, 600, 1200, 1200));
    EXPECT_THAT(Elements<DWORD>(ask(DC_NUP)), ElementsAre(1u, 2u, 4u));
}

TEST(DeviceCapabilities, FollowTheProfileWhereItSaysLess)
{
    nlohmann::json document = SampleProfile();
    document.erase("customPaper");
    document["papers"].erase(2);
    document["papers"][1]["width"] = 1000;
    document["staple"] = {"psk:None"};
    document["private"].erase("staple");
    document["name"] = "Less";
    const SampleService service;
    service.directory.Write("less.json", document.dump());
    const auto result = [&](WORD index) { return Ask(service.library, L"Less", index).result; };
    EXPECT_EQ(result(DC_MINEXTENT), 2970 << 16 | 1000);
    EXPECT_EQ(result(DC_MAXEXTENT), 4200 << 16 | 2100);
    EXPECT_EQ(result(DC_STAPLE), 0);
    EXPECT_EQ(result(DC_FIELDS), kSampleFields & ~(DM_PAPERLENGTH | DM_PAPERWIDTH));
}

TEST(DeviceCapabilities, DoNotReadTheDeviceModeBeyondItsSize)
{
    const SampleService service;
    void* handle = service.library.Open(L"Sample");
    const LONG expected = Ask(service.library, L"Sample", DC_PAPERS).result;
    for (const std::size_t size : {std::size_t{1}, std::size_t{70}, std::size_t{220}})
    {
        // Every size field inside claims as much as it can.
        const GuardedBytes bytes(std::vector<std::byte>(size, std::byte{0xFF}));
        auto* mode = reinterpret_cast<DEVMODEW*>(bytes.Data());
        for (const DWORD claimed : {static_cast<DWORD>(size), DWORD{1332}, DWORD{0xFFFFFFFF}, DWORD{0}})
        {
            LONG result = -1;
            service.library.getCapabilities(handle, DC_PAPERS, nullptr, nullptr, claimed, mode, &result);
            EXPECT_EQ(result, expected);
        }
    }
    service.library.close(handle);
}

} // namespace
} // namespace tsypr::service::test
