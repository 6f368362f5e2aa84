#include "tools/page_pictures/samples.h"

#include "language/resource_ids.h"

#include <commctrl.h>

#include <algorithm>
#include <string>

namespace tsypr::pictures
{
namespace
{

// A list's entries: texts of the library, or words that a printer has names for, separated by line breaks.
struct SampleList
{
    int templateId;
    int control;
    int firstText;
    int lastText;
    const wchar_t* words;
    int selected;
};

constexpr SampleList kLists[] = {
    {IDD_LAYOUT, IDC_ORIENTATION, IDS_PORTRAIT, IDS_LANDSCAPE, nullptr, 0},
    {IDD_LAYOUT, IDC_DUPLEX, IDS_DUPLEX_NONE, IDS_FLIP_SHORT_EDGE, nullptr, 1},
    {IDD_LAYOUT, IDC_PAGES_PER_SHEET, 0, 0, L"1\n2\n4\n6\n9\n16", 2},
    {IDD_LAYOUT, IDC_PAGE_ORDER, IDS_NUP_RIGHT_DOWN, IDS_NUP_UP_LEFT, nullptr, 0},
    {IDD_PAPER, IDC_PAPER_SOURCE, 0, 0, L"Cassette 1\nCassette 2", 0},
    {IDD_PAPER, IDC_PAPER_SIZE, 0, 0, L"A3\nA4\nLetter", 1},
    {IDD_PAPER, IDC_MEDIACOMBO, 0, 0, L"Plain\nRecycled", 0},
    {IDD_PAPER, IDC_COLOR, IDS_COLOR, IDS_BLACK_WHITE, nullptr, 0},
    {IDD_PAPER, IDC_PRINT_QUALITY, 0, 0, L"300 x 300\n600 x 600", 1},
    {IDD_ADVANCED, IDC_COMPRESSION, IDS_COMPRESSION_LOSSLESS, IDS_COMPRESSION_NO_IMAGE, nullptr, 1},
    {IDD_FINISHING, IDC_STAPLE, IDS_STAPLE_NONE, IDS_STAPLE_SADDLE, nullptr, 1},
    {IDD_FINISHING, IDC_PUNCH, IDS_PUNCH_NONE, IDS_PUNCH_TOP, nullptr, 2},
    {IDD_WATERMARK, IDC_WATERMARK_TEXT, 0, 0, L"No Watermark\nConfidential\nTop Secret", 0}};

// Sizes are for 96 pixels in an inch.
struct SamplePicture
{
    int templateId;
    int control;
    int picture;
    int width;
    int height;
};

constexpr SamplePicture kPictures[] = {{IDD_LAYOUT, IDC_ORIENTATION_PICTURE, IDB_PORTRAIT, 80, 80},
                                       {IDD_ADVANCED, IDC_LOGO, IDB_LOGO, 120, 40},
                                       {IDD_WATERMARK, IDC_WATERMARK_PREVIEW, IDB_BLANK_PAGE, 168, 224}};

void AddEntry(HWND list, const wchar_t* text)
{
    SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
}

void AddWords(HWND list, const wchar_t* words)
{
    const std::wstring all(words);
    for (size_t begin = 0; begin < all.size();)
    {
        const size_t end = std::min(all.find(L'\n', begin), all.size());
        AddEntry(list, all.substr(begin, end - begin).c_str());
        begin = end + 1;
    }
}

void FillList(HWND list, const SampleList& sample, HMODULE library)
{
    if (sample.words != nullptr)
    {
        AddWords(list, sample.words);
    }
    else
    {
        for (int id = sample.firstText; id <= sample.lastText; ++id)
        {
            wchar_t text[64] = L"";
            LoadStringW(library, static_cast<UINT>(id), text, 64);
            AddEntry(list, text);
        }
    }
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(sample.selected), 0);
}

void ShowPicture(HWND control, const SamplePicture& sample, HMODULE library)
{
    const int resolution = static_cast<int>(GetDpiForSystem());
    const int width = MulDiv(sample.width, resolution, 96);
    const int height = MulDiv(sample.height, resolution, 96);
    // Lives until the program ends.
    HANDLE picture = LoadImageW(library, MAKEINTRESOURCEW(sample.picture), IMAGE_BITMAP, width, height, 0);
    SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(picture));
}

} // namespace

void FillSamples(HWND page, int templateId, HMODULE library)
{
    for (const SampleList& sample : kLists)
    {
        if (sample.templateId == templateId)
        {
            FillList(GetDlgItem(page, sample.control), sample, library);
        }
    }
    for (const SamplePicture& sample : kPictures)
    {
        if (sample.templateId == templateId)
        {
            ShowPicture(GetDlgItem(page, sample.control), sample, library);
        }
    }
    if (templateId == IDD_ADVANCED)
    {
        SendDlgItemMessageW(page, IDC_COPIES_SPIN, UDM_SETRANGE, 0, MAKELPARAM(999, 1));
        SetDlgItemInt(page, IDC_COPIES, 1, FALSE);
        CheckRadioButton(page, IDC_PRINT_ON_CLIENT, IDC_PREVIEW_ON_CLIENT, IDC_PRINT_ON_CLIENT);
        CheckDlgButton(page, IDC_PRE_DIALOG, BST_CHECKED);
    }
    if (templateId == IDD_WATERMARK)
    {
        CheckRadioButton(page, IDC_WATERMARK_IN_FRONT, IDC_WATERMARK_BEHIND, IDC_WATERMARK_IN_FRONT);
    }
}

} // namespace tsypr::pictures
