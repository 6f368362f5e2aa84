#include "module/interface_dll.h"

#include "module/log.h"
#include "ptprovider/provider_hooks.h"
#include "remote/devmode_names.h"
#include "remote/remote_printer_service.h"
#include "watermark/preview.h"

namespace tsypr
{

HMODULE LanguageModule = nullptr;
HMODULE ResourceModule = nullptr;
HBITMAP PortraitBitmap = nullptr;
HBITMAP LandscapeBitmap = nullptr;
HBITMAP LogoBitmap = nullptr;

namespace
{

void LoadBitmaps() noexcept
{
    struct Entry
    {
        HBITMAP& bitmap;
        WORD id;
        const char* message;
    };
    const Entry entries[] = {{PortraitBitmap, 111, "%s, failed to load portait bitmap.\n"},
                             {LandscapeBitmap, 113, "%s, failed to load landscape bitmap.\n"},
                             {LogoBitmap, 118, "%s, failed to load the logo bitmap.\n"}};
    for (const Entry& entry : entries)
    {
        entry.bitmap = LoadBitmapW(ResourceModule, MAKEINTRESOURCEW(entry.id));
        if (entry.bitmap == nullptr)
        {
            LogError(entry.message, "InitInterfaceDLL"); // NOLINT(clang-diagnostic-format-security)
        }
    }
}

void DeleteBitmap(HBITMAP& bitmap) noexcept
{
    if (bitmap != nullptr)
    {
        DeleteObject(bitmap);
        bitmap = nullptr;
    }
}

} // namespace

bool InitInterfaceDLL() noexcept
{
    LANGID langId = GetUserDefaultUILanguage();
    if (langId == 0)
    {
        langId = GetSystemDefaultLangID();
    }
    if (!LoadLanguageFile(langId))
    {
        LogError("%s, failed to load language library.\n", "InitInterfaceDLL");
        return false;
    }
    ResourceModule = LanguageModule;
    if (RemoteService.ServerApiModule == nullptr && !InitServerApiLib())
    {
        LogError("%s, failed to initialize server api library.\n", "InitInterfaceDLL");
        return false; // the language library stays until the detach
    }
    LoadBitmaps();
    InitPTProvider();
    return true;
}

void ReleaseModuleResources() noexcept
{
    DeleteBitmap(PortraitBitmap);
    DeleteBitmap(LandscapeBitmap);
    DeleteBitmap(LogoBitmap);
    ReleasePreview();
    if (LanguageModule != nullptr)
    {
        FreeLibrary(LanguageModule);
        LanguageModule = nullptr;
        ResourceModule = nullptr;
    }
    FreeServerApiLib();
    PrintUtils::ReleaseNameBuffers();
    UninitPTProvider();
}

void AbandonModuleResources() noexcept
{
    PortraitBitmap = nullptr;
    LandscapeBitmap = nullptr;
    LogoBitmap = nullptr;
    LanguageModule = nullptr;
    ResourceModule = nullptr;
    RemoteService = {};
    UninitPTProvider();
}

} // namespace tsypr
