#include "lib/user/app_data.h"

#include "lib/file/operations.h"
#include "tests/lib/user/user_test.h"

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
}

TEST(AppData, UserMayHaveNone)
{
    std::string path = "old";
    SetVariable(kUserVariable, "");
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
    SetVariable("TessaryTests", Utf8(scratch / "common"));
    SetVariable("ProgramData", Utf8(scratch / "common"));
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
    const MachineSetting root(L"C:\\", REG_SZ);
    std::string path;
    EXPECT_TRUE(W32Util_GetTessaryCommonAppDataFilePath("logs", path));
    EXPECT_EQ(path, "C:\\logs");
    EXPECT_TRUE(RemoveDirectoryTree(Utf8(deep.parent_path()).c_str()).Ok());
}
#endif

} // namespace
} // namespace tsypr::test
