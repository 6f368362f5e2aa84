#ifndef TESSARY_TESTS_IMPORTER_TEST_SUPPORT_H
#define TESSARY_TESTS_IMPORTER_TEST_SUPPORT_H

#include "tools/ppdimport/importer.h"
#include "tools/ppdimport/ppd_model.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tsypr::ppdimport
{

// A folder of its own for one test, removed with all it holds.
class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string Path(std::string_view name) const;
    std::string Write(std::string_view name, std::string_view content) const; // gives the path

    // Names of all entries, sorted.
    std::vector<std::string> Entries() const;

private:
    std::filesystem::path m_path;
};

std::string ReadAll(const std::string& path);

// A small well-formed PPD file with A4 and Letter; `more` goes behind the page sizes.
std::string SmallPpd(std::string_view more = "", std::string_view encoding = "ISOLatin1");

// An option of a PPD file in the model; choices are given as "Name/Text", the first one is the default.
PpdOption MakeOption(const std::string& keyword, const std::vector<std::string>& choices);

// A model with one A4 page size and the given options.
PpdModel MakeModel(std::vector<PpdOption> options = {});

// Adds a page size, in points.
void AddPageSize(PpdModel& model, const std::string& name, double width, double length);

PrinterProfile Import(const PpdModel& model);
std::string ImportReportOf(const PpdModel& model);

} // namespace tsypr::ppdimport

#endif
