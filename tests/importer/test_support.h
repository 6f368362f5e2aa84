#ifndef TESSARY_TESTS_IMPORTER_TEST_SUPPORT_H
#define TESSARY_TESTS_IMPORTER_TEST_SUPPORT_H

#include "tests/lib/test_files.h"
#include "tools/ppdimport/importer.h"
#include "tools/ppdimport/ppd_model.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>
#include <string>
#include <vector>

namespace tsypr::ppdimport
{

struct ScratchFolder : test::ScratchFolder
{
    ScratchFolder() : test::ScratchFolder("importer") {}
};

// A small PPD file with A4 and Letter; `more` goes behind the page sizes.
inline std::string SmallPpd(const std::string& more = "", const std::string& encoding = "ISOLatin1")
{
    return "*PPD-Adobe: \"4.3\"\n*LanguageVersion: English\n*LanguageEncoding: " + encoding + R"(
*Manufacturer: "Maker"
*ModelName: "Model 1"
*NickName: "Maker Model 1 PS"
*ColorDevice: True
*Throughput: "30"
*LandscapeOrientation: Minus90
*OpenUI *PageSize: PickOne
*DefaultPageSize: A4
*PageSize Letter/US Letter: ""
*PageSize A4/A4: ""
*CloseUI: *PageSize
*PaperDimension Letter: "612 792"
*PaperDimension A4: "595 842"
)" + more;
}

// An option of a PPD file in the model; the choices are "Name" or "Name/Text" with "|" between, the first one is the
// default.
inline PpdOption MakeOption(const std::string& keyword, const std::string& choices)
{
    PpdOption option{keyword, keyword, "", "", false, {}};
    std::istringstream stream(choices);
    for (std::string choice; std::getline(stream, choice, '|');)
    {
        const std::size_t slash = choice.find('/');
        option.choices.push_back({choice.substr(0, slash), choice.substr(slash + 1)}); // without a slash the name twice
    }
    option.defaultChoice = option.choices.front().name;
    return option;
}

// A model with one A4 page size and the given options.
inline PpdModel MakeModel(const std::vector<PpdOption>& options = {})
{
    PpdModel model{"model.ppd", "", "Model", "Maker", "English", true, 0, {}, {{"A4", {595, 842}}}, {}, {}, {}};
    model.options = {MakeOption("PageSize", "A4")};
    model.options.insert(model.options.end(), options.begin(), options.end());
    return model;
}

// Sizes in points.
inline void AddPageSize(PpdModel& model, const std::string& name, double width, double length)
{
    model.options.front().choices.push_back({name, name});
    model.sizes[name] = {width, length};
}

inline PrinterProfile Import(const PpdModel& model)
{
    return ImportPrinter(model, {}).profile;
}

inline std::string ReportOf(const PpdModel& model)
{
    return ImportPrinter(model, {}).report;
}

// The list of the profile as "id keyword, id keyword, ".
template <class Item>
std::string Entries(const std::vector<Item>& items)
{
    std::string entries;
    for (const Item& item : items)
    {
        entries += std::to_string(item.id) + " " + item.keyword + ", ";
    }
    return entries;
}

// Expects all that `expected` says to be in the profile's JSON text, and no field for which it says null.
inline void ExpectProfile(const PrinterProfile& profile, const char* expected)
{
    const auto actual = nlohmann::json::parse(ToJson(profile));
    auto merged = actual;
    merged.merge_patch(nlohmann::json::parse(expected));
    EXPECT_EQ(actual, merged);
}

} // namespace tsypr::ppdimport

#endif
