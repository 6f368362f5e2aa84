#include "tests/importer/test_support.h"
#include "tools/ppdimport/ppd_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace tsypr::ppdimport
{
namespace
{

PpdModel ReadText(const std::string& text)
{
    const ScratchFolder folder;
    return ReadPpd(folder.Write("small.ppd", text));
}

const PpdOption* Find(const PpdModel& model, const std::string& keyword)
{
    for (const PpdOption& option : model.options)
    {
        if (option.keyword == keyword)
        {
            return &option;
        }
    }
    return nullptr;
}

TEST(ImporterReader, ReadsSmallFile)
{
    const PpdModel model = ReadText(SmallPpd("*OpenGroup: InstallableOptions/Fitted\n"
                                             "*OpenUI *Tray2/Second tray: Boolean\n"
                                             "*DefaultTray2: False\n"
                                             "*Tray2 True/Yes: \"\"\n"
                                             "*Tray2 False/No: \"\"\n"
                                             "*CloseUI: *Tray2\n"
                                             "*CloseGroup: InstallableOptions\n"
                                             "*UIConstraints: *Tray2 False *PageSize Letter\n"));
    EXPECT_EQ(model.fileName, "small.ppd");
    EXPECT_EQ(model.manufacturer, "Maker");
    EXPECT_EQ(model.modelName, "Model 1");
    EXPECT_EQ(model.nickname, "Maker Model 1 PS");
    EXPECT_TRUE(model.colorDevice);
    EXPECT_EQ(model.throughput, 30);
    EXPECT_EQ(model.attributes.at("LandscapeOrientation"), "Minus90");
    EXPECT_FALSE(model.customSize.has_value());
    const PpdOption* sizes = Find(model, "PageSize");
    ASSERT_NE(sizes, nullptr);
    EXPECT_EQ(sizes->defaultChoice, "A4");
    ASSERT_EQ(sizes->choices.size(), 2u);
    EXPECT_EQ(sizes->choices[0].text, "US Letter");
    EXPECT_DOUBLE_EQ(model.sizes.at("A4").length, 842);
    const PpdOption* tray = Find(model, "Tray2");
    ASSERT_NE(tray, nullptr);
    EXPECT_TRUE(tray->installable);
    ASSERT_EQ(model.constraints.size(), 1u);
    EXPECT_EQ(model.constraints[0].secondOption, "PageSize");
}

TEST(ImporterReader, DecodesTexts)
{
    const char* option = "*OpenUI *MediaType/Sorte: PickOne\n"
                         "*DefaultMediaType: A\n"
                         "*MediaType A/Gr\xF6\xDF"
                         "e: \"\"\n"
                         "*MediaType B/Hex <E9>t<E9>: \"\"\n"
                         "*CloseUI: *MediaType\n";
    const PpdModel latin = ReadText(SmallPpd(option));
    ASSERT_NE(Find(latin, "MediaType"), nullptr);
    EXPECT_EQ(Find(latin, "MediaType")->choices.at(0).text,
              "Gr\xC3\xB6\xC3\x9F"
              "e");
    EXPECT_EQ(Find(latin, "MediaType")->choices.at(1).text, "Hex \xC3\xA9t\xC3\xA9");

    const PpdModel utf8 = ReadText(SmallPpd("*OpenUI *MediaType/M: PickOne\n"
                                            "*DefaultMediaType: A\n"
                                            "*MediaType A/\xE7\xB4\x99: \"\"\n"
                                            "*CloseUI: *MediaType\n",
                                            "UTF-8"));
    ASSERT_NE(Find(utf8, "MediaType"), nullptr);
    EXPECT_EQ(Find(utf8, "MediaType")->choices.at(0).text, "\xE7\xB4\x99");
}

// The caller's language must not change a profile.
TEST(ImporterReader, TakesEnglishTexts)
{
    setenv("LANG", "de_DE.UTF-8", 1);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    const PpdModel model = ReadText(SmallPpd("*cupsLanguages: \"de\"\n*de.PageSize A4/A4 Papier: \"\"\n", "UTF-8"));
    EXPECT_EQ(Find(model, "PageSize")->choices.at(1).text, "A4");
}

TEST(ImporterReader, ReadsCustomSize)
{
    const PpdModel model = ReadText(SmallPpd("*HWMargins: 12 12 12 12\n"
                                             "*MaxMediaWidth: \"908\"\n"
                                             "*MaxMediaHeight: \"1701\"\n"
                                             "*CustomPageSize True: \"pop\"\n"
                                             "*ParamCustomPageSize Width: 1 points 255 908\n"
                                             "*ParamCustomPageSize Height: 2 points 419 1701\n"
                                             "*ParamCustomPageSize Orientation: 3 int 1 1\n"));
    ASSERT_TRUE(model.customSize.has_value());
    EXPECT_DOUBLE_EQ(model.customSize->minimum.width, 255);
    EXPECT_DOUBLE_EQ(model.customSize->maximum.length, 1701);
    EXPECT_EQ(Find(model, "PageSize")->choices.size(), 2u); // no choice named Custom
}

std::string ErrorOf(const std::string& path)
{
    try
    {
        ReadPpd(path);
    }
    catch (const InputError& error)
    {
        return error.what();
    }
    return "";
}

TEST(ImporterReader, ErrorsNameFileAndLine)
{
    const ScratchFolder folder;
    const std::string missing = folder.Path("missing.ppd");
    EXPECT_EQ(ErrorOf(missing).rfind(missing + ": ", 0), 0u);
    EXPECT_NE(ErrorOf(missing).find("No such file"), std::string::npos);

    const std::string empty = folder.Write("empty.ppd", "");
    EXPECT_EQ(ErrorOf(empty).rfind(empty + ":", 0), 0u);

    const std::string notPpd = folder.Write("not.ppd", "Dear printer,\nplease print.\n");
    EXPECT_EQ(ErrorOf(notPpd).rfind(notPpd + ":", 0), 0u);

    const std::string text = SmallPpd();
    const std::string broken = folder.Write("broken.ppd", text + "*OpenGroup: One\n*OpenGroup: Two\n");
    const auto line = std::count(text.begin(), text.end(), '\n') + 2;
    EXPECT_EQ(ErrorOf(broken).rfind(broken + ":" + std::to_string(line) + ": ", 0), 0u) << ErrorOf(broken);
}

} // namespace
} // namespace tsypr::ppdimport
