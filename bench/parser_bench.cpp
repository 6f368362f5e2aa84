#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/provider.h"
#include "bench/straight_dom.h"
#include "printschema/pt_parser.h"

#include <cstdio>
#include <stdexcept>
#include <string>

namespace tsypr::bench
{
namespace
{

// Print capabilities as a large printer has them, 200 KiB: many features, N-up, staples and punches among them.
std::string LargeCapabilities()
{
    const auto feature = [](const std::string& name, const std::string& options)
    { return "<psf:Feature name=\"" + name + "\">" + options + "</psf:Feature>"; };
    const auto option = [](const std::string& name, const std::string& body)
    { return "<psf:Option name=\"" + name + "\" constrained=\"psk:None\">" + body + "</psf:Option>"; };
    const auto scored = [](const std::string& value)
    {
        return R"(<psf:ScoredProperty name="psk:PagesPerSheet"><psf:Value xsi:type="xsd:integer">)" + value +
               "</psf:Value></psf:ScoredProperty>";
    };
    std::string pages, directions, staples, punches;
    for (const char* number : {"1", "2", "4", "6", "9", "16"})
    {
        pages += option("ns0000:Up" + std::string(number), scored(number));
    }
    for (const char* name : {"RightBottom", "BottomRight", "LeftBottom", "BottomLeft"})
    {
        directions += option(std::string("psk:") + name, "");
    }
    for (const char* name : {"None", "StapleTopLeft", "StapleDualLeft", "SaddleStitch"})
    {
        staples += option(std::string("psk:") + name, "");
        punches += option(std::string("psk:") + name, "");
    }
    punches += option("psk:LeftEdge", "");
    std::string body =
        feature("psk:JobNUpAllDocumentsContiguously", pages + feature("psk:PresentationDirection", directions)) +
        feature("psk:JobStapleAllDocuments", staples) + feature("psk:JobHolePunch", punches);
    for (int number = 0; body.size() < 200U * 1024U; ++number)
    {
        std::string options;
        for (int i = 0; i < 20; ++i)
        {
            options += option("ns0000:Option" + std::to_string(i),
                              R"(<psf:Property name="psk:DisplayName"><psf:Value xsi:type="xsd:string">Option )" +
                                  std::to_string(i) + "</psf:Value></psf:Property>");
        }
        body.insert(0, feature("ns0000:Feature" + std::to_string(number), options));
    }
    return R"(<?xml version="1.0" encoding="UTF-8"?><psf:PrintCapabilities version="1")"
           R"( xmlns:psf="http://schemas.microsoft.com/windows/2003/08/printing/printschemaframework")"
           R"( xmlns:psk="http://schemas.microsoft.com/windows/2003/08/printing/printschemakeywords")"
           R"( xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xmlns:xsd="http://www.w3.org/2001/XMLSchema")"
           R"( xmlns:ns0000="http://vendor.example/large">)" +
           body + "</psf:PrintCapabilities>";
}

// The questions without anything around them.
size_t AskStraight(IXMLDOMDocument2* doc)
{
    static const StraightFeature s_staple(L"psf:PrintCapabilities",
                                          {L"psk:JobStapleAllDocuments", L"psk:DocumentStaple"});
    static const StraightFeature s_punch(L"psf:PrintCapabilities", {L"psk:JobHolePunch", L"psk:DocumentHolePunch"});
    return StraightNupCapability(doc) + OptionNames(s_staple.Find(doc).Get()) + OptionNames(s_punch.Find(doc).Get());
}

} // namespace

void MeasurePrintSchemaQueries(Report& report)
{
    const ProviderSurroundings surroundings;
    const ComPtr<IXMLDOMDocument2> doc = NewDocument();
    const std::string text = LargeCapabilities();
    LoadStraight(doc.Get(), text.data(), static_cast<UINT>(text.size()));
    size_t asked = 0;
    size_t straight = 0;
    const auto queries = [&]
    {
        NupCapability nup;
        FinishingCapability finishing;
        PTParser::GetNupCapability(doc.Get(), nup);
        PTParser::GetFinishingCapability(doc.Get(), finishing);
        asked = nup.pagesPerSheet.size() + nup.directions.size() + finishing.staples.size() + finishing.punches.size();
    };
    const auto calls = [&] { straight = AskStraight(doc.Get()); };
    Plan plan;
    plan.rounds = 101;
    const Comparison times = Compare(queries, calls, plan);
    if (asked != 16 || straight != 19) // the queries leave out three staples that are no punches
    {
        throw std::runtime_error("print capabilities were not read");
    }
    char detail[120];
    std::snprintf(
        detail, sizeof(detail), "queries %.0f us, calls %.0f us", times.firstNs / 1000, times.secondNs / 1000);
    report.measurements.push_back({"N-up and finishing queries / bare calls",
                                   "x",
                                   times.ratio,
                                   1.1,
                                   false,
                                   times.firstNs,
                                   times.secondNs,
                                   detail});
}

} // namespace tsypr::bench
