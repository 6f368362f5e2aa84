#include "tools/ppdimport/item_table.h"

namespace tsypr::ppdimport
{
namespace
{

// Letterhead, pre-printed, pre-punched and recycled paper are no media types of the print schema but marks on one, so
// they keep keywords of the printer's own.
// clang-format off
constexpr StandardItem kMediaTypes[] = {
    {1, "psk:Plain", "plain plainpaper plain1"},
    {2, "psk:Transparency", "transparency transparencies transparencyfilm ohp ohpfilm"},
    {3, "psk:PhotographicGlossy", "glossy glossypaper coatedpaperglossprint coatedglossy glosscoated glossyphoto "
                                  "photoglossy"},
    {0, "psk:AutoSelect", "auto autoselect automatic"},
    {0, "psk:Archival", "archive archival"},
    {0, "psk:Bond", "bond bondpaper"},
    {0, "psk:CardStock", "cardstock card"},
    {0, "psk:Continuous", "continuous"},
    {0, "psk:EnvelopePlain", "envelope envelopes"},
    {0, "psk:EnvelopeWindow", "windowenvelope envelopewindow"},
    {0, "psk:Fabric", "fabric"},
    {0, "psk:HighResolution", "highresolution highqlty highquality"},
    {0, "psk:Label", "label labels"},
    {0, "psk:MultiPartForm", "multipartform"},
    {0, "psk:Photographic", "photo photopaper photographic"},
    {0, "psk:PhotographicHighGloss", "highgloss highglossyphoto highglossphoto"},
    {0, "psk:PhotographicMatte", "matte mattephoto photomatte coatedmatte matcoated"},
    {0, "psk:PhotographicSatin", "satin photosatin"},
    {0, "psk:PhotographicSemiGloss", "semigloss semiglossy semiglossyphoto photosemigloss"},
    {0, "psk:TabStockFull", "tab tabpaper tabstock"},
    {0, "psk:TShirtTransfer", "tshirttransfer ironon"},
    {0, "psk:None", "none"},
};
// clang-format on

} // namespace

std::span<const StandardItem> StandardMediaTypes()
{
    return kMediaTypes;
}

} // namespace tsypr::ppdimport
