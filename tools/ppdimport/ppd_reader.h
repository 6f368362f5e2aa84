#ifndef TESSARY_TOOLS_PPDIMPORT_PPD_READER_H
#define TESSARY_TOOLS_PPDIMPORT_PPD_READER_H

#include "tools/ppdimport/ppd_model.h"

#include <stdexcept>
#include <string>

namespace tsypr::ppdimport
{

// A PPD file that is missing, unreadable, malformed or of no use for a profile; what() names the file and, where
// known, the line.
class InputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Reads a PPD file, plain or compressed with gzip. Throws InputError. Fixes the process locale variables to English
// first, because CUPS picks the display texts of a multi-language file by them.
PpdModel ReadPpd(const std::string& path);

} // namespace tsypr::ppdimport

#endif
