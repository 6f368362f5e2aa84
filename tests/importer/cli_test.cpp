#include "tests/importer/test_support.h"
#include "tools/ppdimport/atomic_file.h"

#include <gmock/gmock.h>

#include <sys/wait.h>

namespace tsypr::ppdimport
{
namespace
{

using nlohmann::json;
using testing::HasSubstr;

// Runs in a folder that holds small.ppd.
class ImporterProgram : public testing::Test
{
protected:
    // Gives the exit code; the program's output goes to the files "out" and "err".
    int Run(const std::string& arguments) const
    {
        const std::string command =
            "cd '" + m_folder.path.string() + "' && '" TESSARY_PPDIMPORT "' " + arguments + " >out 2>err";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string Read(const std::string& file) const
    {
        return m_folder.Read(file);
    }

    const ScratchFolder m_folder;
    const std::string m_ppd = m_folder.Write("small.ppd", SmallPpd());
};

TEST_F(ImporterProgram, WritesTheSameBytesEachTimeAndTakesItsOptions)
{
    EXPECT_EQ(Run("small.ppd a.json"), 0) << Read("err");
    const std::string report = Read("out");
    EXPECT_THAT(report, HasSubstr("Import of small.ppd (Maker Model 1 PS)"));
    EXPECT_EQ(Run("small.ppd b.json --report r.txt"), 0) << Read("err");
    EXPECT_EQ(Read("out"), "");
    EXPECT_EQ(Read("r.txt"), report);
    EXPECT_EQ(Read("a.json"), Read("b.json"));
    EXPECT_EQ(json::parse(Read("a.json")).at("name"), "Maker Model 1");
    ASSERT_EQ(std::system(("gzip '" + m_ppd + "'").c_str()), 0);
    EXPECT_EQ(Run("small.ppd.gz c.json"), 0) << Read("err");
    EXPECT_EQ(Read("a.json"), Read("c.json"));
    EXPECT_EQ(Run("--name 'My Printer' --lock color --lock compressionLevel --with-nup small.ppd.gz a.json"), 0);
    const json profile = json::parse(Read("a.json"));
    EXPECT_TRUE(profile.at("name") == "My Printer" && profile.contains("nup"));
    EXPECT_EQ(profile.at("private").at("locked").dump(), R"(["color","compressionLevel"])");
}

TEST_F(ImporterProgram, TellsErrorsByExitCode)
{
    m_folder.Write("bad.ppd", "no PPD file\n");
    const struct
    {
        const char* arguments;
        int exitCode;
        const char* message;
    } cases[] = {
        {"--help", 0, ""},
        {"", 1, "PPD"},
        {"small.ppd", 1, "OUTPUT"},
        {"--lock paper small.ppd a.json", 1, "--lock"},
        {"--name a,b small.ppd a.json", 1, "--name"},
        {"missing.ppd a.json", 2, "missing.ppd"},
        {"bad.ppd a.json", 2, "bad.ppd:1:"},
        {"small.ppd no/such/a.json", 3, "no/such/a.json"},
        {"--report no/such/r.txt small.ppd a.json", 3, "no/such/r.txt"},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(Run(c.arguments), c.exitCode) << c.arguments << Read("err");
        EXPECT_THAT(Read("err"), HasSubstr(c.message)) << c.arguments;
    }
}

TEST(ImporterOutput, FailureLeavesNothingBehind)
{
    const ScratchFolder folder;
    std::filesystem::create_directory(folder / "taken");
    EXPECT_THROW(WriteFileAtomically(folder / "taken", "text"), OutputError);
    WriteFileAtomically(folder.Write("file", "a longer old text"), "new");
    EXPECT_EQ(folder.Read("file"), "new");
    const std::filesystem::directory_iterator entries(folder.path);
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 2);
}

} // namespace
} // namespace tsypr::ppdimport
