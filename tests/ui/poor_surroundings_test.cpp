// A language library that lacks things, and a service that never answers.
#include "tests/compstui/sheet_fixture.h"
#include "tests/ui/sheet_fixture.h"

#include <fstream>
#include <iterator>

namespace tsypr::test
{
namespace
{

// A copy of the English library in which one resource has the next lower identifier, where nobody looks for it.
class CutLibrary
{
public:
    CutLibrary(WORD type, WORD id)
    {
        wchar_t english[MAX_PATH];
        GetModuleFileNameW(ResourceModule, english, MAX_PATH);
        std::ifstream in(std::filesystem::path(english), std::ios::binary);
        std::string bytes(std::istreambuf_iterator<char>(in), {});
        const size_t resources = SectionOffset(bytes);
        const size_t typeEntry = EntryOffset(bytes, resources, type);
        const size_t ids = resources + (At<DWORD>(bytes, typeEntry + sizeof(DWORD)) & 0x7FFFFFFF);
        At<DWORD>(bytes, EntryOffset(bytes, ids, id)) = id - 1U;
        m_path = std::filesystem::temp_directory_path() / L"cut_language_library.dll";
        std::ofstream(m_path, std::ios::binary) << bytes;
        m_library = LoadLibraryW(m_path.c_str());
        EXPECT_EQ(FindResourceW(m_library, MAKEINTRESOURCEW(id), MAKEINTRESOURCEW(type)), nullptr);
        ResourceModule = m_library;
    }
    ~CutLibrary()
    {
        FreeLibrary(m_library);
        std::filesystem::remove(m_path);
    }
    CutLibrary(const CutLibrary&) = delete;
    CutLibrary& operator=(const CutLibrary&) = delete;

private:
    template <typename T>
    static T& At(std::string& bytes, size_t offset)
    {
        return reinterpret_cast<T&>(bytes.at(offset));
    }
    // Where the resources begin in the file.
    static size_t SectionOffset(std::string& bytes)
    {
        auto& headers = At<IMAGE_NT_HEADERS64>(bytes, static_cast<size_t>(At<IMAGE_DOS_HEADER>(bytes, 0).e_lfanew));
        const DWORD address = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_RESOURCE].VirtualAddress;
        const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(&headers);
        while (section->VirtualAddress != address)
        {
            ++section;
        }
        return section->PointerToRawData;
    }
    // Where a directory has the entry of a type or an identifier.
    static size_t EntryOffset(std::string& bytes, size_t directory, DWORD id)
    {
        size_t entry = directory + sizeof(IMAGE_RESOURCE_DIRECTORY);
        while (At<DWORD>(bytes, entry) != id)
        {
            entry += sizeof(IMAGE_RESOURCE_DIRECTORY_ENTRY);
        }
        return entry;
    }

    std::filesystem::path m_path;
    HMODULE m_library = nullptr;
};

class PoorSurroundings : public SheetTest
{
};

TEST_F(PoorSurroundings, LeaveTheOtherPagesWorking)
{
    const std::pair<WORD, WORD> cases[] = {{5, IDD_PAPER}, {6, IDS_PORTRAIT / 16 + 1}}; // a dialog, a block of texts
    dm->dmOrientation = DMORIENT_LANDSCAPE;
    service.devMode = dm.Whole();
    for (const auto& [type, id] : cases)
    {
        UseEnglish();
        const CutLibrary cut(type, id);
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
                PostMessageW(sheet, PSM_PRESSBUTTON, PSBTN_OK, 0);
            });
        const auto show = compstui_tests::Export<decltype(&CommonPropertySheetUIW)>("CommonPropertySheetUIW");
        DWORD result = 0;
        EXPECT_GE(show(nullptr, DrvDocumentPropertySheets, reinterpret_cast<LPARAM>(&header), &result), 0);
        user.join();
        EXPECT_EQ("Portrait|>Landscape", seen);
        EXPECT_EQ(1, out->dmCopies) << "the result was written";
    }
    UseEnglish();
}

TEST_F(PoorSurroundings, LetTheProgramEndWhileTheServiceIsSilent)
{
    EXPECT_EXIT(
        {
            std::thread(
                [this]
                {
                    service.delay = INFINITE;
                    FakeSheet sheet(header);
                    sheet.Open();
                })
                .detach();
            Sleep(100);
            ExitProcess(7);
        },
        testing::ExitedWithCode(7),
        "");
}

} // namespace
} // namespace tsypr::test
