#include "tests/printctl/printctl_fixture.h"

#include <windows.h>
#include <winspool.h>

#include <fstream>

namespace tsypr::printctl_tests
{

namespace
{

constexpr DWORD kPatience = 60000;

// A new file that a child process inherits.
HANDLE OutputFile(const fs::path& file)
{
    SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
    return CreateFileW(file.c_str(), GENERIC_WRITE, 7, &inherit, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::string Narrow(const std::wstring& text)
{
    const std::u8string utf8 = fs::path(text).u8string();
    return {utf8.begin(), utf8.end()};
}

void AddFiles(SystemState& state, const fs::path& place)
{
    std::error_code error;
    if (fs::is_regular_file(place, error))
    {
        state["file " + Narrow(place.wstring())] = ReadText(place);
    }
    for (fs::recursive_directory_iterator entry(place, error), end; !error && entry != end; entry.increment(error))
    {
        const bool isFile = entry->is_regular_file(error);
        state[(isFile ? "file " : "folder ") + Narrow(entry->path().wstring())] = isFile ? ReadText(entry->path()) : "";
    }
}

void AddKeys(SystemState& state, const std::wstring& path)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    {
        return;
    }
    state["key " + Narrow(path)] = "";
    wchar_t name[256];
    DWORD length = 256;
    BYTE data[8192];
    DWORD size = sizeof(data);
    for (DWORD i = 0; RegEnumValueW(key, i, name, &length, nullptr, nullptr, data, &size) == ERROR_SUCCESS; ++i)
    {
        state["value " + Narrow(path + L"\\" + name)] = std::string(reinterpret_cast<char*>(data), size);
        length = 256;
        size = sizeof(data);
    }
    length = 256;
    for (DWORD i = 0; RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS; ++i)
    {
        AddKeys(state, path + L"\\" + name);
        length = 256;
    }
    RegCloseKey(key);
}

void AddSpooler(SystemState& state)
{
    std::vector<BYTE> buffer(256 * 1024);
    DWORD needed = 0;
    DWORD count = 0;
    EXPECT_TRUE(EnumPrintersW(
        PRINTER_ENUM_LOCAL, nullptr, 2, buffer.data(), static_cast<DWORD>(buffer.size()), &needed, &count));
    for (DWORD i = 0; i < count; ++i)
    {
        const auto& info = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data())[i];
        state["printer " + Narrow(info.pPrinterName)] = Narrow(info.pDriverName) + " " + Narrow(info.pPortName);
    }
    wchar_t environment[] = L"Windows x64";
    EXPECT_TRUE(EnumPrinterDriversW(
        nullptr, environment, 3, buffer.data(), static_cast<DWORD>(buffer.size()), &needed, &count));
    for (DWORD i = 0; i < count; ++i)
    {
        const auto& info = reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data())[i];
        state["driver " + Narrow(info.pName)] =
            Narrow(info.pDriverPath) + " " + Narrow(info.pDataFile) + " " + Narrow(info.pConfigFile);
    }
}

} // namespace

fs::path ProgramFolder()
{
    wchar_t text[MAX_PATH];
    GetModuleFileNameW(nullptr, text, MAX_PATH);
    return fs::path(text).parent_path();
}

Outcome RunPrintctl(const std::vector<std::wstring>& arguments)
{
    std::wstring line = L"\"" + (ProgramFolder() / L"printctl.exe").wstring() + L"\"";
    for (const auto& argument : arguments)
    {
        line += L" \"" + argument + L"\"";
    }
    const fs::path out = fs::temp_directory_path() / L"printctl-test.out";
    const fs::path error = fs::temp_directory_path() / L"printctl-test.err";
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = OutputFile(out);
    start.hStdError = OutputFile(error);
    PROCESS_INFORMATION process{};
    const BOOL started =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
    EXPECT_TRUE(started) << "printctl.exe is not beside the test program";
    DWORD code = ~DWORD{0};
    if (WaitForSingleObject(process.hProcess, kPatience) != WAIT_OBJECT_0)
    {
        ADD_FAILURE() << "printctl.exe does not come to an end";
        TerminateProcess(process.hProcess, 1);
        WaitForSingleObject(process.hProcess, kPatience);
    }
    GetExitCodeProcess(process.hProcess, &code);
    for (const HANDLE handle : {process.hThread, process.hProcess, start.hStdOutput, start.hStdError})
    {
        CloseHandle(handle);
    }
    Outcome outcome = {static_cast<int>(code), ReadText(out), ReadText(error)};
    fs::remove(out);
    fs::remove(error);
    return outcome;
}

Json QueryJson(std::vector<std::wstring> arguments)
{
    arguments.push_back(L"--json");
    const Outcome outcome = RunPrintctl(arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.error;
    Json document = Json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(document.is_discarded()) << outcome.out;
    return document;
}

void InstallProduct(const std::vector<std::wstring>& options)
{
    const std::wstring repair = ProgramFolder() / L"tsydomrepair.dll";
    const auto size = static_cast<DWORD>((repair.size() + 1) * sizeof(wchar_t));
    const wchar_t* documents = L"Software\\Classes\\CLSID\\{88D96A05-F192-11D4-A65F-0040963251E5}\\InprocServer32";
    ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, documents, nullptr, REG_SZ, repair.c_str(), size), ERROR_SUCCESS);
    RunPrintctl({L"remove"});
    std::vector<std::wstring> arguments{L"install"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const Outcome outcome = RunPrintctl(arguments);
    ASSERT_EQ(outcome.code, 0) << outcome.error;
}

SystemState ReadSystemState()
{
    SystemState state;
    AddSpooler(state);
    AddKeys(state, L"Software\\Zelmora");
    wchar_t system[MAX_PATH];
    GetSystemDirectoryW(system, MAX_PATH);
    AddFiles(state, fs::path(system) / L"spool");
    AddFiles(state, fs::path(system) / L"tsyprserverapi.dll");
    AddFiles(state, fs::path(_wgetenv(L"ProgramFiles")) / L"Zelmora");
    AddFiles(state, fs::path(_wgetenv(L"ProgramData")) / L"Zelmora");
    return state;
}

std::string ProfileText(const std::string& name)
{
    Json profile = Json::parse(R"({"schemaVersion": 1, "manufacturer": "", "model": "", "private": {},
        "deviceMode": {"paper": 9, "source": 7},
        "papers": [{"id": 9, "name": "A4", "keyword": "psk:ISOA4", "width": 2100, "height": 2970}],
        "bins": [{"id": 7, "name": "Automatically Select", "keyword": "psk:AutoSelect"}],
        "mediaTypes": [{"id": 1, "name": "Plain", "keyword": "psk:Plain"}], "resolutions": [{"x": 600, "y": 600}],
        "duplex": ["simplex"], "color": false, "landscapeRotation": 90, "maxCopies": 99, "collation": true,
        "pagesPerMinute": 10})");
    profile["name"] = name;
    return profile.dump();
}

std::string ReadText(const fs::path& file)
{
    std::error_code error;
    const auto size = fs::file_size(file, error);
    std::string text(error ? 0 : static_cast<size_t>(size), '\0');
    std::ifstream(file, std::ios::binary).read(text.data(), static_cast<std::streamsize>(text.size()));
    return text;
}

void AppendText(const fs::path& file, const std::string& text)
{
    std::ofstream(file, std::ios::binary | std::ios::app) << text;
}

void WriteText(const fs::path& file, const std::string& text)
{
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
}

DriverFolder::DriverFolder() : m_path(fs::temp_directory_path() / L"printctl test")
{
    fs::remove_all(m_path);
    fs::create_directories(m_path / L"printers");
    PlaceLibrary(L"printctl_test_driver.dll", L"tsyprui.dll");
    PlaceLibrary(L"printctl_test_driver.dll", L"tsyprserverapi.dll");
    PlaceLibrary(L"printctl_test_driver.dll", L"tsyprUI_en_us_409.dll");
    PlaceProfile(L"alpha.json", "Alpha");
    PlaceProfile(L"b.json", "B\u00fcro");
}

DriverFolder::~DriverFolder()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

void DriverFolder::PlaceLibrary(const wchar_t* library, const std::wstring& name) const
{
    fs::copy_file(ProgramFolder() / library, m_path / name, fs::copy_options::overwrite_existing);
}

void DriverFolder::PlaceProfile(const std::wstring& file, const std::string& name) const
{
    WriteText(m_path / L"printers" / file, ProfileText(name));
}

Outcome DriverFolder::Install(const std::vector<std::wstring>& more) const
{
    std::vector<std::wstring> arguments{L"install", L"--driver-dir", m_path.wstring()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunPrintctl(arguments);
}

} // namespace tsypr::printctl_tests
