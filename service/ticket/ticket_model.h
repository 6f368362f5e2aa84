#ifndef TESSARY_SERVICE_TICKET_TICKET_MODEL_H
#define TESSARY_SERVICE_TICKET_TICKET_MODEL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "service/profile.h"
#include "service/ticket/xml_element.h"

namespace tsypr::service
{

struct ModeParts;

// A property that tells options of a feature apart: a number, a name, or a parameter that holds the number.
struct ScoredProperty
{
    std::string_view name; // a public keyword without its prefix
    std::int64_t number = 0;
    std::string_view text;      // in place of the number, when not empty
    std::string_view parameter; // likewise; a public keyword without its prefix

    bool IsNumber() const
    {
        return text.empty() && parameter.empty();
    }
};

// One thing that can be chosen.
struct TicketOption
{
    std::optional<QName> name; // the print schema has options that only their scored properties tell apart
    std::string displayName;   // the printer's own name for it, if it has one
    std::vector<ScoredProperty> scored;
    std::int64_t value = 0; // what the setting stores in the device mode for it
};

// A feature of the print schema, as the table of settings names it.
struct FeatureRow
{
    std::string_view name; // a public keyword without its prefix
    std::vector<TicketOption> (*options)(const Profile& profile);
    std::int64_t tolerance; // by how much numbers of matching options may differ
};

inline constexpr std::size_t kNoParent = static_cast<std::size_t>(-1);
inline constexpr std::size_t kMostFeatures = 3;

// One setting of the device mode and the features that express it: the scopes that the print schema has, the usual one
// first, or different ways of saying the same. They exclude each other in a ticket. `get` and `put` move an option's
// value from and to the device mode.
struct SettingRow
{
    FeatureRow features[kMostFeatures]; // unused ones at the end have no name
    std::int64_t (*get)(const Profile& profile, const ModeParts& mode);
    void (*put)(const Profile& profile, std::int64_t value, ModeParts& mode);
    bool (*isLocked)(const Profile& profile);
    std::size_t parent; // the row whose features contain this row's feature
};

struct ParameterRange
{
    std::int64_t smallest = 0;
    std::int64_t largest = 0;
};

// A number in a ticket that is no choice among options.
struct ParameterRow
{
    std::string_view name; // a public keyword without its prefix
    std::string_view unit;
    bool isUnconditional; // belongs into every ticket, and not only to an option that refers to it
    std::optional<ParameterRange> (*range)(const Profile& profile);
    std::int64_t (*get)(const Profile& profile, const ModeParts& mode);
    void (*put)(std::int64_t value, ModeParts& mode);
};

// A feature with the options that one printer has for it; there is at least one.
struct TicketFeature
{
    QName name;
    std::vector<TicketOption> options;
    std::int64_t tolerance = 0;
};

struct Choice
{
    std::size_t feature = 0;
    std::size_t option = 0;
};

struct TicketSetting
{
    const SettingRow* row = nullptr;
    std::vector<TicketFeature> features;
    Choice defaultChoice;
    bool isLocked = false;
    std::size_t parent = kNoParent; // a setting of the same model, before this one

    // The choice that stands for a value of the device mode; the default where there is none.
    Choice Find(std::int64_t value) const;

    const TicketOption& Option(Choice choice) const
    {
        return features[choice.feature].options[choice.option];
    }
    std::int64_t DefaultValue() const
    {
        return Option(defaultChoice).value;
    }
};

struct TicketParameter
{
    const ParameterRow* row = nullptr;
    QName name;
    ParameterRange range;
    std::int64_t defaultValue = 0;
};

// Everything that tickets of one printer can say. It refers to the profile that it was made from.
struct TicketModel
{
    explicit TicketModel(const Profile& printer);

    const Profile& profile;
    std::string vendorUri; // the namespace of the printer's own keywords
    std::vector<TicketSetting> settings;
    std::vector<TicketParameter> parameters;
};

// The namespace that ns0000 stands for in a printer's documents.
std::string VendorUri(const Profile& profile);

} // namespace tsypr::service

#endif
