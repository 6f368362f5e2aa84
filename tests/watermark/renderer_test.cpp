#include "watermark/watermarker.h"
#include "tests/remote/log_capture.h"
#include "tests/watermark/watermark_fixture.h"
#include "watermark/gdi_owners.h"
#include "watermark/text_placement.h"

#include <climits>
#include <cmath>
#include <cstdlib>

namespace tsypr::test
{
namespace
{

constexpr char kPreview[] = "Watermarker::CreateBMPPreview";
constexpr char kDraw[] = "Watermarker::DrawWatermarkOnBMP";

class Renderer : public testing::Test
{
protected:
    ~Renderer() override
    {
        EXPECT_EQ(0U, LiveObjects());
    }

    // As the screen's bitmaps are; the renderer deletes it.
    static HBITMAP WhitePage(int width, int height)
    {
        WindowDc screen;
        HDC screenDc = screen.Fetch(nullptr);
        const MemoryDc dc(CreateCompatibleDC(screenDc));
        HBITMAP page = CreateCompatibleBitmap(screenDc, width, height);
        SelectAtEnd previous;
        previous.Remember(dc.get(), SelectObject(dc.get(), page));
        PatBlt(dc.get(), 0, 0, width, height, WHITENESS);
        return page;
    }

    LogCapture log;

    static BitmapOwner Render(WatermarkBlock block, int width = 168, int height = 224)
    {
        return BitmapOwner(Watermarker::CreateBMPPreview(nullptr, WhitePage(width, height), block));
    }
};

TEST(WatermarkPlacement, HasTheGoldenNumbers)
{
    const std::tuple<int, int, int, uint32_t, double, LONG, int, int, bool> cases[] = {
        {600, 800, 48, 12, 53.1301024, 531, 276, 368, false},
        {500, 500, 48, 12, 45.0000000514, 450, 226, 226, false},
        {101, 77, 25, 3, 37.3210362, 373, 38, 28, false},
        {300, 1000, 301, 1, 73.3007558, 733, 0, -1, false}, // -1.67 goes toward zero
        {168, 224, 1, 497, 53.1301024, 531, 84, 111, false},
        {168, 224, 1, 498, 53.1301024, 531, 0, 224, true},
        {168, 224, 25, 30, 53.1301024, 531, 0, 212, true},
        {0, 100, 10, 1, 90.0000001, 900, -5, INT_MIN, false},
        {168, 224, 1 << 30, 4, 53.1301024, 531, 84 - (1 << 29), -715827770, false}, // a length of 2^32 counts as none
        {40000, 40000, 10, 127, 45.0, 450, 19995, 19995, false},                    // so does this page's diagonal
    };
    for (const auto& [width, height, fontHeight, units, angle, escapement, x, y, isExceed] : cases)
    {
        SCOPED_TRACE(testing::Message() << width << "x" << height << ", " << units << " of " << fontHeight);
        const TextPlacement place = PlaceText(width, height, fontHeight, units);
        EXPECT_NEAR(angle, place.angle, 1e-7);
        EXPECT_EQ(escapement, place.escapement);
        EXPECT_EQ(x, place.x);
        EXPECT_EQ(y, place.y);
        EXPECT_EQ(isExceed ? 0U : 6U, place.alignment);
        EXPECT_EQ(isExceed, place.isExceed);
    }
    EXPECT_NEAR(45.0000000514, PlaceText(9, 9, 1, 1).angle, 1e-10);
}

TEST_F(Renderer, PutsInkOfTheColorAlongTheDiagonal)
{
    const std::tuple<std::wstring, int, int, uint32_t> cases[] = {
        {L"Confidential", 168, 224, 0xFF0000},
        {L"Top Secret", 224, 168, 0x00A000},
        {L"A text that is much longer than the diagonal of the page", 168, 224, 0x0000FF}};
    for (const auto& [text, width, height, ink] : cases)
    {
        const COLORREF color = RGB(ink >> 16, ink >> 8, ink);
        const Pixels pixels(Render(Block(text, -48, color), width, height).get());
        ASSERT_EQ(width, pixels.width);
        ASSERT_EQ(height, pixels.height);
        int solid = 0;
        int off = 0;
        int foreign = 0;
        for (int i = 0; i < width * height; ++i)
        {
            const uint32_t value = pixels.values[static_cast<size_t>(i)];
            const double across = i % width;
            const int row = i / width;
            const double up = height - 1 - row - across * height / width;
            const double distance = std::fabs(up) * width / std::hypot(width, height);
            solid += value == ink ? 1 : 0;
            off += value != 0xFFFFFF && distance > 48 ? 1 : 0;
            for (const uint32_t channel : {0xFFU, 0xFF00U, 0xFF0000U})
            {
                foreign += (value & channel) < (ink & channel) ? 1 : 0; // not a mixture of the ink and white
            }
        }
        EXPECT_GT(solid, 150) << color;
        EXPECT_EQ(0, off) << color;
        EXPECT_EQ(0, foreign) << color;
    }
}

TEST_F(Renderer, ReportsWhatItDrawsAndLeavesAnEvenHeightAndTheAngle)
{
    const std::string exes(127, 'x'); // of 128, which have no terminator
    const std::tuple<std::wstring, LONG, LONG, const char*, int, std::string> cases[] = {
        {L"Confidential", -96, -96, "276, Y: 368", 48, "Confidential"},
        {L"Confidential", -25, -24, "294, Y: 392", 12, "Confidential"},
        {L"Mine", 97, 96, "276, Y: 368", 48, "Mine"},
        {std::wstring(128, L'x'), 40, 40, "0, Y: 790", 20, exes}};
    for (const auto& [text, before, after, place, fontHeight, told] : cases)
    {
        WatermarkBlock block = Block(text, before);
        const BitmapOwner preview(Watermarker::CreateBMPPreview(nullptr, WhitePage(600, 800), block));
        EXPECT_NE(nullptr, preview);
        EXPECT_EQ(after, block.font.lfHeight);
        EXPECT_EQ(531, block.font.lfEscapement);
        EXPECT_EQ(531, block.font.lfOrientation);
        const std::string isExceed = told == exes ? "1" : "0";
        EXPECT_EQ(Messages{std::string("info ") + kDraw + ", X: " + place + ", angle: 53.130102, isExceed: " +
                           isExceed + ", fontHeight: " + std::to_string(fontHeight) + ", text: " + told + "."},
                  log.Take());
    }
}

TEST_F(Renderer, MakesNothingWhenNoWatermarkIsWanted)
{
    const BitmapOwner page(WhitePage(30, 40));
    for (const wchar_t* text : {L"", L"No Watermark", L"no watermark", L"NO WATERMARK"})
    {
        WatermarkBlock block = Block(text, -25);
        EXPECT_EQ(nullptr, Watermarker::CreateBMPPreview(nullptr, page.get(), block));
        EXPECT_TRUE(IsLive(page.get()));
        EXPECT_EQ(-25, block.font.lfHeight);
        EXPECT_EQ(Messages{std::string("info ") + kPreview + ", no need to create preview."}, log.Take());
    }
}

// The font while it is selected; the page's former bitmap into the other context; contexts, the page.
TEST_F(Renderer, GivesEverythingBackInTheFixedOrderAndSurvivesEachFailingCall)
{
    std::string calls;
    NoteCalls(&calls);
    Render(Block(L"Mine"));
    NoteCalls(nullptr);
    EXPECT_EQ("TextOutW DeleteObject SelectObject BitBlt SelectObject DeleteDC DeleteObject SelectObject DeleteDC "
              "ReleaseDC DeleteObject ",
              calls.substr(calls.find("TextOutW")));
    const std::tuple<const char*, int, bool, std::string> cases[] = {
        {"GetObjectW", 1, false, "failed to get object."},
        {"GetDC", 1, false, "failed to get DC."},
        {"CreateCompatibleDC", 1, false, "failed to CreateCompatibleDC to get temp DC."},
        {"CreateDIBSection", 1, false, "failed to CreateCompatibleDC, 8."},
        {"CreateCompatibleDC", 2, true, "failed to CreateCompatibleDC to get BMP DC from tempDC."},
        {"CreateFontIndirectW", 1, true, "failed to CreateFontIndirectW."},
        {"SetTextColor", 1, true, "failed to call SetTextColor."},
        {"SetTextAlign", 1, true, "failed to call SetTextAlign."},
        {"SetBkMode", 1, true, "failed to call SetBkMode."},
        {"TextOutW", 1, true, "failed to draw text: Mine."},
        {"BitBlt", 1, true, "failed to copy data from dcBMP to tempDC."}};
    for (const auto& [function, call, hasPicture, error] : cases)
    {
        SCOPED_TRACE(error);
        WatermarkBlock block = Block(L"Mine", -25);
        HBITMAP page = WhitePage(168, 224);
        FailCall(function, call);
        const BitmapOwner preview(Watermarker::CreateBMPPreview(nullptr, page, block));
        FailCall(function, 0);
        EXPECT_EQ(hasPicture, preview != nullptr);
        EXPECT_EQ(hasPicture ? 1U : 0U, LiveObjects());
        const Messages errors = log.TakeErrors();
        ASSERT_FALSE(errors.empty());
        EXPECT_TRUE(errors.front().ends_with(", " + error)) << errors.front();
        const bool drawing = errors.front().find(kDraw) != std::string::npos;
        EXPECT_EQ(drawing ? std::string("error ") + kPreview + ", failed to draw watermark on BMP." : errors.front(),
                  errors.back());
        EXPECT_EQ(drawing ? 2U : 1U, errors.size());
        if (hasPicture)
        {
            EXPECT_EQ(std::vector<uint32_t>(168 * 224), Pixels(preview.get()).values) << "not black";
        }
    }
    WatermarkBlock block = Block(L"Mine");
    EXPECT_EQ(nullptr, Watermarker::CreateBMPPreview(nullptr, nullptr, block));
}

} // namespace
} // namespace tsypr::test
