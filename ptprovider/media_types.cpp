#include "ptprovider/media_types.h"

#include "module/log.h"
#include "remote/capability_list.h"
#include "remote/private_devmode.h"

#include <wingdi.h>

namespace tsypr
{
namespace
{

constexpr char kNameByID[] = "GetMediaTypeNameByID";
constexpr char kIDByName[] = "GetMediaTypeIDByName";
constexpr size_t kNameChars = 64;

struct MediaTypeName
{
    wchar_t text[kNameChars];

    std::wstring_view View() const noexcept
    {
        return {text, wcsnlen(text, kNameChars)};
    }
};

} // namespace

std::wstring GetMediaTypeNameByID(const wchar_t* printerName, uint32_t mediaType, const DEVMODEW* devMode)
{
    const CapabilityList types(printerName, DC_MEDIATYPES, devMode, sizeof(uint32_t));
    if (!types.Read())
    {
        LogError("%s, failed to retrieve capabilities for DC_MEDIATYPES.\n", kNameByID);
        return {};
    }
    size_t index = 0;
    while (index < types.Count() && types.At<uint32_t>(index) != mediaType)
    {
        ++index;
    }
    if (index == types.Count())
    {
        LogVerbose("%s, mediaType %d is not supported.\n", kNameByID, static_cast<int>(mediaType));
        return {};
    }
    const CapabilityList names(printerName, DC_MEDIATYPENAMES, devMode, sizeof(MediaTypeName));
    if (!names.Read() || index >= names.Count())
    {
        LogError("%s, failed to retrieve capabilities for DC_MEDIATYPENAMES.\n", kNameByID);
        return {};
    }
    return std::wstring(names.At<MediaTypeName>(index).View());
}

bool GetMediaTypeIDByName(const wchar_t* printerName,
                          const std::wstring& name,
                          const DEVMODEW* devMode,
                          uint32_t* mediaType) noexcept
{
    const CapabilityList names(printerName, DC_MEDIATYPENAMES, devMode, sizeof(MediaTypeName));
    if (!names.Read())
    {
        LogError("%s, failed to retrieve capabilities for DC_MEDIATYPENAMES.\n", kIDByName);
        return false;
    }
    size_t index = 0;
    while (index < names.Count() && names.At<MediaTypeName>(index).View() != name)
    {
        ++index;
    }
    if (index == names.Count())
    {
        LogVerbose("%s, mediaType name '%S' is not supported.\n", kIDByName, name.c_str());
        return false;
    }
    const CapabilityList types(printerName, DC_MEDIATYPES, devMode, sizeof(uint32_t));
    if (!types.Read() || index >= types.Count())
    {
        LogError("%s, failed to retrieve capabilities for DC_MEDIATYPES.\n", kIDByName);
        return false;
    }
    *mediaType = types.At<uint32_t>(index);
    return true;
}

} // namespace tsypr
