#include "tests/importer/test_support.h"
#include "tools/ppdimport/atomic_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cups/file.h>

#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tsypr::ppdimport
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

struct Outcome
{
    int exitCode = -1;
    std::string output;
    std::string errors;
};

// Runs the program without a shell; `arguments` follow the program's name.
Outcome RunImporter(std::vector<std::string> arguments)
{
    const ScratchFolder folder;
    arguments.insert(arguments.begin(), TESSARY_PPDIMPORT);
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments)
    {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    constexpr int kFlags = O_WRONLY | O_CREAT;
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, folder.Path("out").c_str(), kFlags, 0600);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, folder.Path("err").c_str(), kFlags, 0600);
    pid_t process = 0;
    const int failed = posix_spawn(&process, argv.front(), &files, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    int status = 0;
    if (failed != 0 || waitpid(process, &status, 0) != process)
    {
        return {};
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadAll(folder.Path("out")), ReadAll(folder.Path("err"))};
}

TEST(ImporterProgram, WritesTheSameBytesEachTime)
{
    const ScratchFolder folder;
    const std::string ppd = folder.Write("small.ppd", SmallPpd());
    const Outcome first = RunImporter({ppd, folder.Path("a.json")});
    EXPECT_EQ(first.exitCode, 0) << first.errors;
    const Outcome second = RunImporter({ppd, folder.Path("b.json"), "--report", folder.Path("r.txt")});
    EXPECT_EQ(second.exitCode, 0) << second.errors;
    EXPECT_EQ(second.output, "");
    EXPECT_EQ(ReadAll(folder.Path("r.txt")), first.output);
    EXPECT_THAT(first.output, HasSubstr("Import of small.ppd (Maker Model 1 PS)"));
    const std::string profile = ReadAll(folder.Path("a.json"));
    EXPECT_EQ(profile, ReadAll(folder.Path("b.json")));
    EXPECT_EQ(nlohmann::json::parse(profile).at("name"), "Maker Model 1");
    EXPECT_THAT(folder.Entries(), ElementsAre("a.json", "b.json", "r.txt", "small.ppd"));
}

TEST(ImporterProgram, TakesItsOptions)
{
    const ScratchFolder folder;
    const std::string ppd = folder.Write("small.ppd", SmallPpd());
    const Outcome outcome = RunImporter({"--name",
                                         "My Printer",
                                         "--lock",
                                         "color",
                                         "--lock",
                                         "compressionLevel",
                                         "--with-nup",
                                         ppd,
                                         folder.Path("a.json")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    const nlohmann::json profile = nlohmann::json::parse(ReadAll(folder.Path("a.json")));
    EXPECT_EQ(profile.at("name"), "My Printer");
    EXPECT_EQ(profile.at("private").at("locked").dump(), R"(["color","compressionLevel"])");
    EXPECT_TRUE(profile.contains("nup"));
}

TEST(ImporterProgram, ReadsCompressedFiles)
{
    const ScratchFolder folder;
    const std::string ppd = folder.Path("small.ppd.gz");
    cups_file_t* file = cupsFileOpen(ppd.c_str(), "w9");
    ASSERT_NE(file, nullptr);
    const bool written = cupsFilePuts(file, SmallPpd().c_str()) > 0;
    ASSERT_TRUE(cupsFileClose(file) == 0 && written);
    ASSERT_EQ(ReadAll(ppd).substr(0, 2), "\x1F\x8B");
    const Outcome outcome = RunImporter({ppd, folder.Path("a.json")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(nlohmann::json::parse(ReadAll(folder.Path("a.json"))).at("papers").size(), 2u);
}

TEST(ImporterProgram, TellsErrorsByExitCode)
{
    const ScratchFolder folder;
    const std::string ppd = folder.Write("small.ppd", SmallPpd());
    const std::string bad = folder.Write("bad.ppd", "no PPD file\n");
    const std::string out = folder.Path("a.json");
    const struct
    {
        std::vector<std::string> arguments;
        int exitCode;
        const char* message;
    } cases[] = {
        {{"--help"}, 0, ""},
        {{}, 1, "PPD"},
        {{ppd}, 1, "OUTPUT"},
        {{"--lock", "paper", ppd, out}, 1, "--lock"},
        {{"--name", "", ppd, out}, 1, "--name"},
        {{"--name", "a,b", ppd, out}, 1, "--name"},
        {{folder.Path("missing.ppd"), out}, 2, "missing.ppd"},
        {{bad, out}, 2, "bad.ppd:1:"},
        {{ppd, folder.Path("no/such/a.json")}, 3, "no/such/a.json"},
        {{"--report", folder.Path("no/such/r.txt"), ppd, out}, 3, "no/such/r.txt"},
    };
    for (const auto& c : cases)
    {
        const Outcome outcome = RunImporter(c.arguments);
        EXPECT_EQ(outcome.exitCode, c.exitCode) << testing::PrintToString(c.arguments) << outcome.errors;
        EXPECT_THAT(outcome.errors, HasSubstr(c.message)) << testing::PrintToString(c.arguments);
    }
    EXPECT_THAT(RunImporter({"--help"}).output, HasSubstr("Exit codes:"));
}

TEST(ImporterOutput, FailureLeavesNothingBehind)
{
    const ScratchFolder folder;
    std::filesystem::create_directory(folder.Path("taken"));
    EXPECT_THROW(WriteFileAtomically(folder.Path("taken"), "text"), OutputError);
    EXPECT_THAT(folder.Entries(), ElementsAre("taken"));
    WriteFileAtomically(folder.Write("file", "a longer old text"), "new");
    EXPECT_EQ(ReadAll(folder.Path("file")), "new");
}

} // namespace
} // namespace tsypr::ppdimport
