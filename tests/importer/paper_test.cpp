#include "tests/importer/test_support.h"
#include "tools/ppdimport/ppd_reader.h"

#include <gtest/gtest.h>

namespace tsypr::ppdimport
{
namespace
{

struct PaperCase
{
    const char* name;
    double width; // points
    double length;
    int id;
    const char* keyword;
    int tenthsWidth;
    int tenthsHeight;
};

// Each case is the second paper of its own printer, behind A4.
TEST(ImporterPapers, FindsStandardPapers)
{
    const PaperCase cases[] = {
        {"Letter", 612, 792, 1, "psk:NorthAmericaLetter", 2159, 2794},
        {"Legal", 612, 1008, 5, "psk:NorthAmericaLegal", 2159, 3556},
        {"A3", 842, 1191, 8, "psk:ISOA3", 2970, 4200},
        {"B5", 516, 729, 13, "psk:JISB5", 1820, 2570},
        {"Env10", 297, 684, 20, "psk:NorthAmericaNumber10Envelope", 1048, 2413},
        {"DLEnv", 311, 623, 27, "psk:ISODLEnvelope", 1100, 2200},
        {"FanFoldGermanLegal", 612, 936, 41, "psk:NorthAmericaGermanLegalFanfold", 2159, 3302},
        {"Ledger", 1224, 792, 4, "ns0000:Ledger", 4318, 2794},
        {"Ledger", 792, 1224, 3, "psk:NorthAmericaTabloid", 2794, 4318}, // some makers turn it
        // Known by size alone, within a millimetre.
        {"HalfSheet", 396, 612, 6, "psk:NorthAmericaStatement", 1397, 2159},
        {"Odd", 614.8, 792, 1, "psk:NorthAmericaLetter", 2159, 2794},
        {"Odd", 615, 792, 257, "ns0000:Odd", 2170, 2794},
        // The print schema knows it, Windows does not.
        {"SRA3", 907, 1276, 257, "psk:ISOSRA3", 3200, 4500},
        // A known name with another size is another paper.
        {"B5", 499, 709, 257, "ns0000:B5", 1760, 2501},
        {"Folio", 600, 950, 257, "ns0000:Folio", 2117, 3351},
        // Forms of A4.
        {"A4.FullBleed", 595, 841, 257, "ns0000:A4FullBleed", 2100, 2970},
        {"A4_borderless", 595, 842, 257, "ns0000:A4Borderless", 2100, 2970},
        {"A4.Transverse", 595, 842, 55, "ns0000:A4Transverse", 2100, 2970},
        {"A4Rotated", 842, 595, 77, "psk:ISOA4Rotated", 2970, 2100},
        {"A4-R", 842, 595, 77, "psk:ISOA4Rotated", 2970, 2100},
        {"A4Small", 595, 842, 10, "ns0000:A4Small", 2100, 2970},
        // The name of the first paper is taken.
        {"MyA4", 595, 842, 257, "ns0000:MyA4", 2100, 2970},
    };
    for (const PaperCase& c : cases)
    {
        SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.width));
        PpdModel model = MakeModel();
        AddPageSize(model, c.name, c.width, c.length);
        const PrinterProfile profile = Import(model);
        ASSERT_EQ(profile.papers.size(), 2u);
        EXPECT_EQ(profile.papers[0].id, 9);
        EXPECT_EQ(profile.papers[1].id, c.id);
        EXPECT_EQ(profile.papers[1].keyword, c.keyword);
        EXPECT_EQ(profile.papers[1].width, c.tenthsWidth);
        EXPECT_EQ(profile.papers[1].height, c.tenthsHeight);
    }
}

TEST(ImporterPapers, NamedPaperGoesBeforeOneOfItsSize)
{
    PpdModel model = MakeModel();
    AddPageSize(model, "Plain11", 612, 792); // comes first, but "Letter" has the name
    AddPageSize(model, "Letter", 612, 792);
    AddPageSize(model, "plain.11", 300, 300); // the same XML name
    const PrinterProfile profile = Import(model);
    ASSERT_EQ(profile.papers.size(), 4u);
    EXPECT_EQ(profile.papers[1].id, 257);
    EXPECT_EQ(profile.papers[1].keyword, "ns0000:Plain11");
    EXPECT_EQ(profile.papers[2].id, 1);
    EXPECT_EQ(profile.papers[3].id, 258);
    EXPECT_EQ(profile.papers[3].keyword, "ns0000:Plain11_2");
}

TEST(ImporterPapers, LeavesOutUnusableSizes)
{
    PpdModel model = MakeModel();
    AddPageSize(model, "Flat", 0, 792);
    AddPageSize(model, "Roll", 612, 100000);
    model.options.front().choices.push_back({"Nameless", "No dimension"});
    EXPECT_EQ(Import(model).papers.size(), 1u);
    const std::string report = ImportReportOf(model);
    for (const char* choice : {"PageSize=Flat", "PageSize=Roll", "PageSize=Nameless (No dimension)"})
    {
        EXPECT_NE(report.find(choice), std::string::npos) << choice;
    }

    model.sizes.clear();
    EXPECT_THROW(Import(model), InputError);
    model.options.clear();
    EXPECT_THROW(Import(model), InputError);
}

TEST(ImporterPapers, UserDefinedSizes)
{
    PpdModel model = MakeModel();
    EXPECT_FALSE(Import(model).customPaper.has_value());
    model.customSize = PpdCustomSize{{255, 419}, {908, 100000}};
    const PrinterProfile profile = Import(model);
    ASSERT_TRUE(profile.customPaper.has_value());
    EXPECT_EQ(profile.customPaper->minWidth, 900);
    EXPECT_EQ(profile.customPaper->minHeight, 1478);
    EXPECT_EQ(profile.customPaper->maxWidth, 3203);
    EXPECT_EQ(profile.customPaper->maxHeight, 32767);
    EXPECT_EQ(profile.papers.back().id, 256);
    EXPECT_GE(profile.papers.back().height, 1478);
    model.customSize = PpdCustomSize{{908, 100}, {255, 200}};
    EXPECT_FALSE(Import(model).customPaper.has_value());
}

} // namespace
} // namespace tsypr::ppdimport
