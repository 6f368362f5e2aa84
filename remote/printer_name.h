// Printer names: what the service knows a printer by, and what Windows knows of a printer's driver.
#ifndef TESSARY_REMOTE_PRINTER_NAME_H
#define TESSARY_REMOTE_PRINTER_NAME_H

#include "remote/private_devmode.h"

#include <string>

namespace tsypr
{

// Maps a session printer name ("prefix\Printer,suffix") to the name that the service knows ("Printer"). `out` must be
// filled with zeros; a longer name is cut to 255 characters. A null `in` counts as empty.
void NormalizePrinterName(wchar_t (&out)[kPrinterNameChars], const wchar_t* in) noexcept;

namespace PrintUtils
{

// The driver name of a local printer; empty on any failure.
std::wstring GetDriverName(const wchar_t* printerName) noexcept;

} // namespace PrintUtils

} // namespace tsypr

#endif
