#ifndef TESSARY_TOOLS_PAGE_PICTURES_WINDOW_PICTURE_H
#define TESSARY_TOOLS_PAGE_PICTURES_WINDOW_PICTURE_H

#include <windows.h>

#include <filesystem>

namespace tsypr::pictures
{

// Writes what the window shows, frame included, as a 24-bit bitmap file. False if the window has no pixels or the file
// cannot be written.
bool SaveWindowPicture(HWND window, const std::filesystem::path& file);

} // namespace tsypr::pictures

#endif
