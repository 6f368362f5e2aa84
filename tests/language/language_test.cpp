// The built language libraries as the module meets them: loaded by name, read with LoadStringW and LoadBitmapW.
#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "language/resource_ids.h"

namespace
{

struct ModuleCloser
{
    void operator()(HMODULE module) const
    {
        FreeLibrary(module);
    }
};

struct BitmapCloser
{
    void operator()(HBITMAP bitmap) const
    {
        DeleteObject(bitmap);
    }
};

struct DcCloser
{
    void operator()(HDC dc) const
    {
        DeleteDC(dc);
    }
};

using Module = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleCloser>;
using Bitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapCloser>;
using Dc = std::unique_ptr<std::remove_pointer_t<HDC>, DcCloser>;

struct Text
{
    UINT id;
    std::wstring text;
};

// A library with texts that would not survive a wrong code page or a wrongly read escape.
struct Library
{
    const char* code;
    std::vector<Text> known;
    std::set<UINT> sameAsEnglish;
};

const Library kEnglish{"en_us_409",
                       {{2001, L"Portrait"},
                        {2002, L"Landscape"},
                        {2003, L"Color"},
                        {2004, L"Black/White"},
                        {2005, L"None"},
                        {2006, L"Flip On Long Edge"},
                        {2007, L"Flip On Short Edge"},
                        {2008, L"HIGH"},
                        {2009, L"MEDIUM"},
                        {2010, L"LOW"},
                        {2011, L"DRAFT"},
                        {2012, L"Right then Down"},
                        {2013, L"Down then Right"},
                        {2014, L"Left then Down"},
                        {2015, L"Down then Left"},
                        {2016, L"Right then Up"},
                        {2017, L"Up then Right"},
                        {2018, L"Left then Up"},
                        {2019, L"Up then Left"},
                        {2020, L"None"},
                        {2021, L"TopLeft"},
                        {2022, L"TopRight"},
                        {2023, L"DualTop"},
                        {2024, L"DualLeft"},
                        {2025, L"DualRight"},
                        {2026, L"BottomLeft"},
                        {2027, L"BottomRight"},
                        {2028, L"DualBottom"},
                        {2029, L"Saddle Stitch"},
                        {2030, L"None"},
                        {2031, L"BottomEdge"},
                        {2032, L"LeftEdge"},
                        {2033, L"RightEdge"},
                        {2034, L"TopEdge"},
                        {2035, L"Lossless Compression"},
                        {2036, L"High Quality Compression"},
                        {2037, L"Optimized Compression"},
                        {2038, L"No Image"},
                        {2039, L"Ok"},
                        {2040, L"Cancel"},
                        {2041, L"Watermark text input box"},
                        {2042, L"Input the watermark text"}},
                       {}};

const std::array<Library, 7> kTranslations{{
    {"de_de_407", {{2004, L"Schwarzwei\u00DF"}, {2007, L"\u00DCber kurze Kante wenden"}}, {}},
    {"es_es_40a", {{2035, L"Compresi\u00F3n sin p\u00E9rdida"}, {2038, L"Sin im\u00E1genes"}}, {2003}},
    {"fr_fr_40c", {{2008, L"\u00C9lev\u00E9e"}, {2029, L"Piq\u00FBre \u00E0 cheval"}}, {2001}},
    {"ja_jp_411", {{2001, L"\u7E26"}, {2023, L"\u4E0A 2 \u304B\u6240"}}, {}},
    {"ko_kr_412", {{2002, L"\uAC00\uB85C"}, {2039, L"\uD655\uC778"}}, {}},
    {"zh_cn_804", {{2001, L"\u7EB5\u5411"}, {2040, L"\u53D6\u6D88"}}, {}},
    {"zh_tw_404", {{2001, L"\u76F4\u5411"}, {2005, L"\u7121"}}, {}},
}};

// The buffers that the pages read the texts into.
struct TextRange
{
    UINT first;
    UINT last;
    int bufferSize;
};
constexpr std::array<TextRange, 5> kTextRanges{
    {{2001, 2011, 32}, {2012, 2034, 64}, {2035, 2038, 32}, {2039, 2040, 16}, {2041, 2042, 64}}};

struct Picture
{
    UINT id;
    LONG width;
    LONG height;
};
constexpr std::array<Picture, 4> kPictures{
    {{IDB_PORTRAIT, 80, 80}, {IDB_LANDSCAPE, 80, 80}, {IDB_LOGO, 120, 40}, {IDB_BLANK_PAGE, 168, 224}}};

constexpr COLORREF kDialogColor = RGB(240, 240, 240);

std::filesystem::path LibraryPath(const char* code)
{
    std::wstring program(MAX_PATH, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
    return std::filesystem::path(program).parent_path() / ("tsyprUI_" + std::string(code) + ".dll");
}

Module Load(const std::filesystem::path& path, DWORD flags = 0)
{
    return Module(LoadLibraryExW(path.c_str(), nullptr, flags));
}

// Empty if the module has no such text.
std::wstring LoadText(HMODULE module, UINT id)
{
    std::array<wchar_t, 256> buffer{};
    const int length = LoadStringW(module, id, buffer.data(), static_cast<int>(buffer.size()));
    return std::wstring(buffer.data(), static_cast<size_t>(length));
}

void ExpectSoundTexts(HMODULE module)
{
    for (const TextRange& range : kTextRanges)
    {
        for (UINT id = range.first; id <= range.last; ++id)
        {
            SCOPED_TRACE(id);
            const std::wstring text = LoadText(module, id);
            EXPECT_FALSE(text.empty());
            EXPECT_LT(static_cast<int>(text.size()), range.bufferSize);
            EXPECT_EQ(text.find_first_of(L"?\uFFFD"), std::wstring::npos);
        }
    }
}

void ExpectKnownTexts(HMODULE module, const Library& library)
{
    for (const Text& known : library.known)
    {
        EXPECT_EQ(LoadText(module, known.id), known.text) << known.id;
    }
}

// The colours on a grid over the picture.
std::set<COLORREF> PictureColors(HBITMAP bitmap, const Picture& picture)
{
    const Dc dc(CreateCompatibleDC(nullptr));
    const HGDIOBJ previous = SelectObject(dc.get(), bitmap);
    std::set<COLORREF> colors;
    for (int y = 0; y < picture.height; y += 2)
    {
        for (int x = 0; x < picture.width; x += 2)
        {
            colors.insert(GetPixel(dc.get(), x, y));
        }
    }
    SelectObject(dc.get(), previous);
    return colors;
}

class LanguageLibrary : public testing::TestWithParam<Library>
{
};

std::string LibraryName(const testing::TestParamInfo<Library>& info)
{
    return info.param.code;
}

TEST_P(LanguageLibrary, TextsAreWholeHoweverTheLibraryIsLoaded)
{
    const DWORD ways[] = {0, LOAD_LIBRARY_AS_DATAFILE, LOAD_LIBRARY_AS_IMAGE_RESOURCE | LOAD_LIBRARY_AS_DATAFILE};
    for (const DWORD way : ways)
    {
        SCOPED_TRACE(way);
        const Module module = Load(LibraryPath(GetParam().code), way);
        ASSERT_NE(module.get(), nullptr) << GetLastError();
        ExpectSoundTexts(module.get());
        ExpectKnownTexts(module.get(), GetParam());
    }
}

TEST_P(LanguageLibrary, TextsDoNotDependOnTheThreadsLanguage)
{
    const Module module = Load(LibraryPath(GetParam().code));
    ASSERT_NE(module.get(), nullptr);
    const LCID before = GetThreadLocale();
    for (const LCID locale : {0x0409u, 0x0411u, 0x0407u, 0x0404u, 0x0804u, 0x0419u})
    {
        SCOPED_TRACE(locale);
        EXPECT_TRUE(SetThreadLocale(locale));
        ExpectKnownTexts(module.get(), GetParam());
        EXPECT_NE(Bitmap(LoadBitmapW(module.get(), MAKEINTRESOURCEW(IDB_LOGO))), nullptr);
    }
    SetThreadLocale(before);
}

TEST_P(LanguageLibrary, PicturesHaveTheirSizesAndContents)
{
    const Module module = Load(LibraryPath(GetParam().code));
    ASSERT_NE(module.get(), nullptr);
    for (const Picture& picture : kPictures)
    {
        SCOPED_TRACE(picture.id);
        const Bitmap bitmap(LoadBitmapW(module.get(), MAKEINTRESOURCEW(picture.id)));
        ASSERT_NE(bitmap, nullptr);
        BITMAP info{};
        ASSERT_NE(GetObjectW(bitmap.get(), sizeof(info), &info), 0);
        EXPECT_EQ(info.bmWidth, picture.width);
        EXPECT_EQ(info.bmHeight, picture.height);
        const std::set<COLORREF> colors = PictureColors(bitmap.get(), picture);
        EXPECT_GE(colors.size(), 3u);
        EXPECT_EQ(colors.count(CLR_INVALID), 0u);
        EXPECT_EQ(colors.count(kDialogColor), 1u) << "the dialog's colour must be around the picture";
        EXPECT_EQ(colors.count(RGB(255, 255, 255)), picture.id == IDB_LOGO ? 0u : 1u) << "pages are white";
    }
}

TEST_P(LanguageLibrary, VersionInformationNamesTheFile)
{
    const std::filesystem::path path = LibraryPath(GetParam().code);
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), nullptr);
    ASSERT_GT(size, 0u);
    std::vector<std::byte> block(size);
    ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, size, block.data()));
    void* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\OriginalFilename", &value, &length));
    EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(value)), path.filename().wstring());
}

// Two files with the same preferred address: one of them has to give way.
TEST_P(LanguageLibrary, LoadsAtAnotherAddress)
{
    const std::filesystem::path original = LibraryPath(GetParam().code);
    const std::filesystem::path copy = original.parent_path() / (L"copy_of_" + original.filename().wstring());
    std::filesystem::copy_file(original, copy, std::filesystem::copy_options::overwrite_existing);
    {
        const Module first = Load(original);
        const Module second = Load(copy);
        ASSERT_NE(first.get(), nullptr);
        ASSERT_NE(second.get(), nullptr) << GetLastError();
        EXPECT_NE(first.get(), second.get());
        ExpectKnownTexts(first.get(), GetParam());
        ExpectKnownTexts(second.get(), GetParam());
    }
    std::filesystem::remove(copy);
}

TEST_P(LanguageLibrary, HoldsNoCodeAndAllowsRandomAddresses)
{
    const Module module = Load(LibraryPath(GetParam().code));
    ASSERT_NE(module.get(), nullptr);
    const auto* const base = reinterpret_cast<const std::byte*>(module.get());
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    EXPECT_EQ(headers->OptionalHeader.AddressOfEntryPoint, 0u);
    EXPECT_EQ(headers->OptionalHeader.SizeOfCode, 0u);
    EXPECT_EQ(headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].Size, 0u);
    EXPECT_EQ(headers->OptionalHeader.DllCharacteristics, 0x160);
    EXPECT_EQ(headers->FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
}

INSTANTIATE_TEST_SUITE_P(English, LanguageLibrary, testing::Values(kEnglish), LibraryName);
INSTANTIATE_TEST_SUITE_P(Translations, LanguageLibrary, testing::ValuesIn(kTranslations), LibraryName);

using Translation = LanguageLibrary;

// Words left in English by oversight; sameAsEnglish names the texts that are the same word in both languages.
TEST_P(Translation, DiffersFromEnglish)
{
    const Module module = Load(LibraryPath(GetParam().code));
    ASSERT_NE(module.get(), nullptr);
    for (const Text& english : kEnglish.known)
    {
        const bool isSame = LoadText(module.get(), english.id) == english.text;
        EXPECT_EQ(isSame, GetParam().sameAsEnglish.count(english.id) == 1) << english.id;
    }
}

INSTANTIATE_TEST_SUITE_P(Translations, Translation, testing::ValuesIn(kTranslations), LibraryName);

} // namespace
