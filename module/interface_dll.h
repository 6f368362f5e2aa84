// What the module owns from process attach to process detach, and its start-up and release.
#ifndef TESSARY_MODULE_INTERFACE_DLL_H
#define TESSARY_MODULE_INTERFACE_DLL_H

#include <windows.h>

namespace tsypr
{

// Written only at start-up and release, under the loader lock.
extern HMODULE LanguageModule;  // the language library, null when not loaded
extern HMODULE ResourceModule;  // where dialogs, strings and bitmaps are loaded from
extern HBITMAP PortraitBitmap;  // null when the language library lacks it
extern HBITMAP LandscapeBitmap; // likewise
extern HBITMAP LogoBitmap;      // likewise

// Loads the language library, binds the remote printer service, loads the bitmaps and starts the print ticket provider.
// Returns false when the module cannot work; what was made until then is left to ReleaseModuleResources.
bool InitInterfaceDLL() noexcept;

// Loads the language library for a LANGID into LanguageModule. Returns false when its directory is not set or the
// library does not load.
bool LoadLanguageFile(LANGID langId) noexcept;

// The file name of the language library for a LANGID.
const wchar_t* LanguageFileName(LANGID langId) noexcept;

// Releases everything that InitInterfaceDLL made. Harmless when repeated or when there is nothing to release.
void ReleaseModuleResources() noexcept;

// The same at the end of the process, where the system takes back handles and libraries by itself and their locks may
// be held by threads that are gone: only forgets them.
void AbandonModuleResources() noexcept;

} // namespace tsypr

#endif
