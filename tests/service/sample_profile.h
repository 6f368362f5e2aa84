#ifndef TESSARY_TESTS_SERVICE_SAMPLE_PROFILE_H
#define TESSARY_TESTS_SERVICE_SAMPLE_PROFILE_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "service/profile_parser.h"
#include "tests/lib/test_files.h"

namespace tsypr::service::test
{

// A printer with every kind of setting, small enough to know by heart.
inline nlohmann::json SampleProfile()
{
    return nlohmann::json::parse(R"({
        "schemaVersion": 1, "name": "Sample", "manufacturer": "Maker", "model": "M1",
        "vendorNamespace": "http://vendor.example/ns",
        "deviceMode": {"orientation": "landscape", "paper": 9, "source": 15, "mediaType": 2, "copies": 3,
            "collate": false, "color": "monochrome", "duplex": "horizontal", "resolution": {"x": 1200, "y": 600},
            "scale": 90, "formName": "Office A4", "leadingExtra": 10},
        "private": {"compression": 2, "printTargetChoice": 1, "printAsImage": true, "showPreDialog": true,
            "pagesPerSheet": 4, "nupLayout": "psk:LeftTop", "staple": "psk:StapleTopLeft", "punch": "psk:LeftEdge",
            "locked": ["color", "compressionLevel"],
            "features": ["nup", "printAsImage", "popupPreDialog", "finishing"]},
        "papers": [{"id": 9, "name": "A4", "keyword": "psk:ISOA4", "width": 2100, "height": 2970},
            {"id": 8, "name": "A3", "keyword": "psk:ISOA3", "width": 2970, "height": 4200},
            {"id": 256, "name": "Custom", "keyword": "psk:CustomMediaSize", "width": 1000, "height": 2000}],
        "customPaper": {"minWidth": 900, "minHeight": 1000, "maxWidth": 3000, "maxHeight": 5000},
        "bins": [{"id": 7, "name": "Auto", "keyword": "psk:AutoSelect"},
            {"id": 15, "name": "Twenty-three characters", "keyword": "ns0000:Tray.1-b"}],
        "mediaTypes": [{"id": 1, "name": "Plain", "keyword": "psk:Plain"},
            {"id": 2, "name": "Glossy", "keyword": "psk:PhotographicGlossy"}],
        "resolutions": [{"x": 600, "y": 600}, {"x": 1200, "y": 600}, {"x": 1200, "y": 1200}],
        "qualityLevels": ["draft", "high"], "duplex": ["simplex", "vertical", "horizontal"], "color": true,
        "landscapeRotation": 270, "maxCopies": 50, "collation": true, "pagesPerMinute": 25,
        "nup": {"pagesPerSheet": [1, 2, 4], "directions": ["psk:RightBottom", "psk:LeftTop", "ns0000:Spiral"]},
        "staple": ["psk:None", "psk:StapleTopLeft"], "punch": ["psk:None", "psk:LeftEdge"]
    })");
}

// A printer that offers as little as a profile may say.
inline nlohmann::json SparseProfile()
{
    return nlohmann::json::parse(R"({
        "schemaVersion": 1, "name": "Sparse", "deviceMode": {"paper": 1},
        "papers": [{"id": 1, "name": "Letter", "keyword": "psk:NorthAmericaLetter", "width": 2159, "height": 2794},
            {"id": 70, "name": "Strip", "keyword": "psk:ISOA6", "width": 1000, "height": 4200}],
        "staple": ["psk:None"], "qualityLevels": ["medium", "draft"]
    })");
}

// The text of a profile under another name.
inline std::string Named(const std::string& name, nlohmann::json document = SparseProfile())
{
    document["name"] = name;
    return document.dump();
}

// The profile of a document that must be good.
inline Profile Parse(const nlohmann::json& document)
{
    std::vector<ProfileProblem> problems;
    return ParseProfile(document.dump(), "sample.json", problems).value();
}

// Each problem as "file|field|reason".
inline std::vector<std::string> Lines(const std::vector<ProfileProblem>& problems)
{
    std::vector<std::string> lines;
    for (const ProfileProblem& problem : problems)
    {
        lines.push_back(problem.file + "|" + problem.field + "|" + problem.reason);
    }
    return lines;
}

// A directory for profiles that disappears with the object.
struct ProfileDirectory : tsypr::test::ScratchFolder
{
    ProfileDirectory() : ScratchFolder("profiles") {}
};

} // namespace tsypr::service::test

#endif
