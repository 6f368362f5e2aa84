// A language library that lacks nearly everything.
#include "tests/ui/sheet_fixture.h"

namespace tsypr::test
{
namespace
{

using PoorSurroundings = SheetTest;

TEST_F(PoorSurroundings, LeaveWhatIsThereWorking)
{
    dm->dmOrientation = DMORIENT_LANDSCAPE;
    service.devMode = dm.Whole();
    ResourceModule = GetModuleHandleW(nullptr); // poor_library.rc
    PortraitBitmap = LandscapeBitmap = LogoBitmap = nullptr;
    FakeSheet sheet(header);
    ASSERT_EQ(1, sheet.Open());
    sheet.Show(1);
    dialog = sheet.pages.front().dialog;
    EXPECT_EQ("Portrait|>Landscape", List(IDC_ORIENTATION)) << "the texts that are built in";
    sheet.Choose(IDC_ORIENTATION, 0);
    sheet.PressOk(); // on pages without any control, too
    EXPECT_EQ(DMORIENT_PORTRAIT, out->dmOrientation);
}

} // namespace
} // namespace tsypr::test
