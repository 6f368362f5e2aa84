// A language library that lacks nearly everything, and a service that never answers.
#include "tests/compstui/sheet_fixture.h"
#include "tests/ui/sheet_fixture.h"

namespace tsypr::test
{
namespace
{

using PoorSurroundings = SheetTest;

// The sheet in our own property sheet interface.
TEST_F(PoorSurroundings, LeaveWhatIsThereWorking)
{
    dm->dmOrientation = DMORIENT_LANDSCAPE;
    service.devMode = dm.Whole();
    ResourceModule = GetModuleHandleW(nullptr); // poor_library.rc
    PortraitBitmap = LandscapeBitmap = LogoBitmap = nullptr;
    std::string seen;
    std::thread user(
        [&, thread = GetCurrentThreadId()]
        {
            HWND sheet = nullptr;
            for (int i = 0; i < 5000 && sheet == nullptr; ++i)
            {
                Sleep(1);
                sheet = compstui_tests::FindSheet(thread);
            }
            dialog = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
            seen = List(IDC_ORIENTATION);
            Choose(IDC_ORIENTATION, 0);
            PostMessageW(sheet, PSM_PRESSBUTTON, PSBTN_OK, 0);
        });
    const auto show = compstui_tests::Export<decltype(&CommonPropertySheetUIW)>("CommonPropertySheetUIW");
    DWORD result = 0;
    EXPECT_GE(show(nullptr, DrvDocumentPropertySheets, reinterpret_cast<LPARAM>(&header), &result), 0);
    user.join();
    UseEnglish();
    EXPECT_EQ("Portrait|>Landscape", seen) << "the texts that are built in";
    EXPECT_EQ("1 1", Numbers(out->dmOrientation, out->dmCopies)) << "the result was written";
}

TEST_F(PoorSurroundings, LetTheProgramEndWhileTheServiceIsSilent)
{
    const auto endWhileOpening = [this]
    {
        std::thread(
            [this]
            {
                service.delay = INFINITE;
                FakeSheet(header).Open();
            })
            .detach();
        Sleep(100);
        ExitProcess(7);
    };
    EXPECT_EXIT(endWhileOpening(), testing::ExitedWithCode(7), "");
}

} // namespace
} // namespace tsypr::test
