#include "tools/printctl/dialog_language.h"

#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/product.h"
#include "tools/printctl/registry.h"
#include "tools/printctl/text.h"

#include <algorithm>
#include <map>
#include <optional>

namespace tsypr::printctl
{

namespace
{

constexpr wchar_t kProductKey[] = L"Software\\Zelmora\\Tessary";
constexpr std::wstring_view kFilePrefix = L"tsyprUI_";

// By tag. "de-de" for tsyprUI_de_de_407.dll.
using LanguageFiles = std::map<std::wstring, fs::path>;

std::optional<std::wstring> TagOf(const fs::path& file)
{
    const std::wstring name = file.stem().wstring();
    const size_t end = name.rfind(L'_');
    if (!EqualNoCase(name.substr(0, kFilePrefix.size()), kFilePrefix) || end < kFilePrefix.size() ||
        !EqualNoCase(file.extension().wstring(), L".dll"))
    {
        return std::nullopt;
    }
    std::wstring tag = name.substr(kFilePrefix.size(), end - kFilePrefix.size());
    std::replace(tag.begin(), tag.end(), L'_', L'-');
    return tag;
}

LanguageFiles InstalledLanguages()
{
    const auto value = ReadRegistryValue(kLanguageKey, kLanguageValue);
    const std::vector<std::wstring> folders = value ? TextsOf(*value) : std::vector<std::wstring>();
    LanguageFiles languages;
    std::error_code error;
    if (!folders.empty())
    {
        for (fs::directory_iterator entry(folders.front(), error), end; !error && entry != end; entry.increment(error))
        {
            if (const auto tag = TagOf(entry->path()))
            {
                languages.emplace(*tag, entry->path());
            }
        }
    }
    return languages;
}

fs::path FileOfTag(const LanguageFiles& languages, const std::string& tag)
{
    std::string known;
    for (const auto& [name, file] : languages)
    {
        if (EqualNoCase(name, Wide(tag)))
        {
            return file;
        }
        known += (known.empty() ? "" : ", ") + Utf8(name);
    }
    throw Failure(ExitCode::NotFound,
                  Quoted(Wide(tag)) + " is no installed language (installed: " + (known.empty() ? "none" : known) +
                      ")");
}

constexpr std::wstring_view kFolderPrefix = L"printctl-language-"; // then the process

void RemoveFolder(const fs::path& folder) noexcept
{
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

bool IsRunning(DWORD process) noexcept
{
    const HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, process);
    if (handle == nullptr)
    {
        return GetLastError() == ERROR_ACCESS_DENIED;
    }
    const bool isRunning = WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
    CloseHandle(handle);
    return isRunning;
}

// The spooler's functions may keep a driver loaded until the program ends, and then its language library as well. So
// each program takes away what earlier ones had to leave.
void RemoveOldFolders()
{
    std::error_code error;
    for (fs::directory_iterator entry(fs::temp_directory_path(), error), end; !error && entry != end;
         entry.increment(error))
    {
        const std::wstring name = entry->path().filename().wstring();
        if (name.starts_with(kFolderPrefix) &&
            !IsRunning(static_cast<DWORD>(wcstoul(name.c_str() + kFolderPrefix.size(), nullptr, 10))))
        {
            RemoveFolder(entry->path());
        }
    }
}

// A folder with the library under the name of each.
fs::path MakeFolder(const LanguageFiles& languages, const fs::path& file)
{
    fs::path folder =
        fs::temp_directory_path() / (std::wstring(kFolderPrefix) + std::to_wstring(GetCurrentProcessId()));
    RemoveOldFolders();
    RemoveFolder(folder); // of an earlier process with our number
    std::error_code ignored;
    fs::create_directories(folder, ignored);
    for (const auto& [name, other] : languages)
    {
        const fs::path copy = folder / other.filename();
        if (CopyFileW(file.c_str(), copy.c_str(), FALSE) == FALSE)
        {
            const DWORD error = GetLastError();
            RemoveFolder(folder);
            ThrowSystem("copying " + Shown(file) + " to " + Shown(copy), error);
        }
    }
    return folder;
}

struct KeyCloser
{
    void operator()(HKEY key) const noexcept
    {
        RegCloseKey(key);
    }
};
using KeyHandle = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

void Check(LSTATUS status, const char* what)
{
    if (status != ERROR_SUCCESS)
    {
        ThrowSystem(what, static_cast<DWORD>(status));
    }
}

// Stands for HKEY_LOCAL_MACHINE in this process as long as it lives: the product's own settings, but another folder of
// language libraries.
class MachineSettings
{
public:
    explicit MachineSettings(const fs::path& folder)
    {
        try
        {
            Fill(folder);
            Check(RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_root.get()), "RegOverridePredefKey");
        }
        catch (...)
        {
            RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
            throw;
        }
    }

    ~MachineSettings()
    {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
    }

    MachineSettings(const MachineSettings&) = delete;
    MachineSettings& operator=(const MachineSettings&) = delete;

private:
    static KeyHandle Create(HKEY parent, const wchar_t* path)
    {
        HKEY key = nullptr;
        Check(
            RegCreateKeyExW(parent, path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            "RegCreateKeyExW");
        return KeyHandle(key);
    }

    void Fill(const fs::path& folder)
    {
        m_root = Create(HKEY_CURRENT_USER, m_path.c_str());
        const KeyHandle product = Create(m_root.get(), kProductKey);
        HKEY installed = nullptr;
        Check(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kProductKey, 0, KEY_READ, &installed), "RegOpenKeyExW");
        const KeyHandle owner(installed);
        Check(RegCopyTreeW(installed, nullptr, product.get()), "RegCopyTreeW");
        const KeyHandle languages = Create(m_root.get(), kLanguageKey);
        const std::wstring text = folder.wstring() + L"\\";
        const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
        Check(RegSetValueExW(
                  languages.get(), kLanguageValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), size),
              "RegSetValueExW");
    }

    std::wstring m_path = L"Software\\Zelmora\\printctl-" + std::to_wstring(GetCurrentProcessId());
    KeyHandle m_root;
};

LibraryHandle LoadDriver(const fs::path& driver, const fs::path& folder)
{
    const MachineSettings settings(folder);
    return LoadLibraryWithExports(driver, {"DrvDocumentPropertySheets"});
}

bool IsOneLoaded(const LanguageFiles& languages, const fs::path& folder)
{
    return std::any_of(languages.begin(),
                       languages.end(),
                       [&](const auto& language)
                       { return GetModuleHandleW((folder / language.second.filename()).c_str()) != nullptr; });
}

} // namespace

DialogLanguage::DialogLanguage(const fs::path& driver, const std::string& tag)
{
    const LanguageFiles languages = InstalledLanguages();
    const fs::path file = FileOfTag(languages, tag);
    if (GetModuleHandleW(driver.c_str()) != nullptr)
    {
        throw Failure(ExitCode::System, "the driver has been loaded already, in the user's language");
    }
    m_folder = MakeFolder(languages, file);
    try
    {
        m_driver = LoadDriver(driver, m_folder);
        if (!IsOneLoaded(languages, m_folder))
        {
            throw Failure(ExitCode::System, "the driver " + Shown(driver) + " did not take the language " + tag);
        }
    }
    catch (...)
    {
        m_driver.reset();
        RemoveFolder(m_folder);
        throw;
    }
}

DialogLanguage::~DialogLanguage()
{
    m_driver.reset(); // and with it, if nobody else has loaded it, the library in the folder
    RemoveFolder(m_folder);
}

} // namespace tsypr::printctl
