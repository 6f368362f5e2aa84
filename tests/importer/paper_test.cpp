#include "tests/importer/test_support.h"
#include "tools/ppdimport/ppd_reader.h"

#include <gmock/gmock.h>

namespace tsypr::ppdimport
{
namespace
{

// Each case is the second paper of its own printer, behind A4.
TEST(ImporterPapers, FindsStandardPapers)
{
    const struct
    {
        const char* name;
        double width; // points
        double length;
        const char* expected; // id, keyword, tenths of a millimetre
    } cases[] = {
        {"Letter", 612, 792, "1 psk:NorthAmericaLetter 2159x2794"},
        {"B5", 516, 729, "13 psk:JISB5 1820x2570"},
        {"Ledger", 1224, 792, "4 ns0000:Ledger 4318x2794"},
        {"Ledger", 792, 1224, "3 psk:NorthAmericaTabloid 2794x4318"}, // some makers turn it
        // Known by size alone, within a millimetre.
        {"Odd", 614.8, 792, "1 psk:NorthAmericaLetter 2159x2794"},
        {"Odd", 615, 792, "257 ns0000:Odd 2170x2794"},
        // The print schema knows it, Windows does not.
        {"SRA3", 907, 1276, "257 psk:ISOSRA3 3200x4500"},
        // A known name with another size is another paper.
        {"B5", 499, 709, "257 ns0000:B5 1760x2501"},
        // Forms of A4.
        {"A4.FullBleed", 595, 841, "257 ns0000:A4FullBleed 2100x2970"},
        {"A4.Transverse", 595, 842, "55 ns0000:A4Transverse 2100x2970"},
        {"A4-R", 842, 595, "77 psk:ISOA4Rotated 2970x2100"},
        {"A4Small", 595, 842, "10 ns0000:A4Small 2100x2970"},
        // The name of the first paper is taken.
        {"MyA4", 595, 842, "257 ns0000:MyA4 2100x2970"},
    };
    for (const auto& c : cases)
    {
        PpdModel model = MakeModel();
        AddPageSize(model, c.name, c.width, c.length);
        const PrinterProfile profile = Import(model);
        ASSERT_EQ(profile.papers.size(), 2u) << c.name;
        const auto& [id, name, keyword, width, height] = profile.papers[1];
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        EXPECT_EQ(std::to_string(id) + " " + keyword + " " + size, c.expected);
    }
}

TEST(ImporterPapers, NamedPaperGoesBeforeOneOfItsSize)
{
    PpdModel model = MakeModel();
    AddPageSize(model, "Plain11", 612, 792); // comes first, but "Letter" has the name
    AddPageSize(model, "Letter", 612, 792);
    AddPageSize(model, "plain.11", 300, 300); // the same XML name
    EXPECT_EQ(Entries(Import(model).papers),
              "9 psk:ISOA4, 257 ns0000:Plain11, 1 psk:NorthAmericaLetter, 258 ns0000:Plain11_2, ");
}

TEST(ImporterPapers, LeavesOutUnusableSizes)
{
    PpdModel model = MakeModel();
    AddPageSize(model, "Flat", 0, 792);
    AddPageSize(model, "Roll", 612, 100000);
    model.options.front().choices.push_back({"Nameless", "No dimension"});
    EXPECT_EQ(Import(model).papers.size(), 1u);
    EXPECT_THAT(ReportOf(model), testing::ContainsRegex("PageSize=Flat(.|\n)*PageSize=Roll(.|\n)*PageSize=Nameless"));
    model.sizes.clear();
    EXPECT_THROW(Import(model), InputError);
    model.options.clear();
    EXPECT_THROW(Import(model), InputError);
}

TEST(ImporterPapers, UserDefinedSizes)
{
    PpdModel model = MakeModel();
    ExpectProfile(Import(model), R"({"customPaper": null})");
    model.customSize = PpdCustomSize{{255, 419}, {908, 100000}};
    const PrinterProfile profile = Import(model);
    ExpectProfile(profile, R"({"customPaper":
        {"minWidth": 900, "minHeight": 1478, "maxWidth": 3203, "maxHeight": 32767}})");
    EXPECT_TRUE(profile.papers.back().id == 256 && profile.papers.back().height >= 1478);
    model.customSize = PpdCustomSize{{908, 100}, {255, 200}};
    ExpectProfile(Import(model), R"({"customPaper": null})");
}

} // namespace
} // namespace tsypr::ppdimport
