// A plain PostScript printer description for spoolers whose graphics driver wants one as its data file.
#ifndef TESSARY_PRINTCTL_PRINTER_DESCRIPTION_H
#define TESSARY_PRINTCTL_PRINTER_DESCRIPTION_H

#include <string_view>

namespace tsypr::printctl
{

// The file's whole text.
std::string_view PrinterDescription();

} // namespace tsypr::printctl

#endif
