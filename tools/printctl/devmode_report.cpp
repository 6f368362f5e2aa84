#include "tools/printctl/devmode_report.h"

#include "remote/private_devmode.h"
#include "tools/printctl/text.h"

namespace tsypr::printctl
{

namespace
{

// The value of a field that is in use; nothing for one whose dmFields bit is not set.
std::optional<FieldValue> ValueInUse(const DevModeBuffer& dm, const Field& field)
{
    return IsSet(dm, field) ? ReadField(dm, field) : std::nullopt;
}

Json ValueJson(const std::optional<FieldValue>& value)
{
    if (!value)
    {
        return nullptr;
    }
    const auto* text = std::get_if<std::wstring>(&*value);
    return text != nullptr ? Json(Utf8(*text)) : Json(std::get<int64_t>(*value));
}

Json FieldJson(const DevModeBuffer& dm, const Field& field, const FieldValue& value, const PrinterChoices& choices)
{
    Json entry = {{"value", ValueJson(value)}};
    if (field.place == FieldPlace::Public)
    {
        entry["set"] = IsSet(dm, field);
    }
    const std::string name = ValueNameOf(field, value, choices);
    if (!name.empty())
    {
        entry["name"] = name;
    }
    return entry;
}

std::string Shown(const FieldChange& change, const std::optional<FieldValue>& value, const PrinterChoices& choices)
{
    return value ? ShowValue(*change.field, *value, choices) : "nothing";
}

std::string Hexadecimal(DWORD number)
{
    char text[16];
    snprintf(text, sizeof(text), "0x%lx", static_cast<unsigned long>(number));
    return text;
}

std::string DeviceName(const DEVMODEW* dm)
{
    return Utf8(FixedWide(dm->dmDeviceName, CCHDEVICENAME));
}

} // namespace

std::vector<FieldChange> CompareMerge(const DevModeBuffer& before,
                                      const DevModeBuffer& requested,
                                      const DevModeBuffer& result)
{
    std::vector<FieldChange> changes;
    for (const Field& field : Fields())
    {
        FieldChange change{&field, ValueInUse(before, field), ValueInUse(requested, field), ValueInUse(result, field)};
        if (field.place == FieldPlace::Private && change.requested == change.before)
        {
            change.requested.reset();
        }
        const bool wanted = change.requested && change.requested != change.before;
        if (wanted || change.result != change.before)
        {
            changes.push_back(std::move(change));
        }
    }
    return changes;
}

std::vector<FieldChange> CompareSettings(const DevModeBuffer& before, const DevModeBuffer& result)
{
    std::vector<FieldChange> changes;
    for (const Field& field : Fields())
    {
        FieldChange change{&field, ValueInUse(before, field), std::nullopt, ValueInUse(result, field)};
        if (change.result != change.before)
        {
            changes.push_back(std::move(change));
        }
    }
    return changes;
}

Json DevModeJson(const DevModeBuffer& dm, const PrinterChoices& choices)
{
    Json publicFields = Json::object();
    Json privateFields = Json::object();
    for (const Field& field : Fields())
    {
        if (const auto value = ReadField(dm, field))
        {
            (field.place == FieldPlace::Public ? publicFields : privateFields)[field.name] =
                FieldJson(dm, field, *value, choices);
        }
    }
    return {{"deviceName", DeviceName(dm.Get())},
            {"specVersion", dm.Get()->dmSpecVersion},
            {"driverVersion", dm.Get()->dmDriverVersion},
            {"size", dm.Get()->dmSize},
            {"driverExtra", dm.Get()->dmDriverExtra},
            {"fieldBits", dm.Get()->dmFields},
            {"fields", publicFields},
            {"private", GetPrivateDevMode(dm.Get()) == nullptr ? Json(nullptr) : privateFields}};
}

std::string DevModeText(const DevModeBuffer& dm, const PrinterChoices& choices)
{
    std::string text = "device name \"" + DeviceName(dm.Get()) + "\", specification version " +
                       Hexadecimal(dm.Get()->dmSpecVersion) + ", driver version " +
                       Hexadecimal(dm.Get()->dmDriverVersion) + "\n" + std::to_string(dm.Get()->dmSize) +
                       " public bytes, " + std::to_string(dm.Get()->dmDriverExtra) + " bytes of the driver, fields " +
                       Hexadecimal(dm.Get()->dmFields) + "\n";
    TextTable publicFields({"field", "value", "set"});
    TextTable privateFields({"private field", "value"});
    for (const Field& field : Fields())
    {
        const auto value = ReadField(dm, field);
        if (value && field.place == FieldPlace::Public)
        {
            publicFields.AddRow({field.name, ShowValue(field, *value, choices), IsSet(dm, field) ? "yes" : "no"});
        }
        else if (value)
        {
            privateFields.AddRow({field.name, ShowValue(field, *value, choices)});
        }
    }
    text += publicFields.Format();
    return text + (privateFields.HasRows() ? privateFields.Format() : "  no private block\n");
}

Json ChangesJson(const std::vector<FieldChange>& changes, const PrinterChoices& choices)
{
    Json list = Json::array();
    for (const auto& change : changes)
    {
        Json entry = {{"field", change.field->name},
                      {"before", ValueJson(change.before)},
                      {"requested", ValueJson(change.requested)},
                      {"result", ValueJson(change.result)}};
        if (change.requested)
        {
            entry["applied"] = change.Applied();
        }
        entry["text"] = ChangesText({change}, choices);
        entry["text"].get_ref<std::string&>().pop_back();
        list.push_back(std::move(entry));
    }
    return list;
}

std::string ChangesText(const std::vector<FieldChange>& changes, const PrinterChoices& choices)
{
    std::string text;
    for (const auto& change : changes)
    {
        text += std::string(change.field->name) + ": ";
        const std::string result = Shown(change, change.result, choices);
        if (!change.requested)
        {
            text += "changed from " + Shown(change, change.before, choices) + " to " + result + " (not requested)\n";
        }
        else if (change.Applied())
        {
            text += "requested and got " + result + ", was " + Shown(change, change.before, choices) + "\n";
        }
        else
        {
            text += "requested " + Shown(change, change.requested, choices) + ", got " + result + " (not applied)\n";
        }
    }
    return text;
}

std::string DifferencesText(const std::vector<FieldChange>& changes, const PrinterChoices& choices)
{
    TextTable table({"field", "before", "after"});
    for (const auto& change : changes)
    {
        table.AddRow(
            {change.field->name, Shown(change, change.before, choices), Shown(change, change.result, choices)});
    }
    return table.Format();
}

} // namespace tsypr::printctl
