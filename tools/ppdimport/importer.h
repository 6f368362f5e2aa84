#ifndef TESSARY_TOOLS_PPDIMPORT_IMPORTER_H
#define TESSARY_TOOLS_PPDIMPORT_IMPORTER_H

#include "tools/ppdimport/ppd_model.h"
#include "tools/ppdimport/profile.h"

#include <string>
#include <vector>

namespace tsypr::ppdimport
{

struct ImportOptions
{
    std::string name;                // the printer's name; empty: made of maker and model
    std::vector<std::string> locked; // "duplex", "color", "compressionLevel"
    bool withNup = false;            // offer the N-up that the redirection client composes
};

struct ImportResult
{
    PrinterProfile profile;
    std::string report; // readable text
};

// Makes a printer profile of a PPD file. Throws InputError when the file describes no usable printer.
ImportResult ImportPrinter(const PpdModel& ppd, const ImportOptions& options);

} // namespace tsypr::ppdimport

#endif
