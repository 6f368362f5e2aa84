#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/provider.h"
#include "bench/straight_dom.h"
#include "printschema/pt_parser.h"

#include <stdexcept>
#include <string>

namespace tsypr::bench
{
namespace
{

constexpr int kMediaTypes = 30;

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
    const auto named = [&](const std::string& name)
    {
        return option(name,
                      R"(<psf:Property name="psk:DisplayName"><psf:Value xsi:type="xsd:string">The )" + name +
                          "</psf:Value></psf:Property>");
    };
    std::string mediaTypes;
    for (int i = 0; i < kMediaTypes; ++i)
    {
        mediaTypes += named("ns0000:Media" + std::to_string(i));
    }
    std::string body =
        feature("psk:JobNUpAllDocumentsContiguously", pages + feature("psk:PresentationDirection", directions)) +
        feature("psk:JobStapleAllDocuments", staples) + feature("psk:JobHolePunch", punches) +
        feature("psk:PageMediaType", mediaTypes);
    for (int number = 0; body.size() < 200U * 1024U; ++number)
    {
        std::string options;
        for (int i = 0; i < 20; ++i)
        {
            options += named("ns0000:Option" + std::to_string(i));
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

template <class First, class Second>
void Add(Report& report, const char* name, First queries, Second calls)
{
    AddRatio(report, name, Compare(queries, calls, SlowCallPlan()), 1.1, "queries", "calls");
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
    Add(report, "N-up and finishing queries / bare calls", queries, [&] { straight = AskStraight(doc.Get()); });
    if (asked != 16 || straight != 19) // the queries leave out three staples that are no punches
    {
        throw std::runtime_error("print capabilities were not read");
    }
    const StraightFeature mediaTypes(L"psf:PrintCapabilities", {L"psk:PageMediaType"});
    FeatureOptions options;
    const auto names = [&]
    {
        options.clear();
        PTParser::GetMediaTypeOptions(doc.Get(), options);
    };
    Add(report, "media type names query / bare calls", names, [&] { mediaTypes.Options(doc.Get()); });
    if (options.size() != kMediaTypes)
    {
        throw std::runtime_error("media types were not read");
    }
}

} // namespace tsypr::bench
