#include "ui/paper_page.h"
#include "tests/ui/page_fixture.h"
#include "ui/paper_lists.h"

namespace tsypr::test
{
namespace
{

const std::string kFullName(24, 'b'), kFullPaper(64, 'p');

class PaperPage : public PageTest
{
protected:
    PaperPage()
    {
        auto& lists = service.capabilities;
        lists[DC_BINNAMES] = NamesReply(24, {L"Upper", std::wstring(24, L'b'), L"Manual"});
        lists[DC_BINS] = ListReply<int16_t>(3, {7, -3, 4});
        lists[DC_PAPERNAMES] = NamesReply(64, {L"Letter", L"A4", std::wstring(64, L'p')});
        lists[DC_PAPERS] = ListReply<int16_t>(3, {1, 9, 300});
        lists[DC_MEDIATYPENAMES] = NamesReply(64, {L"Plain", L"Glossy"});
        lists[DC_MEDIATYPES] = ListReply<uint32_t>(2, {1, 300});
        lists[DC_COLORDEVICE] = Answer(1);
        lists[DC_ENUMRESOLUTIONS] = ListReply<Resolution>(3, {{300, 300}, {600, 300}, {600, 600}});
        SetMachine(kDriverKeyW, L"EnableMediaTypeOnUPD", 1);
        dm->dmFields = DM_PRINTQUALITY | DM_YRESOLUTION | DM_MEDIATYPE;
        dm->dmDefaultSource = -3;
        dm->dmPrintQuality = 600;
        dm->dmYResolution = 600;
        dm->dmMediaType = 300;
        dm->dmColor = DMCOLOR_COLOR;
        LoadContext();
    }

    void OpenPage()
    {
        log.Take();
        Open(IDD_PAPER, PaperProc);
    }
    void ChooseLasts()
    {
        Choose(IDC_PAPER_SOURCE, 2);
        Choose(IDC_PAPER_SIZE, 2);
        Choose(IDC_MEDIACOMBO, 1);
        Choose(IDC_PRINT_QUALITY, 1);
    }
    std::string Lists() const
    {
        return List(IDC_PAPER_SOURCE) + ", " + List(IDC_PAPER_SIZE) + ", " + List(IDC_MEDIACOMBO) + ", " +
               List(IDC_PRINT_QUALITY);
    }
    std::string Chosen() const
    {
        return Numbers({context.paperSource,
                        context.paperSize,
                        context.mediaType,
                        context.color,
                        context.printQuality,
                        context.yResolution});
    }
};

TEST_F(PaperPage, ShowsWhatThePrinterOffersAndTakesTheChoice)
{
    OpenPage();
    EXPECT_EQ("Upper|>" + kFullName + "|Manual, Letter|>A4|" + kFullPaper +
                  ", Plain|>Glossy, 300 x 300|600 x 300|>600 x 600",
              Lists());
    EXPECT_NE(0U, dm->dmFields & DM_DEFAULTSOURCE);
    EXPECT_EQ(Messages{}, Lines("error"));
    ChooseLasts();
    Choose(IDC_COLOR, 0);
    EXPECT_EQ("4 300 300 1 600 300", Chosen());
    EXPECT_EQ(std::wstring(31, L'p'), context.formName);
    Choose(IDC_COLOR, -1);
    EXPECT_EQ(DMCOLOR_COLOR, context.color);
    const std::vector<int> lists = {IDC_PAPER_SOURCE, IDC_PAPER_SIZE, IDC_MEDIACOMBO, IDC_COLOR, IDC_PRINT_QUALITY};
    ExpectPageManners(&UIContext::paperPage, lists);
    const std::string chosen = Chosen();
    for (const int id : {IDC_PAPER_SOURCE, IDC_PAPER_SIZE, IDC_MEDIACOMBO, IDC_PRINT_QUALITY})
    {
        Choose(id, -1);
    }
    EXPECT_EQ(chosen, Chosen()) << "nothing selected";
    EXPECT_EQ(std::wstring(31, L'p'), context.formName);

    context.paperSource = context.paperSize = 99;
    context.mediaType = 99;
    OpenPage();
    EXPECT_TRUE(Lists().starts_with(">Upper|" + kFullName + "|Manual, Letter|A4|" + kFullPaper + ", >Plain|Glossy, "));
    EXPECT_EQ((Messages{"verbose GetMatchedPaperSourceIndex, no matched value in provided paper source: 99.",
                        "verbose PopulatePaperSource - context-paperSource: 99"}),
              Lines("aper"));
}

TEST_F(PaperPage, DisablesWhatThePrinterDoesNotTell)
{
    const auto whole = std::exchange(service.capabilities, {});
    OpenPage();
    const std::string end = ", failed to retrieve capabilities for DC_";
    EXPECT_EQ((Messages{"error PopulatePaperSource" + end + "BINNAMES.",
                        "error PopulatePapers" + end + "PAPERNAMES.",
                        "error PopulateMediaTypes" + end + "MEDIATYPENAMES.",
                        "error PopulateDPIs" + end + "ENUMRESOLUTIONS."}),
              Lines("error Populate"));
    EXPECT_EQ("Black/White|>Color", List(IDC_COLOR));
    EXPECT_EQ(0U, dm->dmFields & DM_DEFAULTSOURCE);
    service.opens = false;
    PopulateColors(dialog, dm.Get(), context);
    EXPECT_EQ(Messages{"error DrvDeviceCapabilities, failed to open remote printer Office Laser."}, log.TakeErrors());
    EXPECT_EQ("Black/White|>Color", List(IDC_COLOR));
    service.opens = true;
    for (const bool counted : {false, true}) // lists that do not come, and counts without entries
    {
        for (const int list : {DC_BINNAMES, DC_PAPERNAMES, DC_MEDIATYPENAMES, DC_ENUMRESOLUTIONS})
        {
            service.capabilities[static_cast<WORD>(list)] = counted ? ListReply<BYTE>(5, {1}) : CapabilityReply{};
        }
        OpenPage();
        EXPECT_EQ("x , x , x , x ", Lists());
    }
    service.capabilities[DC_BINNAMES] = whole.at(DC_BINNAMES);
    OpenPage();
    EXPECT_EQ("Upper|" + kFullName + "|Manual", List(IDC_PAPER_SOURCE));
    EXPECT_EQ(Messages{"error GetMatchedPaperSourceIndex" + end + "BINS."}, Lines("error GetM"));

    // The printer changes its mind between filling and choosing.
    service.capabilities = whole;
    OpenPage();
    for (const int list : {DC_BINS, DC_PAPERS, DC_MEDIATYPES, DC_ENUMRESOLUTIONS})
    {
        service.capabilities[static_cast<WORD>(list)] = ListReply<int16_t>(1, {5, 5});
    }
    ChooseLasts();
    EXPECT_EQ("-3 9 300 1 600 600", Chosen());
    EXPECT_EQ(Messages{}, Lines("error"));
    service.capabilities.clear();
    ChooseLasts();
    EXPECT_EQ("-3 9 300 1 600 600", Chosen());
    EXPECT_EQ(std::wstring(31, L'p'), context.formName) << "is taken all the same";
    EXPECT_EQ((Messages{"error GetPaperSourceByIndex" + end + "BINS.",
                        "error GetPaperSizeByIndex" + end + "PAPERS.",
                        "error GetMediaTypeByIndex" + end + "MEDIATYPES.",
                        "error GetDPIByIndex" + end + "ENUMRESOLUTIONS."}),
              Lines("ByIndex"));
}

TEST_F(PaperPage, OffersColor)
{
    const std::tuple<DWORD, uint32_t, int32_t, short, const char*> cases[] = {
        {DM_COLOR, kLockedColor, 1, 2, "x >Color"},
        {DM_COLOR, kLockedColor, 1, 1, "x >Black/White"},
        {DM_COLOR, kLockedColor, 1, 7, "x "},
        {0, kLockedColor, 1, 1, ">Black/White|Color"},
        {DM_COLOR, 0, 0, 2, "x >Black/White"},
        {DM_COLOR, 0, 1, 0, "Black/White|>Color"}};
    for (const auto& [fields, locked, answer, color, list] : cases)
    {
        dm->dmFields = fields;
        dm->dmColor = color;
        dm.Private().lockedSettings = locked;
        service.capabilities[DC_COLORDEVICE] = Answer(answer);
        OpenPage();
        EXPECT_EQ(list, List(IDC_COLOR));
    }
}

TEST_F(PaperPage, OffersQualityLevelsOrResolutions)
{
    struct Case
    {
        DWORD policy;
        DWORD fields;
        short quality;
        const char* list;
        bool invalid = false;
    };
    const Case cases[] = {{4, DM_PRINTQUALITY, DMRES_DRAFT, ">DRAFT|LOW|MEDIUM|HIGH"},
                          {2, DM_PRINTQUALITY, DMRES_HIGH, "DRAFT|>LOW"},
                          {4, DM_PRINTQUALITY, 600, "300 x 300|>600 x 300|600 x 600"},
                          {4, DM_YRESOLUTION, 600, ">300 x 300|600 x 300|600 x 600"},
                          {4, DM_PRINTQUALITY, -5, ">300 x 300|600 x 300|600 x 600"},
                          {0, DM_PRINTQUALITY, DMRES_MEDIUM, "DRAFT|LOW|>MEDIUM|HIGH", true},
                          {7, DM_PRINTQUALITY, DMRES_HIGH, "DRAFT|LOW|MEDIUM|>HIGH", true}};
    for (const Case& one : cases)
    {
        SetMachine(kPolicyKeyW, L"MaxDPILevel", one.policy);
        dm->dmFields = one.fields;
        dm->dmPrintQuality = one.quality;
        LoadContext();
        OpenPage();
        EXPECT_EQ(one.list, List(IDC_PRINT_QUALITY));
        EXPECT_EQ(one.invalid ? Messages{"error PopulateDPIs, invalid max DPI level GPO"} : Messages{}, Lines("DPI "));
    }
    Choose(IDC_PRINT_QUALITY, 2);
    EXPECT_EQ("-3 600", Numbers({context.printQuality, context.yResolution}));
}

TEST_F(PaperPage, HidesTheMediaTypeUnlessTheAdministratorOffersIt)
{
    SetMachine(kDriverKeyW, L"EnableMediaTypeOnUPD", 0);
    OpenPage();
    for (const int id : {IDC_MEDIACOMBO, IDC_MEDIALABEL})
    {
        EXPECT_EQ(0U, static_cast<DWORD>(GetWindowLongW(Item(id), GWL_STYLE)) & WS_VISIBLE);
    }
    EXPECT_EQ(300U, context.mediaType);
    DestroyWindow(Item(IDC_MEDIALABEL));
    PopulateMediaTypes(dialog, dm.Get(), context);
    DestroyWindow(Item(IDC_MEDIACOMBO));
    PopulateMediaTypes(dialog, dm.Get(), context);
    EXPECT_EQ((Messages{"error PopulateMediaTypes, can't get handle of IDC_MEDIALABEL",
                        "error PopulateMediaTypes, can't get handle of IDC_MEDIACOMBO"}),
              Lines("error"));
}

TEST_F(PaperPage, TakesListsOfAnyLengthAndCountsThatLie)
{
    auto& lists = service.capabilities;
    for (const size_t count : {size_t{1}, size_t{2000}})
    {
        const auto stated = static_cast<int32_t>(count);
        lists[DC_BINNAMES] = NamesReply(24, std::vector<std::wstring>(count, std::wstring(24, L'b')));
        lists[DC_PAPERNAMES] = NamesReply(64, std::vector<std::wstring>(count, std::wstring(64, L'p')));
        lists[DC_MEDIATYPENAMES] = NamesReply(64, std::vector<std::wstring>(count, std::wstring(64, L'm')));
        lists[DC_PAPERS] = ListReply<int16_t>(stated, std::vector<int16_t>(count, 9));
        lists[DC_ENUMRESOLUTIONS] = ListReply<Resolution>(stated, std::vector<Resolution>(count, {72, 72}));
        OpenPage();
        for (const int id : {IDC_PAPER_SOURCE, IDC_PAPER_SIZE, IDC_MEDIACOMBO, IDC_PRINT_QUALITY})
        {
            EXPECT_EQ(stated, Send(id, CB_GETCOUNT));
        }
        context.paperSize = 0;
        Choose(IDC_PAPER_SIZE, stated - 1);
        EXPECT_EQ(9, context.paperSize);
        EXPECT_EQ(64, Send(IDC_MEDIACOMBO, CB_GETLBTEXTLEN, 0));
    }
    lists[DC_BINNAMES] = NamesReply(24, {L"Only"});
    lists[DC_BINNAMES].result = lists[DC_BINS].result = 5000;
    OpenPage();
    EXPECT_EQ("Only", List(IDC_PAPER_SOURCE)) << "the number is at a place that has no name";
}

} // namespace
} // namespace tsypr::test
