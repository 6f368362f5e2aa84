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

    // Fails the first allocation of `use`, then only the second and so on until none is left. Each failure must give
    // the next of the expected outcomes: whether `use` says success, and the errors that are logged.
    struct Outcome
    {
        bool success;
        Messages errors;
    };
    void ExpectOutcomes(const std::vector<Outcome>& outcomes, const std::function<bool()>& use)
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
        for (long n = 0;; ++n)
        {
            SCOPED_TRACE(n);
            const long before = LiveAllocations();
            bool success = false;
            bool happened = false;
            {
                const AllocationFault fault(n);
                success = use();
                happened = fault.Happened();
            }
            PrintUtils::ReleaseNameBuffers();
            EXPECT_EQ(before, LiveAllocations()) << "memory was kept";
            const Messages errors = log.TakeErrors();
            if (!happened)
            {
                EXPECT_TRUE(success);
                EXPECT_EQ(Messages{}, errors);
                EXPECT_EQ(static_cast<long>(outcomes.size()), n);
                return;
            }
            ASSERT_LT(n, static_cast<long>(outcomes.size()));
            EXPECT_EQ(outcomes[static_cast<size_t>(n)].success, success);
            EXPECT_EQ(outcomes[static_cast<size_t>(n)].errors, errors);
        }
    }

    DeviceMode client;
};

TEST_F(OutOfMemory, Merging)
{
    DeviceMode in = client;
    in->dmFields = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_MEDIATYPE;
    in->dmMediaType = 5;
    DeviceMode out;
    const std::string capability = "error GetDeviceCapabilitiesData, failed to alloc memory, ";
    ExpectOutcomes(
        {{false, {"error MergeAndCopyDM, failed to allocate temp DEVMODE"}},
         {true, {capability + "4.", "error GetMatchedPaperSizeIndex, failed to retrieve capabilities for DC_PAPERS."}},
         {true,
          {capability + "16.",
           "error GetPaperDimensionByIndex, failed to retrieve capabilities for DC_PAPERSIZE.",
           "error MergeAndCopyDM, printer [Office Laser] failed to get width and length for paper size 9"}},
         {true,
          {capability + "8.", "error GetMatchedMediaTypeIndex, failed to retrieve capabilities for DC_MEDIATYPES."}}},
        [&] { return MergeAndCopyDM(out.Get(), in.Get(), client.Get(), DM_IN_BUFFER | DM_OUT_BUFFER); });
}

TEST_F(OutOfMemory, DriverName)
{
    g_spooler = {};
    g_spooler.text = L"Tessary Universal EMF Driver";
    ExpectOutcomes(
        {{false, {"error PrintUtils::GetDriverName(): failed to allocate buffer (size = 512)"}}, {false, {}}},
        [] { return !PrintUtils::GetDriverName(L"Laser").empty(); });
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
    const Outcome notFetched = {false,
                                {"error GetDevModeByVPrinterName, failed to allocate memory 1332.",
                                 failed + "retrieve devmode for printer Office Laser"}};
    // The name, the copy, its control record, the names of the dump, the merged copy.
    ExpectOutcomes({{false, {failed + "get printer name from handle 0x12."}},
                    notFetched,
                    notFetched,
                    {true, {}},
                    {false, {"error MergeAndCopyDM, failed to allocate temp DEVMODE"}}},
                   [&] { return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)) == 1; });
}

TEST_F(OutOfMemory, NamesOfTheDump)
{
    // Without a buffer a name is given as "?" until there is memory again.
    ExpectOutcomes({{true, {}}},
                   []
                   {
                       const std::string_view name = PrintUtils::SourceName(300);
                       return (name == "?" || name == "300") && *PrintUtils::FieldsNames(DM_COPIES) == 'C';
                   });
}

} // namespace
} // namespace tsypr::test
