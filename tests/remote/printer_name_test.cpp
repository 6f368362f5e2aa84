#include "remote/printer_name.h"
#include "tests/remote/fake_service.h"
#include "tests/remote/fake_spooler.h"

namespace tsypr::test
{
namespace
{

TEST_F(RemoteTest, PrinterNameIsNormalised)
{
    const std::wstring longName(300, L'x');
    const std::wstring cutName(255, L'x');
    const std::pair<std::wstring, std::wstring> cases[] = {{L"srv\\Office Laser,Session 4", L"Office Laser"},
                                                           {L"Office Laser,Session 4", L"Office Laser"},
                                                           {L"srv\\Office Laser", L"srv\\Office Laser"},
                                                           {L"a\\b\\Laser,c\\d,e", L"Laser"},
                                                           {L"Laser,a\\b", L"Laser"},
                                                           {L"srv\\,Session", L""},
                                                           {L",srv\\Laser", L""},
                                                           {L"", L""},
                                                           {longName, cutName},
                                                           {L"srv\\" + longName + L",4", cutName},
                                                           {L"srv\\" + cutName + L",4", cutName}};
    for (const auto& [in, expected] : cases)
    {
        wchar_t out[kPrinterNameChars] = {};
        NormalizePrinterName(out, in.c_str());
        EXPECT_EQ(expected, out);
        const std::string from = "[" + std::string(in.begin(), in.end()) + "]";
        const std::string to = "[" + std::string(expected.begin(), expected.end()) + "]";
        const std::string message = in.find(L',') == std::wstring::npos
                                        ? "copy the original " + from + " as the normalized printer name."
                                        : "normalize printer name from " + from + " to " + to + ".";
        EXPECT_EQ(Messages{"verbose NormalizePrinterName, " + message}, log.Take());
    }
    wchar_t out[kPrinterNameChars] = {};
    NormalizePrinterName(out, nullptr);
    EXPECT_STREQ(L"", out);
}

TEST_F(RemoteTest, EveryStepToTheDriverNameClosesThePrinterAndReportsItsFailure)
{
    const std::string lead = "error PrintUtils::GetDriverName";
    const std::string sizeFailed = lead + "(): GetPrinterDriver() failed to return size (err=";
    const std::pair<SpoolerScript, Messages> cases[] = {
        {{}, {}},
        {{.openError = 5}, {lead + ", OpenPrinter failed with error=5"}},
        {{.sizeError = 5}, {sizeFailed + "5)"}},
        {{.sizeError = 0}, {sizeFailed + "0)"}},
        {{.dataError = 6}, {lead + "(): GetPrinterDriver(\"Laser\") failed (err=6)"}}};
    for (const auto& [script, errors] : cases)
    {
        g_spooler = script;
        g_spooler.text = L"Tessary Universal EMF Driver";
        EXPECT_EQ(errors.empty() ? g_spooler.text : L"", PrintUtils::GetDriverName(L"Laser"));
        EXPECT_EQ(0, g_spooler.stillOpen);
        EXPECT_EQ(errors, log.Take());
    }
}

} // namespace
} // namespace tsypr::test
