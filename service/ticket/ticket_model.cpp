#include "service/ticket/ticket_model.h"

#include <algorithm>

#include "service/device_mode.h"
#include "service/ticket/keywords.h"
#include "service/ticket/mode_parts.h"
#include "service/ticket/setting_table.h"

namespace tsypr::service
{

namespace
{

constexpr std::string_view kOwnUri = "http://schemas.zelmora.example/tessary/printer";

// A printer may list one keyword for several of its choices; only the first can keep it.
void MakeNamesUnique(std::vector<TicketOption>& options, const std::string& vendorUri)
{
    for (auto option = options.begin(); option != options.end(); ++option)
    {
        const auto isTaken = [&]
        {
            return std::any_of(
                options.begin(), option, [&](const TicketOption& earlier) { return earlier.name == option->name; });
        };
        while (option->name && isTaken())
        {
            option->name = QName{vendorUri, option->name->local + "_" + std::to_string(option->value)};
        }
    }
}

TicketSetting MakeSetting(const SettingRow& row, const TicketModel& model, const ModeParts& defaults)
{
    TicketSetting setting;
    setting.row = &row;
    setting.isLocked = row.isLocked != nullptr && row.isLocked(model.profile);
    for (const FeatureRow& feature : row.features)
    {
        std::vector<TicketOption> options;
        if (!feature.name.empty())
        {
            options = feature.options(model.profile);
        }
        if (!options.empty())
        {
            MakeNamesUnique(options, model.vendorUri);
            setting.features.push_back({Psk(feature.name), std::move(options), feature.tolerance});
        }
    }
    if (!setting.features.empty())
    {
        setting.defaultChoice = setting.Find(row.get(model.profile, defaults));
    }
    return setting;
}

} // namespace

Choice TicketSetting::Find(std::int64_t value) const
{
    for (std::size_t feature = 0; feature < features.size(); ++feature)
    {
        const auto& options = features[feature].options;
        const auto found = std::ranges::find(options, value, &TicketOption::value);
        if (found != options.end())
        {
            return {feature, static_cast<std::size_t>(found - options.begin())};
        }
    }
    return defaultChoice;
}

TicketModel::TicketModel(const Profile& printer) : profile(printer), vendorUri(VendorUri(printer))
{
    const ModeParts defaults(BuildDevMode(profile));
    std::vector<std::size_t> places; // of each row's setting
    for (const SettingRow& row : SettingRows())
    {
        TicketSetting setting = MakeSetting(row, *this, defaults);
        setting.parent = row.parent == kNoParent ? kNoParent : places[row.parent];
        places.push_back(settings.size());
        if (!setting.features.empty())
        {
            settings.push_back(std::move(setting));
        }
    }
    for (const ParameterRow& row : ParameterRows())
    {
        if (const std::optional<ParameterRange> range = row.range(profile))
        {
            const std::int64_t value = row.get(profile, defaults);
            parameters.push_back({&row, Psk(row.name), *range, std::clamp(value, range->smallest, range->largest)});
        }
    }
}

std::string VendorUri(const Profile& profile)
{
    return profile.vendorNamespace.empty() ? std::string(kOwnUri) : profile.vendorNamespace;
}

} // namespace tsypr::service
