// The built language libraries as the module meets them: loaded by name, read with LoadStringW and LoadBitmapW.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "language/resource_ids.h"
#include "tests/language/built_library.h"

namespace
{

using namespace tsypr::language_tests;

using Bitmap = Owner<HBITMAP, decltype([](HBITMAP bitmap) { DeleteObject(bitmap); })>;
using Dc = Owner<HDC, decltype([](HDC dc) { DeleteDC(dc); })>;

constexpr UINT kFirstText = 2001;
constexpr UINT kLastText = 2042;

// A library with texts that would not survive a wrong code page or a wrongly read escape.
struct Library
{
    const char* code;
    std::vector<std::pair<UINT, std::wstring>> known;
    UINT sameAsEnglish = 0; // a word that both languages have
};

const Library kLibraries[] = {
    {"en_us_409", {{2001, L"Portrait"}, {2042, L"Input the watermark text"}}},
    {"de_de_407", {{2004, L"Schwarzwei\u00DF"}, {2007, L"\u00DCber kurze Kante wenden"}}},
    {"es_es_40a", {{2035, L"Compresi\u00F3n sin p\u00E9rdida"}, {2038, L"Sin im\u00E1genes"}}, 2003},
    {"fr_fr_40c", {{2008, L"\u00C9lev\u00E9e"}, {2029, L"Piq\u00FBre \u00E0 cheval"}}, 2001},
    {"ja_jp_411", {{2001, L"\u7E26"}, {2023, L"\u4E0A 2 \u304B\u6240"}}},
    {"ko_kr_412", {{2002, L"\uAC00\uB85C"}, {2039, L"\uD655\uC778"}}},
    {"zh_cn_804", {{2001, L"\u7EB5\u5411"}, {2040, L"\u53D6\u6D88"}}},
    {"zh_tw_404", {{2001, L"\u76F4\u5411"}, {2005, L"\u7121"}}}};

// Empty if the module has no such text.
std::wstring LoadText(HMODULE module, UINT id)
{
    wchar_t buffer[256];
    return std::wstring(buffer, static_cast<size_t>(LoadStringW(module, id, buffer, 256)));
}

void ExpectKnownTexts(HMODULE module, const Library& library)
{
    for (const auto& [id, text] : library.known)
    {
        EXPECT_EQ(LoadText(module, id), text) << id;
    }
}

// The colours on a grid over the picture.
std::set<COLORREF> PictureColors(HBITMAP bitmap, const BITMAP& info)
{
    const Dc dc(CreateCompatibleDC(nullptr));
    const HGDIOBJ previous = SelectObject(dc.get(), bitmap);
    std::set<COLORREF> colors;
    for (int i = 0; i < info.bmWidth * info.bmHeight / 4; ++i)
    {
        colors.insert(GetPixel(dc.get(), i * 2 % info.bmWidth, i * 2 / info.bmWidth * 2));
    }
    SelectObject(dc.get(), previous);
    return colors;
}

class LanguageLibrary : public testing::TestWithParam<Library>
{
protected:
    void SetUp() override
    {
        ASSERT_NE(m_module, nullptr) << m_path;
    }

    std::filesystem::path m_path = LibraryPath(GetParam().code);
    Module m_module{LoadLibraryW(m_path.c_str())};
};

TEST_P(LanguageLibrary, TextsAreWholeTranslatedAndFitThePagesBuffers)
{
    const Module english(LoadLibraryW(LibraryPath("en_us_409").c_str()));
    for (UINT id = kFirstText; id <= kLastText; ++id)
    {
        const std::wstring text = LoadText(m_module.get(), id);
        const size_t bufferSize = id <= 2011 || (id >= 2035 && id <= 2038) ? 32 : id == 2039 || id == 2040 ? 16 : 64;
        EXPECT_TRUE(!text.empty() && text.size() < bufferSize) << id;
        EXPECT_EQ(text.find_first_of(L"?\uFFFD"), std::wstring::npos) << id;
        // No words left in English by oversight.
        EXPECT_EQ(text == LoadText(english.get(), id), id == GetParam().sameAsEnglish || m_module == english) << id;
    }
}

TEST_P(LanguageLibrary, TextsDoNotDependOnTheThreadsLanguage)
{
    const LCID before = GetThreadLocale();
    for (const LCID locale : {0x0409u, 0x0411u, 0x0407u, 0x0404u, 0x0804u, 0x0419u})
    {
        EXPECT_TRUE(SetThreadLocale(locale));
        ExpectKnownTexts(m_module.get(), GetParam());
        EXPECT_NE(Bitmap(LoadBitmapW(m_module.get(), MAKEINTRESOURCEW(IDB_LOGO))), nullptr) << locale;
    }
    SetThreadLocale(before);
}

TEST_P(LanguageLibrary, PicturesHaveTheirSizesAndContents)
{
    const std::tuple<UINT, LONG, LONG> pictures[] = {
        {IDB_PORTRAIT, 80, 80}, {IDB_LANDSCAPE, 80, 80}, {IDB_LOGO, 120, 40}, {IDB_BLANK_PAGE, 168, 224}};
    for (const auto& [id, width, height] : pictures)
    {
        SCOPED_TRACE(id);
        const Bitmap bitmap(LoadBitmapW(m_module.get(), MAKEINTRESOURCEW(id)));
        BITMAP info{};
        ASSERT_NE(GetObjectW(bitmap.get(), sizeof(info), &info), 0);
        EXPECT_EQ(std::pair(info.bmWidth, info.bmHeight), std::pair(width, height));
        const std::set<COLORREF> colors = PictureColors(bitmap.get(), info);
        EXPECT_GE(colors.size(), 3u);
        EXPECT_FALSE(colors.contains(CLR_INVALID));
        EXPECT_TRUE(colors.contains(RGB(255, 255, 255))) << "the pages' colour must be around the picture";
    }
}

TEST_P(LanguageLibrary, HoldsNoCodeAndAllowsRandomAddresses)
{
    const auto* const base = reinterpret_cast<const std::byte*>(m_module.get());
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    EXPECT_EQ(headers->OptionalHeader.AddressOfEntryPoint, 0u);
    EXPECT_EQ(headers->OptionalHeader.SizeOfCode, 0u);
    EXPECT_EQ(headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].Size, 0u);
    EXPECT_EQ(headers->OptionalHeader.DllCharacteristics, 0x160);
    EXPECT_EQ(headers->FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
}

INSTANTIATE_TEST_SUITE_P(Libraries,
                         LanguageLibrary,
                         testing::ValuesIn(kLibraries),
                         [](const auto& library) { return std::string(library.param.code); });

TEST(EnglishLibrary, HasTheseTexts)
{
    const Module english(LoadLibraryW(LibraryPath("en_us_409").c_str()));
    std::wstring texts;
    for (UINT id = kFirstText; id <= kLastText; ++id)
    {
        texts += LoadText(english.get(), id) + L"|";
    }
    EXPECT_EQ(texts,
              L"Portrait|Landscape|Color|Black/White|None|Flip On Long Edge|Flip On Short Edge|HIGH|MEDIUM|LOW|DRAFT|"
              L"Right then Down|Down then Right|Left then Down|Down then Left|Right then Up|Up then Right|Left then Up|"
              L"Up then Left|None|TopLeft|TopRight|DualTop|DualLeft|DualRight|BottomLeft|BottomRight|DualBottom|"
              L"Saddle Stitch|None|BottomEdge|LeftEdge|RightEdge|TopEdge|Lossless Compression|"
              L"High Quality Compression|Optimized Compression|No Image|Ok|Cancel|Watermark text input box|"
              L"Input the watermark text|");
}

} // namespace
