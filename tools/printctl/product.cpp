#include "tools/printctl/product.h"

#include "tools/printctl/errors.h"
#include "tools/printctl/spooler.h"

#include <windows.h>

#include <knownfolders.h>
#include <shlobj.h>

#include <memory>

namespace tsypr::printctl
{

namespace
{

std::filesystem::path KnownFolder(const KNOWNFOLDERID& id)
{
    wchar_t* text = nullptr;
    const HRESULT result = SHGetKnownFolderPath(id, KF_FLAG_DEFAULT, nullptr, &text);
    const std::unique_ptr<wchar_t, decltype(&CoTaskMemFree)> owner(text, &CoTaskMemFree);
    if (FAILED(result))
    {
        ThrowSystem("SHGetKnownFolderPath", static_cast<DWORD>(result));
    }
    return text;
}

std::filesystem::path SystemFolder()
{
    wchar_t text[MAX_PATH];
    const UINT length = GetSystemDirectoryW(text, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
    {
        const DWORD error = GetLastError();
        ThrowSystem("GetSystemDirectoryW", error);
    }
    return text;
}

} // namespace

ProductFolders FindProductFolders()
{
    ProductFolders folders;
    folders.product = KnownFolder(FOLDERID_ProgramFiles) / L"Zelmora" / L"Tessary";
    folders.languages = folders.product / L"language";
    folders.printers = folders.product / L"printers";
    folders.data = KnownFolder(FOLDERID_ProgramData) / L"Zelmora" / L"Tessary";
    folders.system = SystemFolder();
    folders.spooler = DriverDirectory() / L"3";
    return folders;
}

std::filesystem::path ProgramFolder()
{
    std::wstring text(32768, L'\0');
    text.resize(GetModuleFileNameW(nullptr, text.data(), static_cast<DWORD>(text.size())));
    return std::filesystem::path(text).parent_path();
}

} // namespace tsypr::printctl
