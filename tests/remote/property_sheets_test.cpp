#include "ui/document_property_sheets.h"
#include "tests/remote/fake_service.h"
#include "tests/remote/fake_spooler.h"
#include "ui/document_property_header.h"

#include <algorithm>

namespace tsypr::test
{
namespace
{

class PropertiesWithoutUI : public RemoteTest
{
protected:
    PropertiesWithoutUI() : client(ClientDeviceMode())
    {
        service.devMode = client.Whole();
        header.cbSize = sizeof(header);
        header.hPrinter = INVALID_HANDLE_VALUE;
        header.pszPrinterName = sessionName;
        header.cbOut = 99;
    }

    LONG Call()
    {
        return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
    }

    wchar_t sessionName[300] = L"srv\\Other Laser,4";
    DeviceMode client;
    DeviceMode out{220, 1112, 0x5A};
    const Bytes before = out.Whole();
    DOCUMENTPROPERTYHEADER header = {};
};

TEST_F(PropertiesWithoutUI, GiveTheSize)
{
    for (const DWORD mode : {DWORD{0}, DWORD{DM_IN_BUFFER | DM_OUT_BUFFER}})
    {
        header.fMode = mode;
        header.pdmOut = mode == 0 ? out.Get() : nullptr;
        header.cbOut = 99;
        EXPECT_EQ(1332, Call());
        EXPECT_EQ(1332U, header.cbOut);
        EXPECT_EQ((Messages{"open Other Laser", "getDevMode", "close", "freeDevMode"}), service.TakeCalls());
        EXPECT_EQ("verbose DrvDocumentPropertySheets, prop hdr's printer name is srv\\Other Laser,4.",
                  log.Take().front());
    }
    EXPECT_EQ(before, out.Whole());
}

TEST_F(PropertiesWithoutUI, MergeIntoTheOutputUnderTheSessionPrintersName)
{
    DeviceMode in = client;
    in->dmFields = DM_COPIES;
    in->dmCopies = 3;
    header.pdmIn = in.Get();
    header.pdmOut = out.Get();
    header.fMode = DM_IN_BUFFER | DM_OUT_BUFFER;
    EXPECT_EQ(1, Call());
    EXPECT_EQ(99U, header.cbOut);
    EXPECT_EQ(3, out->dmCopies);
    EXPECT_EQ(L"Other Laser", Text(out.Private().printerName));
    Messages titles = log.Take();
    std::erase_if(titles, [](const std::string& message) { return !message.starts_with("verbose PrintUtils::"); });
    EXPECT_EQ((Messages{"verbose PrintUtils::DumpDevMode(): dm returned by VpGetDevMode():",
                        "verbose PrintUtils::DumpDevMode(): UIINFO is NULL, dmIn:",
                        "verbose PrintUtils::DumpDevMode(): UIINFO is NULL, dmOut:"}),
              titles);
    // A name of any length stays terminated inside its field; a block without a signature stays as it is.
    std::fill_n(sessionName, 290, L'x');
    header.pdmIn = nullptr;
    EXPECT_EQ(1, Call());
    EXPECT_EQ(std::wstring(255, L'x'), Text(out.Private().printerName));
    client.Private().signature = 0;
    service.devMode = client.Whole();
    EXPECT_EQ(1, Call());
    EXPECT_EQ(client.Whole(), out.Whole());
    client = DeviceMode(220, 893); // an extra area so small that the block lies over the sizes, which stay
    service.devMode = client.Whole();
    std::fill_n(sessionName, 290, L'\x1'); // these bytes would make sizes of 256
    EXPECT_EQ(1, Call());
    EXPECT_EQ(220, out->dmSize);
    EXPECT_EQ(893, out->dmDriverExtra);
    EXPECT_EQ(client->dmSpecVersion, out->dmSpecVersion);
}

TEST_F(PropertiesWithoutUI, FailuresGiveZeroAndLeaveTheOutput)
{
    header.pdmOut = out.Get();
    header.fMode = DM_OUT_BUFFER;
    wchar_t empty[] = L"";
    for (wchar_t* name : {empty, static_cast<wchar_t*>(nullptr)})
    {
        header.pszPrinterName = name;
        EXPECT_EQ(0, Call());
        EXPECT_EQ(Messages{"error DrvDocumentPropertySheets, failed to get printer name."}, log.Take());
    }
    EXPECT_EQ(Messages{}, service.TakeCalls());
    header.pszPrinterName = sessionName;
    service.devMode.reset();
    EXPECT_EQ(0, Call());
    const std::string notFetched =
        "error DrvDocumentPropertySheets, failed to retrieve devmode for printer Other Laser";
    EXPECT_EQ((Messages{"error GetDevModeByVPrinterName, failed to call VpGetDevMode.", notFetched}), log.TakeErrors());
    EXPECT_EQ((Messages{"open Other Laser", "getDevMode", "close"}), service.TakeCalls());
    service.opens = false;
    EXPECT_EQ(0, Call());
    EXPECT_EQ((Messages{"error GetDevModeByVPrinterName, failed to open remote printer Other Laser.", notFetched}),
              log.TakeErrors());
    EXPECT_EQ(Messages{"open Other Laser"}, service.TakeCalls());
    EXPECT_EQ(0, DrvDocumentPropertySheets(nullptr, 0));
    EXPECT_EQ(99U, header.cbOut);
    EXPECT_EQ(before, out.Whole());
}

TEST_F(PropertiesWithoutUI, TakeThePrintersNameFromItsHandle)
{
    g_spooler = {};
    g_spooler.text = L"srv\\Office Laser,5";
    header.hPrinter = reinterpret_cast<HANDLE>(0xAB12);
    EXPECT_EQ(1332, Call());
    EXPECT_EQ("open Office Laser", service.TakeCalls().front());
    EXPECT_EQ("verbose DrvDocumentPropertySheets, obtained printer name srv\\Office Laser,5 from handle 0xab12.",
              log.Take().front());
    g_spooler.dataError = ERROR_INVALID_HANDLE;
    EXPECT_EQ(0, Call());
    EXPECT_EQ(Messages{"error DrvDocumentPropertySheets, failed to get printer name from handle 0xab12."}, log.Take());
    g_spooler.infoSize = 0;
    EXPECT_EQ(0, Call());
    EXPECT_EQ(Messages{"error DrvDocumentPropertySheets, failed to get printer info size from handle 0xab12."},
              log.Take());
    EXPECT_EQ(Messages{}, service.TakeCalls());
}

} // namespace
} // namespace tsypr::test
