#include "tools/printctl/installation.h"

#include "tools/printctl/config_library.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/printer_description.h"
#include "tools/printctl/product.h"
#include "tools/printctl/registry.h"
#include "tools/printctl/spooler.h"

#include <algorithm>
#include <set>

namespace tsypr::printctl
{

namespace
{

const std::vector<const char*> kServiceFunctions = {"VpOpenRemotePrinter",
                                                    "VpCloseRemotePrinter",
                                                    "VpGetDevMode",
                                                    "VpFreeDevMode",
                                                    "VpGetDeviceCapabilities",
                                                    "VpFreeDeviceCapabilities",
                                                    "VpMakePTQuery",
                                                    "VpFreePTData"};

// One run of the installation. Whatever it changed is taken back unless Run reaches its end.
class Installation
{
public:
    explicit Installation(InstallPlan plan) : m_plan(std::move(plan)), m_folders(FindProductFolders()) {}

    // Returns what was done, for the user.
    std::string Run()
    {
        PlaceProductFiles();
        SetRegistryValues();
        PlaceDriver();
        const ConfigLibrary library(m_driver.configFile);
        for (const auto& printer : m_plan.printers)
        {
            PlacePrinter(library, printer);
        }
        RecordFiles();
        m_undo.Commit();
        return m_messages + "driver " + Quoted(kDriverName) + " installed, " + std::to_string(m_files.size()) +
               " files in place\n";
    }

private:
    void Place(const fs::path& source, const fs::path& target)
    {
        InstallFile(m_undo, source, target);
        m_files.insert(target.wstring());
    }

    void PlaceProductFiles()
    {
        for (const auto& folder : {m_folders.languages, m_folders.printers, m_folders.data})
        {
            CreateFolders(m_undo, folder);
        }
        for (const auto& language : m_plan.languages)
        {
            Place(language, m_folders.languages / language.filename());
        }
        for (const auto& profile : m_plan.profiles)
        {
            Place(profile, m_folders.printers / profile.filename());
        }
        // Every program that opens the printer finds the service library there.
        Place(m_plan.service, m_folders.system / kServiceFile);
        LoadLibraryWithExports(m_folders.system / kServiceFile, kServiceFunctions);
    }

    void SetRegistryValues()
    {
        SetRegistryValue(m_undo, kLanguageKey, kLanguageValue, StringValue(m_folders.languages.wstring() + L"\\"));
        SetRegistryValue(m_undo, kServiceKey, kProfilesValue, StringValue(m_folders.printers.wstring()));
    }

    void PlaceDriver()
    {
        DriverEntry driver{kDriverName, m_plan.graphicsDriver, m_plan.dataFile, m_plan.module};
        if (driver.dataFile.empty())
        {
            driver.dataFile = m_folders.product / kDescriptionFile;
            InstallText(m_undo, PrinterDescription(), driver.dataFile);
            m_files.insert(driver.dataFile.wstring());
        }
        // The same file may serve twice.
        const std::set<fs::path> sources{driver.driverFile, driver.dataFile, driver.configFile};
        const std::set<std::wstring> foreign = ForeignFiles(sources);
        for (const auto& source : sources)
        {
            MakeRoom(m_undo, source, SpoolerCopy(source));
        }
        Register(driver);
        for (const auto& source : sources)
        {
            CheckSpoolerCopy(source);
            if (!foreign.contains(SpoolerCopy(source).wstring()))
            {
                m_files.insert(SpoolerCopy(source).wstring());
            }
        }
    }

    fs::path SpoolerCopy(const fs::path& source) const
    {
        return m_folders.spooler / source.filename();
    }

    // Files in the spooler's folder that were there before us, such as the system's own graphics driver: they are not
    // ours to remove later.
    std::set<std::wstring> ForeignFiles(const std::set<fs::path>& sources) const
    {
        const std::set<std::wstring> recorded = RecordedFiles();
        std::set<std::wstring> foreign;
        for (const auto& source : sources)
        {
            const std::wstring copy = SpoolerCopy(source).wstring();
            const bool ours =
                source == m_plan.module || source.parent_path() == m_folders.product || recorded.contains(copy);
            if (!ours && IsFile(copy))
            {
                foreign.insert(copy);
            }
        }
        return foreign;
    }

    void Register(const DriverEntry& driver)
    {
        const std::optional<DriverEntry> previous = FindDriver(kDriverName);
        m_undo.OnFailure("registering the driver",
                         [previous]
                         {
                             if (previous)
                             {
                                 RegisterDriver(*previous);
                             }
                             else if (FindDriver(kDriverName))
                             {
                                 UnregisterDriver(kDriverName);
                             }
                         });
        RegisterDriver(driver);
        const std::optional<DriverEntry> now = FindDriver(kDriverName);
        if (!now)
        {
            throw Failure(ExitCode::System, "the spooler accepted the driver but does not list it");
        }
        m_driver = *now;
    }

    // A spooler may report success although it could not copy a file.
    void CheckSpoolerCopy(const fs::path& source) const
    {
        const fs::path copy = SpoolerCopy(source);
        if (!SameContent(source, copy))
        {
            throw Failure(ExitCode::System, "the spooler could not copy " + Shown(source) + " to " + Shown(copy));
        }
    }

    void PlacePrinter(const ConfigLibrary& library, const std::wstring& name)
    {
        const auto printers = ListPrinters(std::nullopt);
        const auto present =
            std::find_if(printers.begin(), printers.end(), [&](const auto& p) { return EqualNoCase(p.name, name); });
        if (present != printers.end())
        {
            if (present->driver != kDriverName)
            {
                throw Failure(ExitCode::System,
                              "a printer named " + Quoted(name) + " exists and uses the driver " +
                                  Quoted(present->driver));
            }
            m_messages += "printer " + Quoted(name) + " is there already\n";
            return;
        }
        DevModeBuffer settings = library.DriverDefault(name);
        CreatePrinter({name, kDriverName, m_plan.port}, settings.Get());
        m_undo.OnFailure("adding printer " + Quoted(name), [name] { DeletePrinterByName(name); });
        m_messages += "printer " + Quoted(name) + " added\n";
    }

    static std::set<std::wstring> RecordedFiles()
    {
        std::set<std::wstring> files;
        if (const auto record = ReadRegistryValue(kServiceKey, kFilesValue))
        {
            for (auto& file : TextsOf(*record))
            {
                files.insert(std::move(file));
            }
        }
        return files;
    }

    // Keeps the list of our files, and drops those of an earlier installation that this one no longer has.
    void RecordFiles()
    {
        for (const auto& file : RecordedFiles())
        {
            if (!m_files.contains(file))
            {
                RemoveFile(m_undo, file);
            }
        }
        SetRegistryValue(m_undo, kServiceKey, kFilesValue, StringListValue({m_files.begin(), m_files.end()}));
    }

    InstallPlan m_plan;
    ProductFolders m_folders;
    UndoLog m_undo;
    DriverEntry m_driver;
    std::set<std::wstring> m_files;
    std::string m_messages;
};

} // namespace

std::string Install(const InstallPlan& plan)
{
    return Installation(plan).Run();
}

} // namespace tsypr::printctl
