#include "bench/surroundings.h"

#include <stdexcept>

namespace tsypr::bench
{
namespace
{

namespace fs = std::filesystem;

fs::path ProgramFolder()
{
    std::wstring file(32768, L'\0');
    file.resize(GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size())));
    return fs::path(file).parent_path();
}

// Only these two: how many more there are must not change the service's speed.
void CopyPrinters(const fs::path& from, const fs::path& to)
{
    fs::create_directory(to);
    for (const wchar_t* file : {L"office-laser.json", L"studio-color.json"})
    {
        fs::copy_file(from / file, to / file);
    }
}

} // namespace

Surroundings::Surroundings()
{
    const fs::path program = ProgramFolder();
    const fs::path printers = Folder() / L"printers";
    CopyPrinters(program / L"printers", printers);
    constexpr wchar_t kDriverKey[] = L"Software\\Zelmora\\Tessary\\PrintRedir";
    m_values.emplace_back(L"Software\\Zelmora\\Tessary", L"AppDataPath", Folder().wstring());
    m_values.emplace_back(kDriverKey, L"LogLevel", L"info");
    m_values.emplace_back(L"Software\\Zelmora\\Tessary\\PrintRedir\\ui", L"LogFile", std::nullopt);
    m_values.emplace_back(
        L"Software\\Zelmora\\Tessary\\PrintRedir\\plugins", L"tsyprui_source", program.wstring() + L'\\');
    m_values.emplace_back(L"Software\\Zelmora\\Tessary\\PrintRedir\\service", L"PrinterProfiles", printers.wstring());
}

Surroundings::~Surroundings()
{
    while (!m_values.empty())
    {
        m_values.pop_back(); // last set, first put back: so that keys that had to be made are empty again
    }
}

void EmptyFolder(const fs::path& folder)
{
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error))
    {
        fs::remove(entry.path(), error);
    }
}

} // namespace tsypr::bench
