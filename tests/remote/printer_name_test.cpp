#include "remote/printer_name.h"
#include "tests/remote/fake_service.h"
#include "tests/remote/fake_spooler.h"

namespace tsypr::test
{
namespace
{

using Messages = std::vector<std::string>;

TEST(PrinterName, IsNormalised)
{
    const std::wstring longName(300, L'x');
    const std::wstring cutName(255, L'x');
    const struct
    {
        std::wstring in;
        std::wstring out;
    } cases[] = {{L"srv\\Office Laser,Session 4", L"Office Laser"},
                 {L"Office Laser,Session 4", L"Office Laser"},
                 {L"Office Laser", L"Office Laser"},
                 {L"srv\\Office Laser", L"srv\\Office Laser"},
                 {L"a\\b\\Laser,c\\d,e", L"Laser"},
                 {L"Laser,a\\b", L"Laser"},
                 {L"srv\\,Session", L""},
                 {L",srv\\Laser", L""},
                 {L",", L""},
                 {L"", L""},
                 {longName, cutName},
                 {L"srv\\" + longName + L",4", cutName},
                 {L"srv\\" + cutName + L",4", cutName}};
    for (const auto& one : cases)
    {
        LogCapture log;
        wchar_t out[kPrinterNameChars] = {};
        NormalizePrinterName(out, one.in.c_str());
        EXPECT_EQ(one.out, out);
        const std::string in(one.in.begin(), one.in.end());
        const std::string expected(one.out.begin(), one.out.end());
        EXPECT_EQ(
            Messages{
                one.in.find(L',') == std::wstring::npos
                    ? "verbose NormalizePrinterName, copy the original [" + in + "] as the normalized printer name."
                    : "verbose NormalizePrinterName, normalize printer name from [" + in + "] to [" + expected + "]."},
            log.Take());
    }
    wchar_t out[kPrinterNameChars] = {};
    NormalizePrinterName(out, nullptr);
    EXPECT_STREQ(L"", out);
}

TEST_F(RemoteTest, OpeningNormalisesTheNameAndLogsNoError)
{
    const RemotePrinterHandle handle = OpenRemotePrinterByName(L"srv\\Office Laser,4");
    ASSERT_NE(nullptr, handle);
    RemoteService.VpCloseRemotePrinter(handle);
    service.opens = false;
    EXPECT_EQ(nullptr, OpenRemotePrinterByName(L"Other"));
    EXPECT_EQ((Messages{"open Office Laser", "close", "open Other"}), service.TakeCalls());
    EXPECT_EQ(Messages{}, log.TakeErrors());
}

TEST(DriverName, OfAPrinterThatDoesNotExistIsEmpty)
{
    LogCapture log;
    EXPECT_EQ(L"", PrintUtils::GetDriverName(L"No Such Printer"));
    EXPECT_EQ(Messages{"error PrintUtils::GetDriverName, OpenPrinter failed with error=" +
                       std::to_string(ERROR_INVALID_PRINTER_NAME)},
              log.Take());
}

TEST(DriverName, EveryStepClosesThePrinterAndReportsItsFailure)
{
    const struct
    {
        DWORD openError;
        DWORD sizeError;
        DWORD dataError;
        std::wstring name;
        Messages errors;
    } cases[] = {
        {0, 122, 0, L"Tessary Universal EMF Driver", {}},
        {5, 122, 0, L"", {"error PrintUtils::GetDriverName, OpenPrinter failed with error=5"}},
        {0, 5, 0, L"", {"error PrintUtils::GetDriverName(): GetPrinterDriver() failed to return size (err=5)"}},
        {0, 0, 0, L"", {"error PrintUtils::GetDriverName(): GetPrinterDriver() failed to return size (err=0)"}},
        {0, 122, 6, L"", {"error PrintUtils::GetDriverName(): GetPrinterDriver(\"Laser\") failed (err=6)"}}};
    for (const auto& one : cases)
    {
        LogCapture log;
        FakeSpooler spooler;
        spooler.openError = one.openError;
        spooler.sizeError = one.sizeError;
        spooler.dataError = one.dataError;
        spooler.text = L"Tessary Universal EMF Driver";
        EXPECT_EQ(one.name, PrintUtils::GetDriverName(L"Laser"));
        EXPECT_EQ(one.openError == 0 ? 1 : 0, spooler.opened);
        EXPECT_EQ(spooler.opened, spooler.closed);
        EXPECT_EQ(one.errors, log.Take());
    }
}

} // namespace
} // namespace tsypr::test
