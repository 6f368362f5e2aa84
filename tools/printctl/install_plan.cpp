#include "tools/printctl/install_plan.h"

#include "service/profile_loader.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/product.h"
#include "tools/printctl/spooler.h"
#include "tools/printctl/text.h"

#include <algorithm>

namespace tsypr::printctl
{

namespace
{

constexpr wchar_t kStockGraphicsDriver[] = L"wineps.drv";

fs::path Existing(const fs::path& file, const char* what)
{
    if (!IsFile(file))
    {
        throw Failure(ExitCode::BadFile, std::string("the ") + what + " " + Shown(file) + " is missing");
    }
    // The spooler and the loader want full paths.
    return fs::absolute(file);
}

std::vector<fs::path> FilesIn(const fs::path& folder,
                              const char* what,
                              std::wstring_view prefix,
                              std::wstring_view ending)
{
    std::error_code error;
    std::vector<fs::path> files;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    {
        const std::wstring name = entry->path().filename().wstring();
        if (name.size() > prefix.size() + ending.size() && EqualNoCase(name.substr(0, prefix.size()), prefix) &&
            EqualNoCase(name.substr(name.size() - ending.size()), ending) && IsFile(entry->path()))
        {
            files.push_back(fs::absolute(entry->path()));
        }
    }
    if (files.empty())
    {
        throw Failure(ExitCode::BadFile, std::string("there are no ") + what + " in the folder " + Shown(folder));
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::wstring> ProfileNames(const fs::path& folder)
{
    const service::ProfileSet set = service::LoadProfiles(folder);
    std::string problems;
    for (const auto& problem : set.problems)
    {
        problems += "\n  " + problem.file + ": " + problem.field + ": " + problem.reason;
    }
    if (!problems.empty())
    {
        throw Failure(ExitCode::BadFile, "the printer profiles in " + Shown(folder) + " have faults:" + problems);
    }
    std::vector<std::wstring> names;
    for (const auto& printer : set.printers)
    {
        names.push_back(Wide(printer.name));
    }
    return names;
}

// The name by which the driver asks for the client printer: what stands before the first comma.
std::wstring ClientPrinterName(const std::wstring& printer)
{
    return printer.substr(0, printer.find(L','));
}

void CheckPrinterNames(const std::vector<std::wstring>& printers, const std::vector<std::wstring>& profiles)
{
    for (const auto& printer : printers)
    {
        // Commas divide a session printer's name; backslashes and exclamation marks no spooler stores properly.
        if (printer.empty() || printer.find_first_of(L"\\!") != std::wstring::npos)
        {
            throw Failure(ExitCode::Usage,
                          Quoted(printer) +
                              " cannot be a printer's name: it must have a character and neither \\ nor !");
        }
        if (std::find(profiles.begin(), profiles.end(), ClientPrinterName(printer)) == profiles.end())
        {
            throw Failure(ExitCode::NotFound, "no printer profile is named " + Quoted(ClientPrinterName(printer)));
        }
    }
}

fs::path GraphicsDriver(const fs::path& given)
{
    if (!given.empty())
    {
        return Existing(given, "graphics driver");
    }
    const fs::path directory = DriverDirectory();
    for (const fs::path& stock : {directory / L"3" / kStockGraphicsDriver, directory / kStockGraphicsDriver})
    {
        if (IsFile(stock))
        {
            return stock;
        }
    }
    throw Failure(ExitCode::BadFile,
                  "there is no " + Quoted(kStockGraphicsDriver) + " in the spooler's folder " + Shown(directory) +
                      ": name a graphics driver with --graphics-driver");
}

// A PostScript graphics driver reads the data file as a printer description; any other driver of ours needs none, but
// the spooler wants a file.
fs::path DataFile(const fs::path& given, const InstallPlan& plan)
{
    if (!given.empty())
    {
        return Existing(given, "data file");
    }
    return EqualNoCase(plan.graphicsDriver.filename().wstring(), kStockGraphicsDriver) ? fs::path() : plan.module;
}

} // namespace

InstallPlan MakeInstallPlan(const InstallOptions& options)
{
    const fs::path folder = options.driverFolder.empty() ? ProgramFolder() : options.driverFolder;
    const fs::path languages = options.languageFolder.empty() ? folder : options.languageFolder;
    const fs::path profiles = options.profilesFolder.empty() ? folder / L"printers" : options.profilesFolder;
    InstallPlan plan;
    plan.module = Existing(folder / kModuleFile, "driver file");
    plan.service = Existing(folder / kServiceFile, "service library");
    plan.languages = FilesIn(languages, "language libraries", L"tsyprUI_", L".dll");
    plan.profiles = FilesIn(profiles, "printer profiles", L"", L".json");
    plan.graphicsDriver = GraphicsDriver(options.graphicsDriver);
    plan.dataFile = DataFile(options.dataFile, plan);
    const std::vector<std::wstring> names = ProfileNames(profiles);
    plan.printers = options.printers.empty() ? names : options.printers;
    plan.port = options.port;
    CheckPrinterNames(plan.printers, names);
    return plan;
}

} // namespace tsypr::printctl
