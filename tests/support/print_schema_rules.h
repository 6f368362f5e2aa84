// The framework's rules and the public keywords that the checker knows, as tables.
#ifndef TESSARY_TESTS_SUPPORT_PRINT_SCHEMA_RULES_H
#define TESSARY_TESTS_SUPPORT_PRINT_SCHEMA_RULES_H

#include <string_view>

namespace tsypr::test
{

// Which elements may be inside an element; lists of words between blanks.
struct ElementRule
{
    std::string_view element;
    std::string_view children;
    std::string_view attributes;
    bool isNamed; // needs a name; an option may go without one
};

inline constexpr ElementRule kElementRules[] = {
    {"PrintTicket", " Feature ParameterInit Property ", " version ", false},
    {"PrintCapabilities", " Feature ParameterDef Property ", " version ", false},
    {"Feature", " Feature Option Property ", " name ", true},
    {"Option", " Property ScoredProperty ", " name constrained ", false},
    {"ParameterDef", " Property ", " name ", true},
    {"ParameterInit", " Value ", " name ", true},
    {"ParameterRef", " ", " name ", true},
    {"Property", " Property Value ", " name ", true},
    {"ScoredProperty", " ParameterRef Property ScoredProperty Value ", " name ", true},
    {"Value", " ", " type ", false},
};

// Public features, and the options of those whose options are few. An empty list allows any name.
struct FeatureRule
{
    std::string_view feature;
    std::string_view options;
    std::string_view excluded; // the features of the same setting that must not be in a ticket beside it
};

inline constexpr std::string_view kStapleNames = " None SaddleStitch StapleBottomLeft StapleBottomRight "
                                                 "StapleDualBottom StapleDualLeft StapleDualRight StapleDualTop "
                                                 "StapleTopLeft StapleTopRight ";
inline constexpr std::string_view kPunchNames = " None BottomEdge LeftEdge RightEdge TopEdge ";
inline constexpr std::string_view kDuplexNames = " OneSided TwoSidedLongEdge TwoSidedShortEdge ";

inline constexpr FeatureRule kFeatureRules[] = {
    {"PageMediaSize", "", ""},
    {"PageOrientation", " Landscape Portrait ReverseLandscape ReversePortrait ", ""},
    {"JobDuplexAllDocumentsContiguously", kDuplexNames, " DocumentDuplex "},
    {"DocumentDuplex", kDuplexNames, " JobDuplexAllDocumentsContiguously "},
    {"PageOutputColor", " Color Grayscale Monochrome ", ""},
    {"PageOutputQuality", " Automatic Draft Fax High Normal Photographic Text ", ""},
    {"PageResolution", "", ""},
    {"JobInputBin", "", " DocumentInputBin PageInputBin "},
    {"DocumentInputBin", "", " JobInputBin PageInputBin "},
    {"PageInputBin", "", " JobInputBin DocumentInputBin "},
    {"PageMediaType", "", ""},
    {"DocumentCollate", " Collated Uncollated ", " JobCollateAllDocuments "},
    {"JobCollateAllDocuments", " Collated Uncollated ", " DocumentCollate "},
    {"PageScaling",
     " Custom CustomSquare FitApplicationBleedSizeToPageImageableSize FitApplicationContentSizeToPageImageableSize "
     "FitApplicationMediaSizeToPageImageableSize FitApplicationMediaSizeToPageMediaSize None ",
     ""},
    {"JobNUpAllDocumentsContiguously", "", " DocumentNUp "},
    {"DocumentNUp", "", " JobNUpAllDocumentsContiguously "},
    {"PresentationDirection", " RightBottom BottomRight LeftBottom BottomLeft RightTop TopRight LeftTop TopLeft ", ""},
    {"JobStapleAllDocuments", kStapleNames, " DocumentStaple "},
    {"DocumentStaple", kStapleNames, " JobStapleAllDocuments "},
    {"JobHolePunch", kPunchNames, " DocumentHolePunch "},
    {"DocumentHolePunch", kPunchNames, " JobHolePunch "},
};

inline constexpr std::string_view kParameterNames =
    " JobCopiesAllDocuments DocumentCopiesAllPages PageCopies PageMediaSizeMediaSizeWidth PageMediaSizeMediaSizeHeight "
    "PageScalingScale PageScalingScaleWidth PageScalingScaleHeight PageScalingOffsetWidth PageScalingOffsetHeight ";
inline constexpr std::string_view kConstraints = " None PrintTicketSettings AdminSettings DeviceSettings ";
inline constexpr std::string_view kSelections = " PickOne PickMany ";
inline constexpr std::string_view kMandatory = " Unconditional Conditional Optional ";

} // namespace tsypr::test

#endif
