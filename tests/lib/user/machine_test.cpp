#include "lib/file/operations.h"
#include "lib/user/app_data.h"
#include "lib/user/system_info.h"
#include "tests/lib/user/user_test.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>
#include <thread>

namespace tsypr::test
{
namespace
{

#ifdef _WIN32
constexpr char kSeparator[] = "\\";
#else
constexpr char kSeparator[] = "/";
#endif

TEST(AppData, JoinsWhatIsInTheDirectory)
{
    const ScratchFolder scratch("app-data");
    const std::filesystem::path folder = scratch / u8"pr\u00FCf \u65E5";
    std::filesystem::create_directories(folder);
    const MachineSetting setting(folder);
    const std::string base = Utf8(folder);
    std::string path = "old";
    EXPECT_TRUE(W32Util_GetTessaryCommonAppDataFilePath(nullptr, path));
    EXPECT_EQ(path, base);
    EXPECT_TRUE(W32Util_GetTessaryCommonAppDataFilePath("", path));
    EXPECT_EQ(path, base);
    for (const std::string& relative : {std::string("logs\\"), std::string("a"), std::string(100'000, 'x')})
    {
        EXPECT_TRUE(W32Util_GetTessaryCommonAppDataFilePath(relative.c_str(), path));
        EXPECT_EQ(path, base + kSeparator + relative);
    }
    std::filesystem::remove(folder);
    EXPECT_FALSE(W32Util_GetTessaryCommonAppDataFilePath(nullptr, path));
    EXPECT_EQ(path, "");
    std::ofstream(folder) << "a file";
    EXPECT_FALSE(W32Util_GetTessaryCommonAppDataFilePath("logs", path));
    const ScopedVariable user(kUserVariable, ""); // who may have none
    path = "old";
    EXPECT_FALSE(GetUserAppDataDirectory(path));
    EXPECT_EQ(path, "");
}

#ifdef _WIN32
TEST(AppData, TakesTheValueAsAdministratorsWriteIt)
{
    const ScratchFolder scratch("app-data-values");
    const std::filesystem::path deep = scratch.path / std::wstring(200, L'd') / std::wstring(200, L'e');
    std::filesystem::create_directories(L"\\\\?\\" + deep.wstring());
    std::filesystem::create_directories(scratch / "common" / "Zelmora" / "Tessary");
    const ScopedVariable ours("TessaryTests", scratch / "common");
    const ScopedVariable all("ProgramData", scratch / "common");
    const std::string common = Utf8(scratch / "common");
    struct Case
    {
        std::wstring value;
        DWORD type;
        std::string directory; // empty: there is none
    };
    const Case cases[] = {{(scratch / "common").wstring() + L"\\\\", REG_SZ, common},
                          {L"%TessaryTests%\\Zelmora", REG_EXPAND_SZ, common + "\\Zelmora"},
                          {L"%TessaryTests%", REG_SZ, ""}, // a directory of that very name
                          {deep.wstring(), REG_SZ, Utf8(deep)},
                          {L"C:\\", REG_SZ, "C:\\"},
                          {L"", REG_SZ, common + "\\Zelmora\\Tessary"},
                          {L"C:\\", REG_BINARY, common + "\\Zelmora\\Tessary"},
                          {std::wstring(40'000, L'x'), REG_SZ, common + "\\Zelmora\\Tessary"}};
    for (const Case& c : cases)
    {
        const MachineSetting setting(c.value, c.type);
        std::string path;
        EXPECT_EQ(W32Util_GetTessaryCommonAppDataFilePath(nullptr, path), !c.directory.empty());
        EXPECT_EQ(path, c.directory);
    }
    const MachineSetting root(L"C:\\");
    std::string path;
    EXPECT_TRUE(W32Util_GetTessaryCommonAppDataFilePath("logs", path));
    EXPECT_EQ(path, "C:\\logs");
    SetText(kProductKey, L"AppDataPath", nullptr);
    EXPECT_TRUE(W32Util_GetTessaryCommonAppDataFilePath(nullptr, path));
    EXPECT_EQ(path, common + "\\Zelmora\\Tessary");
    std::filesystem::remove_all(scratch / "common");
    EXPECT_FALSE(W32Util_GetTessaryCommonAppDataFilePath(nullptr, path));
    EXPECT_TRUE(RemoveDirectoryTree(Utf8(deep.parent_path()).c_str()).Ok());
}
#endif

std::vector<std::string> LinesOf(const SystemInfo& info)
{
    std::vector<std::string> lines;
    WriteSystemInfo(
        info,
        [](void* context, const char* line) { static_cast<std::vector<std::string>*>(context)->emplace_back(line); },
        &lines);
    return lines;
}

TEST(SystemInfo, IsKnownHere)
{
    const SystemInfo info = ReadSystemInfo();
    for (const std::string& text : {info.hostName, info.userName, info.osName, info.osVersion, info.osBuild})
    {
        EXPECT_THAT(text, testing::AllOf(testing::Ne(kUnknownText), testing::Ne("")));
    }
    EXPECT_EQ(info.architecture, "x86-64");
    EXPECT_GE(info.processorCount, std::max(1U, std::thread::hardware_concurrency())); // which may count ours only
    EXPECT_GT(info.memoryBytes, 64U << 20);
    const std::time_t now = std::time(nullptr);
    std::tm utc = *std::gmtime(&now); // NOLINT(concurrency-mt-unsafe)
    utc.tm_isdst = -1;
    // The difference that local time makes of the same fields; daylight saving time may begin in between.
    EXPECT_NEAR(info.utcOffsetMinutes, static_cast<double>(now - std::mktime(&utc)) / 60, 60);
    EXPECT_EQ(LinesOf(info).size(), 4U);
}

TEST(SystemInfo, IsWrittenAsLines)
{
    EXPECT_THAT(LinesOf(SystemInfo()),
                testing::ElementsAre("host unknown, user unknown",
                                     "system unknown, version unknown, build unknown",
                                     "processor unknown, 0 logical, memory 0 MiB",
                                     "time zone unknown, UTC+00:00"));
    SystemInfo info;
    info.userName = std::string(2000, 'x');
    info.memoryBytes = 16ULL << 30;
    info.utcOffsetMinutes = -210;
    const std::vector<std::string> lines = LinesOf(info);
    EXPECT_TRUE(lines[0].starts_with("host unknown, user xxx"));
    EXPECT_EQ(lines[2], "processor unknown, 0 logical, memory 16384 MiB");
    EXPECT_EQ(lines[3], "time zone unknown, UTC-03:30");
    WriteSystemInfo(info, nullptr, nullptr);
}

} // namespace
} // namespace tsypr::test
