#include "remote/driver_exports.h"
#include "tests/remote/fake_service.h"

#include <cstring>

namespace tsypr::test
{
namespace
{

constexpr DWORD kConvert = 1;
constexpr DWORD kDriverDefault = 4;
constexpr DWORD kUntouched = 0xABCD;
constexpr DWORD kDone = 0;
const std::string kEntry = "verbose DrvConvertDevMode, deviceName = srv\\Office Laser,4, ";

class DevModeConvert : public RemoteTest
{
protected:
    // The last error, `kDone` when the call succeeds.
    DWORD Call(DEVMODEW* in, DEVMODEW* out, LONG* needed, DWORD mode)
    {
        wchar_t name[] = L"srv\\Office Laser,4";
        SetLastError(kUntouched);
        const BOOL done = DrvConvertDevMode(name, in, out, needed, mode);
        return done ? kDone : GetLastError();
    }
};

TEST_F(DevModeConvert, DriverDefault)
{
    const DeviceMode client = ClientDeviceMode();
    service.devMode = client.Whole();
    LONG needed = 3;
    EXPECT_EQ(DWORD{ERROR_INSUFFICIENT_BUFFER}, Call(nullptr, nullptr, &needed, kDriverDefault));
    EXPECT_EQ(1332, needed);
    EXPECT_EQ((Messages{"open Office Laser", "getDevMode", "close", "freeDevMode"}), service.TakeCalls());
    const Messages messages = log.Take();
    EXPECT_EQ(kEntry + "pdmIn=0000000000000000, pdmOut=0000000000000000, fMode=4, cbNeeded=3", messages.front());
    EXPECT_EQ("verbose DrvConvertDevMode, desired buffer size=1332.", messages.back());

    DeviceMode out(220, 1113); // its contents do not matter, nor does the stated size
    needed = 0;
    EXPECT_EQ(kDone, Call(nullptr, out.Get(), &needed, kDriverDefault));
    EXPECT_EQ(1332, needed);
    EXPECT_EQ(client.Whole(), out.Whole());

    service.devMode.reset();
    needed = -5;
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, Call(nullptr, out.Get(), &needed, kDriverDefault));
    EXPECT_EQ(-5, needed);
    EXPECT_EQ("error DrvConvertDevMode, failed to retrieve devmode for printer Office Laser", log.Take().back());
    EXPECT_EQ(client.Whole(), out.Whole());
}

TEST_F(DevModeConvert, RefusesWhatItCannotConvert)
{
    DeviceMode in;
    DeviceMode out;
    DeviceMode nothing(0, 0);
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
                 {in.Get(), out.Get(), 1331, kConvert, {}},
                 {nullptr, out.Get(), -1, kConvert, {}},
                 {nothing.Get(), nothing.Get(), 0, kConvert, {}},
                 {nullptr, out.Get(), 1332, kConvert, {"error ConvertDevmode, Invalid arguments."}},
                 {in.Get(), out.Get(), 1332, 2, {notHandled + "2 is not handled."}},
                 {in.Get(), out.Get(), 1332, 0, {notHandled + "0 is not handled."}},
                 {in.Get(), out.Get(), 1332, 0xFFFFFFFF, {notHandled + "-1 is not handled."}}};
    for (const auto& one : cases)
    {
        LONG needed = one.needed;
        EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, Call(one.in, one.out, &needed, one.mode));
        EXPECT_EQ(one.needed, needed);
        EXPECT_EQ(one.errors, log.TakeErrors());
    }
    EXPECT_EQ(before, out.Whole());
    EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, Call(in.Get(), out.Get(), nullptr, kConvert));
    EXPECT_EQ(Messages{}, log.Take());
    EXPECT_EQ(Messages{}, service.TakeCalls());
    LONG needed = -7; // of a mode that is not handled the places are only logged
    Call(reinterpret_cast<DEVMODEW*>(0xAB12), reinterpret_cast<DEVMODEW*>(0x34), &needed, 5);
    EXPECT_EQ(kEntry + "pdmIn=000000000000AB12, pdmOut=0000000000000034, fMode=5, cbNeeded=-7", log.Take().front());
}

TEST_F(DevModeConvert, CopiesWhatBothHaveAndKeepsTheOutputsSizesAndVersions)
{
    const struct
    {
        WORD inSize, inExtra, outSize, outExtra;
    } cases[] = {{230, 1112, 220, 1112}, {156, 1200, 220, 1112}, {72, 5, 220, 3}, {220, 0, 72, 0}, {0, 5, 220, 1112}};
    for (const auto& one : cases)
    {
        DeviceMode in(one.inSize, one.inExtra, 0x11);
        DeviceMode out(one.outSize, one.outExtra, 0x22);
        DeviceMode expected = out;
        std::memcpy(static_cast<void*>(expected.Get()), in.Get(), std::min(one.inSize, one.outSize));
        std::memcpy(reinterpret_cast<BYTE*>(expected.Get()) + one.outSize,
                    reinterpret_cast<BYTE*>(in.Get()) + one.inSize,
                    std::min(one.inExtra, one.outExtra));
        expected->dmSpecVersion = out->dmSpecVersion;
        expected->dmDriverVersion = out->dmDriverVersion;
        expected->dmSize = one.outSize;
        expected->dmDriverExtra = one.outExtra;
        LONG needed = 70000;
        EXPECT_EQ(kDone, Call(in.Get(), out.Get(), &needed, kConvert));
        EXPECT_EQ(kUntouched, GetLastError());
        EXPECT_EQ(one.outSize + one.outExtra, needed);
        EXPECT_EQ(expected.Whole(), out.Whole());
    }
    DeviceMode same = ClientDeviceMode();
    const Bytes before = same.Whole();
    LONG needed = 1332;
    EXPECT_EQ(kDone, Call(same.Get(), same.Get(), &needed, kConvert));
    EXPECT_EQ(before, same.Whole());
}

} // namespace
} // namespace tsypr::test
