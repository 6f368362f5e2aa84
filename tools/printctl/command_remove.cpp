#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/product.h"
#include "tools/printctl/registry.h"
#include "tools/printctl/spooler.h"

#include <algorithm>

namespace tsypr::printctl
{

namespace
{

// Runs the parts of a removal. Each goes as far as it can; faults are reported and counted.
class Removal
{
public:
    void Run()
    {
        RemovePrinters();
        Attempt([this] { RemoveDriver(); });
        // The files stay as long as the spooler needs them.
        if (m_faults == 0)
        {
            RemoveFiles();
            Attempt([this] { RemoveRegistryValues(); });
        }
        if (m_faults != 0)
        {
            throw Failure(ExitCode::System, "not everything could be removed");
        }
        if (!m_found)
        {
            WriteOut("nothing was installed\n");
        }
    }

private:
    template <typename Step>
    void Attempt(Step step)
    {
        try
        {
            step();
        }
        catch (const Failure& failure)
        {
            WriteError(std::string("printctl: ") + failure.what() + "\n");
            ++m_faults;
        }
    }

    void Removed(const std::string& what)
    {
        WriteOut("removed " + what + "\n");
        m_found = true;
    }

    void RemovePrinters()
    {
        for (const auto& printer : ListPrinters(std::wstring(kDriverName)))
        {
            Attempt(
                [&]
                {
                    DeletePrinterByName(printer.name);
                    Removed("printer " + Quoted(printer.name));
                });
        }
    }

    void RemoveDriver()
    {
        if (FindDriver(kDriverName))
        {
            UnregisterDriver(kDriverName);
            Removed("driver " + Quoted(kDriverName));
        }
    }

    // Files that another driver in the spooler's folder uses as well stay.
    static bool UsedByDriver(const fs::path& file)
    {
        const auto drivers = ListDrivers();
        return std::any_of(drivers.begin(),
                           drivers.end(),
                           [&](const DriverEntry& driver)
                           {
                               const auto same = [&](const fs::path& other)
                               { return EqualNoCase(other.wstring(), file.wstring()); };
                               return same(driver.driverFile) || same(driver.dataFile) || same(driver.configFile);
                           });
    }

    void RemoveFiles()
    {
        const auto record = ReadRegistryValue(kServiceKey, kFilesValue);
        for (const auto& name : record ? TextsOf(*record) : std::vector<std::wstring>())
        {
            const fs::path file = name;
            if (IsFile(file) && !UsedByDriver(file))
            {
                Attempt(
                    [&]
                    {
                        UndoLog undo;
                        RemoveFile(undo, file);
                        undo.Commit();
                        Removed("file " + Shown(file));
                    });
            }
        }
        const ProductFolders folders = FindProductFolders();
        for (const auto& folder : {folders.languages,
                                   folders.printers,
                                   folders.product,
                                   folders.product.parent_path(),
                                   folders.data,
                                   folders.data.parent_path()})
        {
            // Fails, as it should, when there is still something in it.
            if (RemoveDirectoryW(folder.c_str()) != FALSE)
            {
                Removed("folder " + Shown(folder));
            }
        }
    }

    void RemoveRegistryValues()
    {
        constexpr std::pair<const wchar_t*, const wchar_t*> values[] = {
            {kLanguageKey, kLanguageValue}, {kServiceKey, kProfilesValue}, {kServiceKey, kFilesValue}};
        for (const auto& [key, name] : values)
        {
            if (DeleteRegistryValue(key, name))
            {
                Removed("registry value " + Quoted(std::wstring(key) + L"\\" + name));
            }
            DeleteEmptyKeys(key, kSoftwareKey);
        }
    }

    int m_faults = 0;
    bool m_found = false;
};

} // namespace

void AddRemoveCommand(const Command& program)
{
    const Command command =
        program.SubCommand("remove",
                           "Removes the driver's printers, the driver, its files and its registry values. "
                           "Logs and files that others put into our folders stay. Done when nothing is installed.");
    command.OnRun([] { Removal().Run(); });
}

} // namespace tsypr::printctl
