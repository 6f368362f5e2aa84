#include "service/profile_loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/service/sample_profile.h"

namespace tsypr::service::test
{
namespace
{

std::string Named(const char* name)
{
    nlohmann::json document = SparseProfile();
    document["name"] = name;
    return document.dump();
}

TEST(ProfileLoader, TakesFilesInNameOrderAndKeepsTheFirstOfTwoNames)
{
    const ProfileDirectory directory;
    directory.Write("b.json", Named("Second"));
    directory.Write("c.JSON", Named("First"));
    directory.Write("a.json", "\xEF\xBB\xBF" + Named("First"));
    directory.Write("broken.json", "{}");
    directory.Write("notes.txt", "not a profile");
    directory.Write("large.json", std::string(1024 * 1024 + 1, ' '));
    std::filesystem::create_directory(directory.Path() / "folder.json");

    const ProfileSet set = LoadProfiles(directory.Path());
    ASSERT_EQ(set.printers.size(), 2u);
    EXPECT_EQ(set.printers[0].name, "First");
    EXPECT_EQ(set.Find(u"Second"), &set.printers[1]);
    EXPECT_EQ(set.Find(u"second"), nullptr);
    EXPECT_EQ(set.Find(u""), nullptr);

    std::vector<std::string> lines;
    for (const ProfileProblem& problem : set.problems)
    {
        lines.push_back(problem.file + "|" + problem.field + "|" + problem.reason);
    }
    EXPECT_THAT(lines,
                testing::IsSupersetOf({"broken.json|name|is missing",
                                       "broken.json|papers|is missing",
                                       "c.JSON|name|is taken by an earlier file",
                                       "folder.json||cannot be read",
                                       "large.json||is larger than 1 MB"}));
}

TEST(ProfileLoader, ReportsADirectoryThatIsNotThere)
{
    const ProfileDirectory directory;
    const ProfileSet set = LoadProfiles(directory.Path() / "missing");
    EXPECT_TRUE(set.printers.empty());
    ASSERT_EQ(set.problems.size(), 1u);
    EXPECT_THAT(set.problems[0].file, testing::HasSubstr("missing"));
    EXPECT_EQ(set.problems[0].reason, "the directory cannot be read");
}

TEST(ProfileLoader, AcceptsTheExamplePrinters)
{
    const ProfileSet set = LoadProfiles(TESSARY_EXAMPLE_PRINTERS);
    for (const ProfileProblem& problem : set.problems)
    {
        ADD_FAILURE() << problem.file << ": " << problem.field << ": " << problem.reason;
    }
    const Profile* laser = set.Find(u"Office Laser");
    const Profile* studio = set.Find(u"Studio Color");
    ASSERT_TRUE(laser != nullptr && studio != nullptr);
    EXPECT_TRUE(laser->IsLocked(LockedSetting::Duplex));
    EXPECT_TRUE(studio->Has(Feature::Nup) && studio->Has(Feature::Finishing) && studio->customPaper);
}

} // namespace
} // namespace tsypr::service::test
