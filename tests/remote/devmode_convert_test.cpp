#include "remote/devmode_fetch.h"
#include "remote/driver_exports.h"
#include "tests/remote/fake_service.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace tsypr::test
{
namespace
{

using Messages = std::vector<std::string>;

constexpr DWORD kConvert = 1;
constexpr DWORD kConvert351 = 2;
constexpr DWORD kDriverDefault = 4;
constexpr DWORD kUntouched = 0xABCD;

wchar_t g_sessionName[] = L"srv\\Office Laser,4";

class DevModeFetch : public RemoteTest
{
};
class DevModeConvert : public RemoteTest
{
protected:
    BOOL Call(DEVMODEW* in, DEVMODEW* out, LONG* needed, DWORD mode)
    {
        SetLastError(kUntouched);
        const BOOL done = DrvConvertDevMode(g_sessionName, in, out, needed, mode);
        lastError = GetLastError();
        return done;
    }

    DWORD lastError = 0;
};

std::string EntryMessage(const void* in, const void* out, DWORD mode, LONG needed)
{
    char text[200];
    std::snprintf(text,
                  sizeof(text),
                  "verbose DrvConvertDevMode, deviceName = srv\\Office Laser,4, pdmIn=%016" PRIXPTR
                  ", pdmOut=%016" PRIXPTR ", fMode=%d, cbNeeded=%d",
                  reinterpret_cast<uintptr_t>(in),
                  reinterpret_cast<uintptr_t>(out),
                  static_cast<int>(mode),
                  static_cast<int>(needed));
    return text;
}

TEST_F(DevModeFetch, CopiesDumpsAndGivesBack)
{
    const DeviceMode client = ClientDeviceMode();
    service.devMode = client.Whole();
    const SharedDevMode fetched = GetDevModeByVPrinterName(L"taken,as it is");
    ASSERT_NE(nullptr, fetched);
    EXPECT_EQ(0, std::memcmp(fetched.get(), client.Get(), DevModeTotalSize(client.Get())));
    EXPECT_EQ((Messages{"open taken,as it is", "getDevMode", "close", "freeDevMode"}), service.TakeCalls());
    const Messages messages = log.Take();
    ASSERT_GT(messages.size(), 30U);
    EXPECT_EQ("verbose PrintUtils::DumpDevMode(): dm returned by VpGetDevMode():", messages[0]);
    EXPECT_EQ("verbose    pDevMode.dmDeviceName = \"Office Laser\"", messages[1]);
}

TEST_F(DevModeFetch, FailuresAreReported)
{
    EXPECT_EQ(nullptr, GetDevModeByVPrinterName(L"Laser"));
    EXPECT_EQ((Messages{"open Laser", "getDevMode", "close"}), service.TakeCalls());
    EXPECT_EQ(Messages{"error GetDevModeByVPrinterName, failed to call VpGetDevMode."}, log.Take());
    service.opens = false;
    EXPECT_EQ(nullptr, GetDevModeByVPrinterName(L"Laser"));
    EXPECT_EQ(Messages{"open Laser"}, service.TakeCalls());
    EXPECT_EQ(Messages{"error GetDevModeByVPrinterName, failed to open remote printer Laser."}, log.Take());
}

TEST_F(DevModeConvert, RefusesWithoutAPlaceForTheSize)
{
    DeviceMode dm;
    EXPECT_FALSE(Call(dm.Get(), dm.Get(), nullptr, kConvert));
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, lastError);
    EXPECT_EQ(Messages{}, log.Take());
}

TEST_F(DevModeConvert, DriverDefault)
{
    const DeviceMode client = ClientDeviceMode();
    service.devMode = client.Whole();
    LONG needed = 3;
    EXPECT_FALSE(Call(nullptr, nullptr, &needed, kDriverDefault));
    EXPECT_EQ(DWORD{ERROR_INSUFFICIENT_BUFFER}, lastError);
    EXPECT_EQ(1332, needed);
    EXPECT_EQ((Messages{"open Office Laser", "getDevMode", "close", "freeDevMode"}), service.TakeCalls());
    Messages messages = log.Take();
    EXPECT_EQ(EntryMessage(nullptr, nullptr, kDriverDefault, 3), messages.front());
    EXPECT_EQ("verbose DrvConvertDevMode, desired buffer size=1332.", messages.back());

    DeviceMode out(220, 1113); // its contents do not matter, nor does the stated size
    needed = 0;
    EXPECT_TRUE(Call(nullptr, out.Get(), &needed, kDriverDefault));
    EXPECT_EQ(1332, needed);
    EXPECT_EQ(client.Whole(), out.Whole());

    service.devMode.reset();
    needed = -5;
    log.Take();
    EXPECT_FALSE(Call(nullptr, out.Get(), &needed, kDriverDefault));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, lastError);
    EXPECT_EQ(-5, needed);
    EXPECT_EQ("error DrvConvertDevMode, failed to retrieve devmode for printer Office Laser", log.Take().back());
    EXPECT_EQ(client.Whole(), out.Whole());
}

TEST_F(DevModeConvert, RefusesWhatItCannotConvert)
{
    DeviceMode in;
    DeviceMode out;
    const Bytes before = out.Whole();
    const std::string notHandled = "error DrvConvertDevMode, fMode=";
    const struct
    {
        DEVMODEW* in;
        DEVMODEW* out;
        LONG needed;
        DWORD mode;
        Messages errors;
    } cases[] = {{in.Get(), nullptr, 1332, kConvert, {}},
                 {nullptr, nullptr, 1332, kConvert, {}},
                 {in.Get(), out.Get(), 1331, kConvert, {}},
                 {in.Get(), out.Get(), 0, kConvert, {}},
                 {in.Get(), out.Get(), -1, kConvert, {}},
                 {nullptr, out.Get(), -1, kConvert, {}},
                 {nullptr, out.Get(), 1332, kConvert, {"error ConvertDevmode, Invalid arguments."}},
                 {in.Get(), out.Get(), 1332, kConvert351, {notHandled + "2 is not handled."}},
                 {in.Get(), out.Get(), 1332, 0, {notHandled + "0 is not handled."}},
                 {in.Get(), out.Get(), 1332, 5, {notHandled + "5 is not handled."}},
                 {in.Get(), out.Get(), 1332, 0xFFFFFFFF, {notHandled + "-1 is not handled."}}};
    for (const auto& one : cases)
    {
        LONG needed = one.needed;
        EXPECT_FALSE(Call(one.in, one.out, &needed, one.mode));
        EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, lastError);
        EXPECT_EQ(one.needed, needed);
        const Messages messages = log.Take();
        EXPECT_EQ(EntryMessage(one.in, one.out, one.mode, one.needed), messages.front());
        EXPECT_EQ(one.errors, Messages(messages.begin() + 1, messages.end()));
    }
    EXPECT_EQ(before, out.Whole());
    DeviceMode nothing(0, 0);
    LONG needed = 0;
    EXPECT_FALSE(Call(nothing.Get(), nothing.Get(), &needed, kConvert));
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, lastError);
    EXPECT_EQ(Messages{}, service.TakeCalls());
}

TEST_F(DevModeConvert, CopiesWhatBothHaveAndKeepsTheOutputsSizesAndVersions)
{
    const struct
    {
        WORD inSize, inExtra, outSize, outExtra;
    } cases[] = {{220, 1112, 220, 1112},
                 {230, 1112, 220, 1112},
                 {220, 1112, 230, 1112},
                 {156, 1200, 220, 1112},
                 {220, 1112, 220, 1200},
                 {72, 5, 220, 3},
                 {220, 0, 72, 0},
                 {0, 5, 220, 1112}};
    for (const auto& one : cases)
    {
        DeviceMode in(one.inSize, one.inExtra, 0x11);
        DeviceMode out(one.outSize, one.outExtra, 0x22);
        DeviceMode expected(one.outSize, one.outExtra, 0x22);
        std::memcpy(static_cast<void*>(expected.Get()), in.Get(), std::min(one.inSize, one.outSize));
        std::memcpy(reinterpret_cast<BYTE*>(expected.Get()) + one.outSize,
                    reinterpret_cast<BYTE*>(in.Get()) + one.inSize,
                    std::min(one.inExtra, one.outExtra));
        expected->dmSpecVersion = out->dmSpecVersion;
        expected->dmDriverVersion = out->dmDriverVersion;
        expected->dmSize = one.outSize;
        expected->dmDriverExtra = one.outExtra;
        LONG needed = 70000;
        EXPECT_TRUE(Call(in.Get(), out.Get(), &needed, kConvert));
        EXPECT_EQ(one.outSize + one.outExtra, needed);
        EXPECT_EQ(kUntouched, lastError);
        EXPECT_EQ(expected.Whole(), out.Whole());
    }
    DeviceMode same = ClientDeviceMode();
    const Bytes before = same.Whole();
    LONG needed = 1332;
    EXPECT_TRUE(Call(same.Get(), same.Get(), &needed, kConvert));
    EXPECT_EQ(before, same.Whole());
}

} // namespace
} // namespace tsypr::test
