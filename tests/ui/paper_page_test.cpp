#include "ui/paper_page.h"
#include "tests/ui/page_fixture.h"
#include "ui/paper_lists.h"

namespace tsypr::test
{
namespace
{

constexpr DWORD kResolutionFields = DM_PRINTQUALITY | DM_YRESOLUTION;

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
        lists[DC_ENUMRESOLUTIONS] = ListReply<Resolution>(2, {{300, 300}, {600, 600}});
        SetMachine(L"EnableMediaTypeOnUPD", 1);
        dm->dmFields = kResolutionFields;
        dm->dmDefaultSource = -3;
        dm->dmPrintQuality = 600;
        dm->dmYResolution = 600;
        dm->dmMediaType = 300;
        dm->dmColor = DMCOLOR_COLOR;
        LoadContext();
        context.mediaType = 300;
    }

    static void SetMachine(const wchar_t* name, DWORD value, const wchar_t* key = kDriverKeyW)
    {
        SetBytes(HKEY_LOCAL_MACHINE, key, name, REG_DWORD, &value, sizeof(value));
    }
    void OpenPage()
    {
        log.Take();
        service.TakeCalls();
        Open(IDD_PAPER, PaperProc);
    }
    // The policy is read with one error line when it is not there.
    Messages ErrorsButPolicy()
    {
        Messages errors = log.TakeErrors();
        std::erase_if(errors, [](const std::string& line) { return line.starts_with("error RegUtils::"); });
        return errors;
    }
};

TEST_F(PaperPage, ShowsWhatThePrinterOffersAndTakesTheChoice)
{
    OpenPage();
    EXPECT_EQ("Upper|>" + std::string(24, 'b') + "|Manual", List(IDC_PAPER_SOURCE));
    EXPECT_EQ("Letter|>A4|" + std::string(64, 'p'), List(IDC_PAPER_SIZE));
    EXPECT_EQ("Plain|>Glossy", List(IDC_MEDIACOMBO));
    EXPECT_EQ("Black/White|>Color", List(IDC_COLOR));
    EXPECT_EQ("300 x 300|>600 x 600", List(IDC_PRINT_QUALITY));
    EXPECT_EQ(kResolutionFields | DM_DEFAULTSOURCE, dm->dmFields);
    EXPECT_EQ(Messages{}, ErrorsButPolicy());
    Choose(IDC_PAPER_SOURCE, 2);
    Choose(IDC_PAPER_SIZE, 2);
    Choose(IDC_MEDIACOMBO, 0);
    Choose(IDC_COLOR, 0);
    Choose(IDC_PRINT_QUALITY, 0);
    EXPECT_EQ(4, context.paperSource);
    EXPECT_EQ(300, context.paperSize);
    EXPECT_EQ(std::wstring(31, L'p'), context.formName);
    EXPECT_EQ(1U, context.mediaType);
    EXPECT_EQ(DMCOLOR_MONOCHROME, context.color);
    EXPECT_EQ(std::pair(300, 300), std::pair(context.printQuality, context.yResolution));
    Choose(IDC_COLOR, 1);
    EXPECT_EQ(DMCOLOR_COLOR, context.color);
    ExpectPageManners(&UIContext::paperPage);
}

TEST_F(PaperPage, SelectsTheFirstWhereNothingMatchesButNoPaper)
{
    context.paperSource = 99;
    context.paperSize = 99;
    context.mediaType = 99;
    context.printQuality = 1200;
    OpenPage();
    EXPECT_EQ(">Upper|" + std::string(24, 'b') + "|Manual", List(IDC_PAPER_SOURCE));
    EXPECT_EQ("Letter|A4|" + std::string(64, 'p'), List(IDC_PAPER_SIZE));
    EXPECT_EQ(">Plain|Glossy", List(IDC_MEDIACOMBO));
    EXPECT_EQ(">300 x 300|600 x 600", List(IDC_PRINT_QUALITY));
    EXPECT_EQ(std::pair(300, 300), std::pair(context.printQuality, context.yResolution));
    const Messages lines = log.Take();
    EXPECT_EQ(1,
              std::count(lines.begin(),
                         lines.end(),
                         "verbose GetMatchedPaperSourceIndex, no matched value in provided paper source: 99."));
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(), "verbose PopulatePaperSource - context-paperSource: 99"));
}

TEST_F(PaperPage, DisablesWhatThePrinterDoesNotTell)
{
    const auto whole = service.capabilities;
    service.capabilities.clear();
    service.capabilities[DC_COLORDEVICE] = Answer(-1);
    OpenPage();
    EXPECT_EQ((Messages{"error PopulatePaperSource, failed to retrieve capabilities for DC_BINNAMES.",
                        "error PopulatePapers, failed to retrieve capabilities for DC_PAPERNAMES.",
                        "error PopulateMediaTypes, failed to retrieve capabilities for DC_MEDIATYPENAMES.",
                        "error PopulateDPIs, failed to retrieve capabilities for DC_ENUMRESOLUTIONS."}),
              [this]
              {
                  Messages errors = log.TakeErrors();
                  std::erase_if(errors, [](const std::string& line) { return !line.starts_with("error Populate"); });
                  return errors;
              }());
    for (const int id : {IDC_PAPER_SOURCE, IDC_PAPER_SIZE, IDC_MEDIACOMBO, IDC_PRINT_QUALITY})
    {
        EXPECT_EQ("x ", List(id));
    }
    EXPECT_EQ("Black/White|>Color", List(IDC_COLOR));
    EXPECT_EQ(kResolutionFields, dm->dmFields);

    // Lists that are counted, but empty, and a bin list that fails after the names.
    service.capabilities[DC_BINNAMES] = NamesReply(24, {L"Upper"});
    for (const uint16_t names : std::initializer_list<uint16_t>{DC_PAPERNAMES, DC_MEDIATYPENAMES, DC_ENUMRESOLUTIONS})
    {
        service.capabilities[names] = ListReply<uint8_t>(0, {1});
    }
    OpenPage();
    EXPECT_EQ("Upper", List(IDC_PAPER_SOURCE));
    for (const int id : {IDC_PAPER_SIZE, IDC_MEDIACOMBO, IDC_PRINT_QUALITY})
    {
        EXPECT_EQ("x ", List(id));
    }

    // The printer changes its mind between filling and choosing.
    service.capabilities = whole;
    OpenPage();
    for (const uint16_t values : std::initializer_list<uint16_t>{DC_BINS, DC_PAPERS, DC_MEDIATYPES, DC_ENUMRESOLUTIONS})
    {
        service.capabilities[values] = ListReply<int16_t>(1, {5, 5, 5, 5});
    }
    log.Take();
    const auto choose = [this]
    {
        Choose(IDC_PAPER_SOURCE, 2);
        Choose(IDC_PAPER_SIZE, 0);
        Choose(IDC_PAPER_SIZE, 2);
        Choose(IDC_MEDIACOMBO, 1);
        Choose(IDC_PRINT_QUALITY, 1);
    };
    choose();
    EXPECT_EQ(Messages{}, log.TakeErrors());
    EXPECT_EQ(5, context.paperSize);
    EXPECT_EQ(std::wstring(31, L'p'), context.formName);
    service.capabilities.clear();
    choose();
    EXPECT_EQ(-3, context.paperSource);
    EXPECT_EQ(5, context.paperSize);
    EXPECT_EQ(300U, context.mediaType);
    EXPECT_EQ(std::pair(600, 600), std::pair(context.printQuality, context.yResolution));
    Messages errors = log.TakeErrors();
    std::erase_if(errors, [](const std::string& line) { return line.find("ByIndex") == std::string::npos; });
    EXPECT_EQ((Messages{"error GetPaperSourceByIndex, failed to retrieve capabilities for DC_BINS.",
                        "error GetPaperSizeByIndex, failed to retrieve capabilities for DC_PAPERS.",
                        "error GetPaperSizeByIndex, failed to retrieve capabilities for DC_PAPERS.",
                        "error GetMediaTypeByIndex, failed to retrieve capabilities for DC_MEDIATYPES.",
                        "error GetDPIByIndex, failed to retrieve capabilities for DC_ENUMRESOLUTIONS."}),
              errors);
}

TEST_F(PaperPage, OffersColor)
{
    struct Case
    {
        DWORD fields;
        uint32_t locked;
        int32_t answer;
        short color;
        const char* list;
    };
    const Case cases[] = {{DM_COLOR, kLockedColor, 1, 2, "x >Color"},
                          {DM_COLOR, kLockedColor, 1, 1, "x >Black/White"},
                          {DM_COLOR, kLockedColor, 1, 7, "x "},
                          {0, kLockedColor, 1, 1, ">Black/White|Color"},
                          {DM_COLOR, 0, 0, 2, "x >Black/White"},
                          {DM_COLOR, 0, 1, 0, "Black/White|>Color"}};
    for (const Case& one : cases)
    {
        dm->dmFields = one.fields;
        dm->dmColor = one.color;
        dm.Private().lockedSettings = one.locked;
        service.capabilities[DC_COLORDEVICE] = Answer(one.answer);
        OpenPage();
        EXPECT_EQ(one.list, List(IDC_COLOR));
    }
}

TEST_F(PaperPage, OffersQualityLevelsAsFarAsThePolicyAllows)
{
    struct Case
    {
        DWORD policy;
        short quality;
        const char* list;
        Messages errors;
    };
    const Messages invalid = {"error PopulateDPIs, invalid max DPI level GPO"};
    const Case cases[] = {{4, DMRES_DRAFT, ">DRAFT|LOW|MEDIUM|HIGH", {}},
                          {2, DMRES_HIGH, "DRAFT|>LOW", {}},
                          {0, DMRES_MEDIUM, "DRAFT|LOW|>MEDIUM|HIGH", invalid},
                          {7, DMRES_HIGH, "DRAFT|LOW|MEDIUM|>HIGH", invalid}};
    for (const Case& one : cases)
    {
        SetMachine(L"MaxDPILevel", one.policy, kPolicyKeyW);
        dm->dmPrintQuality = one.quality;
        OpenPage();
        EXPECT_EQ(one.list, List(IDC_PRINT_QUALITY));
        EXPECT_EQ(one.errors, ErrorsButPolicy());
    }
    Choose(IDC_PRINT_QUALITY, 2);
    EXPECT_EQ(DMRES_MEDIUM, context.printQuality);
    EXPECT_EQ(600, context.yResolution);
}

TEST_F(PaperPage, FindsTheResolutionByWhatTheDeviceModeSets)
{
    service.capabilities[DC_ENUMRESOLUTIONS] = ListReply<Resolution>(3, {{300, 300}, {600, 300}, {600, 600}});
    const std::tuple<DWORD, short, const char*> cases[] = {
        {DM_PRINTQUALITY, 600, "300 x 300|>600 x 300|600 x 600"},
        {DM_PRINTQUALITY | DM_YRESOLUTION, 600, "300 x 300|600 x 300|>600 x 600"},
        {DM_YRESOLUTION, 600, ">300 x 300|600 x 300|600 x 600"},
        {DM_PRINTQUALITY, -5, ">300 x 300|600 x 300|600 x 600"}};
    for (const auto& [fields, quality, list] : cases)
    {
        dm->dmFields = fields;
        dm->dmPrintQuality = quality;
        context.printQuality = quality;
        context.yResolution = 600;
        OpenPage();
        EXPECT_EQ(list, List(IDC_PRINT_QUALITY));
    }
}

TEST_F(PaperPage, HidesTheMediaTypeUnlessTheAdministratorOffersIt)
{
    SetMachine(L"EnableMediaTypeOnUPD", 0);
    OpenPage();
    for (const int id : {IDC_MEDIACOMBO, IDC_MEDIALABEL})
    {
        EXPECT_EQ(0U, static_cast<DWORD>(GetWindowLongW(Item(id), GWL_STYLE)) & WS_VISIBLE);
    }
    EXPECT_EQ(300U, context.mediaType);
    const Messages calls = service.TakeCalls();
    EXPECT_EQ(0, std::count(calls.begin(), calls.end(), "caps 34"));
    // Templates that lack one of the two.
    for (const int id : {IDC_MEDIALABEL, IDC_MEDIACOMBO})
    {
        DestroyWindow(Item(id));
        log.Take();
        PopulateMediaTypes(dialog, dm.Get(), context);
        EXPECT_EQ(Messages{std::string("error PopulateMediaTypes, can't get handle of ") +
                           (id == IDC_MEDIALABEL ? "IDC_MEDIALABEL" : "IDC_MEDIACOMBO")},
                  log.Take());
    }
}

TEST_F(PaperPage, TakesListsOfAnyLengthAndCountsThatLie)
{
    const std::vector<std::wstring> names(2000, L"Paper");
    service.capabilities[DC_PAPERNAMES] = NamesReply(64, names);
    service.capabilities[DC_PAPERS] = ListReply<int16_t>(2000, std::vector<int16_t>(2000, 9));
    service.capabilities[DC_BINNAMES] = NamesReply(24, {L"Only"});
    service.capabilities[DC_BINNAMES].result = 5000;
    service.capabilities[DC_BINS].result = 5000;
    service.capabilities[DC_ENUMRESOLUTIONS].size = 7; // less than one entry
    OpenPage();
    EXPECT_EQ(2000, Send(IDC_PAPER_SIZE, CB_GETCOUNT));
    EXPECT_EQ(1, Send(IDC_PAPER_SOURCE, CB_GETCOUNT));
    EXPECT_EQ("x ", List(IDC_PRINT_QUALITY));
    Choose(IDC_PAPER_SIZE, 1999);
    EXPECT_EQ(9, context.paperSize);
}

} // namespace
} // namespace tsypr::test
