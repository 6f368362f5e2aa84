#ifndef TESSARY_TOOLS_PAGE_PICTURES_SAMPLES_H
#define TESSARY_TOOLS_PAGE_PICTURES_SAMPLES_H

#include <windows.h>

namespace tsypr::pictures
{

// Gives the page's lists, fields, choices and pictures sample values, as a well-equipped printer would. Texts and
// pictures come from the language library; what it lacks stays empty.
void FillSamples(HWND page, int templateId, HMODULE library);

} // namespace tsypr::pictures

#endif
