#include "tools/ppdimport/text.h"

#include <gtest/gtest.h>

namespace tsypr::ppdimport
{
namespace
{

TEST(ImporterText, CleansAndDecodes)
{
    const struct
    {
        std::string in;
        std::string out;
    } cases[] = {
        {"  a \t\r\n b  ", "a b"},
        {"Gr\xC3\xB6\xC3\x9F"
         "e",
         "Gr\xC3\xB6\xC3\x9F"
         "e"}, // UTF-8 stays
        {"Gr\xF6\xDF"
         "e",
         "Gr\xC3\xB6\xC3\x9F"
         "e"},                                  // Latin-1
        {"x\xC0\xAF", "x\xC3\x80\xC2\xAF"},     // overlong form is no UTF-8
        {"x\xED\xA0\x80", "x\xC3\xAD\xC2\xA0"}, // surrogate: Latin-1, ends in a control character
        {"cut \xE2\x82", "cut \xC3\xA2"},       // incomplete, likewise
        {"\x01\x7F\xC2\x85", ""},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(CleanText(c.in), c.out) << c.in;
    }
}

TEST(ImporterText, CutsAtWholeCharacters)
{
    const std::string euro = "\xE2\x82\xAC";      // one UTF-16 unit
    const std::string smile = "\xF0\x9F\x98\x80"; // two
    EXPECT_EQ(TextLength("a" + euro + smile), 4u);
    EXPECT_EQ(CutText("ab" + euro, 2), "ab");
    EXPECT_EQ(CutText("ab" + euro, 3), "ab" + euro);
    EXPECT_EQ(CutText("ab" + smile, 3), "ab"); // half of it would fit
    EXPECT_EQ(CutText("ab" + smile, 4), "ab" + smile);
    EXPECT_EQ(CutText("ab cd", 3), "ab"); // no blank left at the end
    EXPECT_EQ(CutText("", 3), "");
}

TEST(ImporterText, ComparesAndSplits)
{
    EXPECT_EQ(Normalise("Plain (60 - 81 g/m2)"), "plain");
    EXPECT_EQ(Normalise("Coated Paper - Gloss Print"), "coatedpaperglossprint");
    EXPECT_EQ(Normalise("a) b"), "ab"); // a stray bracket hides nothing
    EXPECT_TRUE(HasWord("none off", "off"));
    EXPECT_FALSE(HasWord("none off", "of"));
    EXPECT_FALSE(HasWord("none off", ""));
    EXPECT_EQ(Words("UpperLeft2/2 at left"), (std::set<std::string>{"upper", "left", "2", "at"}));
}

TEST(ImporterText, MakesXmlNames)
{
    EXPECT_EQ(VendorKeyword("Paper", "A4.FullBleed"), "ns0000:A4FullBleed");
    EXPECT_EQ(VendorKeyword("Paper", "12x18"), "ns0000:Paper12x18");
    EXPECT_EQ(VendorKeyword("Media", "extra heavy-paper"), "ns0000:ExtraHeavyPaper");
    EXPECT_EQ(VendorKeyword("Bin", "++"), "ns0000:Bin");
}

} // namespace
} // namespace tsypr::ppdimport
