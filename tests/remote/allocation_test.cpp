// Memory that runs out at each allocation in turn.
#include "tests/remote/allocation_faults.h"
#include "remote/device_capabilities.h"
#include "remote/devmode_dump.h"
#include "remote/devmode_merge.h"
#include "remote/devmode_names.h"
#include "remote/driver_exports.h"
#include "remote/name_buffers.h"
#include "remote/printer_name.h"
#include "tests/remote/fake_service.h"
#include "tests/remote/fake_spooler.h"
#include "ui/document_property_header.h"
#include "ui/document_property_sheets.h"

#include <functional>
#include <new>
#include <set>

namespace tsypr::test
{
namespace
{

class OutOfMemory : public RemoteTest
{
protected:
    OutOfMemory() : client(ClientDeviceMode())
    {
        service.devMode = client.Whole();
        service.capabilities[DC_PAPERS] = ListReply<uint16_t>(2, {1, 9});
        service.capabilities[DC_PAPERSIZE] = ListReply<POINT>(2, {{2159, 2794}, {2100, 2970}});
        service.capabilities[DC_MEDIATYPES] = ListReply<uint32_t>(2, {1, 5});
        service.notesCalls = false;
    }

    // Fails the first allocation of `use`, then only the second and so on until none is left, when it succeeds
    // silently. No failure leaves memory behind, and all of them together log these errors.
    void ExpectErrors(const std::set<std::string>& expected, const std::function<bool()>& use)
    {
        use(); // for what the run-time library and the fakes keep from first use on
        try
        {
            throw std::bad_alloc();
        }
        catch (const std::bad_alloc&)
        {
            log.Take();
        }
        PrintUtils::ReleaseNameBuffers();
        std::set<std::string> errors;
        bool happened = true;
        for (long n = 0; happened; ++n)
        {
            SCOPED_TRACE(n);
            const long before = LiveAllocations();
            bool success = false;
            {
                const AllocationFault fault(n);
                success = use();
                happened = fault.Happened();
            }
            PrintUtils::ReleaseNameBuffers();
            EXPECT_EQ(before, LiveAllocations()) << "memory was kept";
            const Messages lines = log.TakeErrors();
            EXPECT_TRUE(happened || (success && lines.empty()));
            errors.insert(lines.begin(), lines.end());
        }
        EXPECT_EQ(expected, errors);
    }

    DeviceMode client;
};

TEST_F(OutOfMemory, Merging)
{
    DeviceMode in = client;
    in->dmFields = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_MEDIATYPE;
    in->dmMediaType = 5;
    const DeviceMode untouched(220, 1112, 0x5A);
    DeviceMode out = untouched;
    const std::string noMemory = "error GetDeviceCapabilitiesData, failed to alloc memory, ";
    const std::string noList = ", failed to retrieve capabilities for ";
    ExpectErrors(
        {"error MergeAndCopyDM, failed to allocate temp DEVMODE",
         noMemory + "4.",
         "error GetMatchedPaperSizeIndex" + noList + "DC_PAPERS.",
         noMemory + "16.",
         "error GetPaperDimensionByIndex" + noList + "DC_PAPERSIZE.",
         "error MergeAndCopyDM, printer [Office Laser] failed to get width and length for paper size 9",
         noMemory + "8.",
         "error GetMatchedMediaTypeIndex" + noList + "DC_MEDIATYPES."},
        [&]
        {
            memcpy(out.Get(), untouched.Get(), DevModeTotalSize(untouched.Get()));
            const bool merged = MergeAndCopyDM(out.Get(), in.Get(), client.Get(), DM_IN_BUFFER | DM_OUT_BUFFER);
            EXPECT_EQ(merged, memcmp(out.Get(), untouched.Get(), DevModeTotalSize(untouched.Get())) != 0);
            EXPECT_TRUE(!merged || (out->dmPaperSize == 9 && out.Private().signature == kPrivateDevModeSignature));
            return merged;
        });
}

TEST_F(OutOfMemory, DriverName)
{
    g_spooler = {};
    g_spooler.text = L"Tessary Universal EMF Driver";
    ExpectErrors({"error PrintUtils::GetDriverName(): failed to allocate buffer (size = 512)"},
                 []
                 {
                     const std::wstring name = PrintUtils::GetDriverName(L"Laser");
                     EXPECT_TRUE(name.empty() || name == g_spooler.text);
                     return !name.empty();
                 });
    EXPECT_EQ(0, g_spooler.stillOpen);
}

TEST_F(OutOfMemory, PropertiesWithoutUI)
{
    g_spooler = {};
    g_spooler.text = L"Office Laser";
    DeviceMode in = client;
    in->dmFields = DM_COPIES;
    DeviceMode out;
    DOCUMENTPROPERTYHEADER header = {};
    header.hPrinter = reinterpret_cast<HANDLE>(0x12);
    header.pdmIn = in.Get();
    header.pdmOut = out.Get();
    header.fMode = DM_IN_BUFFER | DM_OUT_BUFFER;
    const std::string failed = "error DrvDocumentPropertySheets, failed to ";
    ExpectErrors({failed + "get printer name from handle 0x12.",
                  "error GetDevModeByVPrinterName, failed to allocate memory 1332.",
                  failed + "retrieve devmode for printer Office Laser",
                  "error MergeAndCopyDM, failed to allocate temp DEVMODE"},
                 [&] { return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)) == 1; });
}

TEST_F(OutOfMemory, NamesOfTheDump)
{
    // Without a buffer a name is given as "?" until there is memory again.
    ExpectErrors({},
                 []
                 {
                     const std::string_view name = PrintUtils::SourceName(300);
                     EXPECT_TRUE(name == "?" || name == "300");
                     return *PrintUtils::FieldsNames(DM_COPIES) == 'C';
                 });
}

} // namespace
} // namespace tsypr::test
