// Device modes of every size against inaccessible pages: an access outside of one ends the process.
#include "remote/devmode_dump.h"
#include "remote/devmode_merge.h"
#include "remote/driver_exports.h"
#include "tests/remote/fake_service.h"
#include "ui/document_property_header.h"
#include "ui/document_property_sheets.h"

#include <functional>

namespace tsypr::test
{
namespace
{

constexpr DWORD kBoth = DM_IN_BUFFER | DM_OUT_BUFFER;
constexpr WORD kExtras[] = {0, 1, 2, 3, 1112, 1113, 1114, 1115, 4000};

// A device mode whose every field is set and whose every text is unterminated.
DeviceMode FullDeviceMode(WORD size, WORD extra)
{
    DeviceMode dm(size, extra, 0x77);
    if (size >= offsetof(DEVMODEW, dmFields) + sizeof(DWORD))
    {
        dm->dmFields = 0xFFFFFFFF;
    }
    if (size >= offsetof(DEVMODEW, dmPaperSize) + sizeof(short))
    {
        dm->dmPaperSize = 9;
    }
    return dm;
}

class GuardPages : public RemoteTest
{
protected:
    GuardPages()
    {
        service.devMode = ClientDeviceMode().Whole();
        service.capabilities[DC_PAPERS] = ListReply<uint16_t>(4000, {1, 9});
        service.capabilities[DC_PAPERSIZE] = ListReply<POINT>(4000, {{2159, 2794}}); // none for A4
        service.capabilities[DC_MEDIATYPES] = ListReply<uint32_t>(4000, {0x77777777});
        service.notesCalls = false;
    }

    void ForEachDeviceMode(WORD step, const std::function<void(DEVMODEW* dm)>& use)
    {
        for (WORD size = 72; size <= 224; size = static_cast<WORD>(size + step))
        {
            for (const WORD extra : kExtras)
            {
                const DeviceMode model = FullDeviceMode(size, extra);
                for (const Against side : {Against::PageBehind, Against::PageBefore})
                {
                    const GuardedMemory memory(model.Get(), DevModeTotalSize(model.Get()), side);
                    use(memory.Get<DEVMODEW>());
                    ASSERT_EQ(size, memory.Get<DEVMODEW>()->dmSize);
                    ASSERT_EQ(extra, memory.Get<DEVMODEW>()->dmDriverExtra);
                }
            }
        }
    }
};

TEST_F(GuardPages, MergeAsInput)
{
    const DeviceMode current = ClientDeviceMode();
    const auto use = [&](DEVMODEW* dm)
    {
        DeviceMode out;
        ASSERT_TRUE(MergeAndCopyDM(out.Get(), dm, current.Get(), kBoth));
        ASSERT_EQ(dm->dmSize >= offsetof(DEVMODEW, dmCopies) + sizeof(short) ? 0x7777 : 0, out->dmCopies) << dm->dmSize;
        const bool hasMediaType = dm->dmSize >= offsetof(DEVMODEW, dmMediaType) + sizeof(DWORD);
        ASSERT_EQ(hasMediaType ? 0x77777777U : 0U, out->dmMediaType) << dm->dmSize;
        const bool hasBlock = DevModeTotalSize(dm) > kPrivateDevModeSize;
        ASSERT_EQ(hasBlock ? 0x77777777U : 1U, out.Private().compression) << dm->dmSize << " " << dm->dmDriverExtra;
    };
    ForEachDeviceMode(1, use);
}

TEST_F(GuardPages, MergeAsOutputAndCurrentAndConvert)
{
    DeviceMode other = FullDeviceMode(220, 1112);
    const auto use = [&](DEVMODEW* dm)
    {
        ASSERT_TRUE(MergeAndCopyDM(dm, other.Get(), dm, kBoth));
        ASSERT_TRUE(MergeAndCopyDM(dm, dm, dm, DM_IN_BUFFER));
        LONG needed = static_cast<LONG>(DevModeTotalSize(dm));
        ASSERT_TRUE(DrvConvertDevMode(nullptr, other.Get(), dm, &needed, 1));
        needed = 1332;
        DeviceMode out;
        ASSERT_TRUE(DrvConvertDevMode(nullptr, dm, out.Get(), &needed, 1));
    };
    ForEachDeviceMode(1, use);
}

TEST_F(GuardPages, DumpCapabilitiesAndPropertySheets)
{
    wchar_t name[] = L"Office Laser";
    const auto use = [&](DEVMODEW* dm)
    {
        PrintUtils::DumpDevMode(dm, L"guarded");
        BYTE output[64] = {};
        ASSERT_EQ(4000U, DrvDeviceCapabilities(nullptr, name, DC_PAPERS, output, dm));
        DeviceMode out;
        DOCUMENTPROPERTYHEADER header = {};
        header.hPrinter = INVALID_HANDLE_VALUE;
        header.pszPrinterName = name;
        header.fMode = kBoth;
        header.pdmIn = dm;
        header.pdmOut = out.Get();
        ASSERT_EQ(1, DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)));
        // The client's own device mode may be just as odd.
        service.devMode = Bytes(reinterpret_cast<BYTE*>(dm), reinterpret_cast<BYTE*>(dm) + DevModeTotalSize(dm));
        DeviceMode large(65000, 5000);
        header.pdmIn = nullptr;
        header.pdmOut = large.Get();
        ASSERT_EQ(1, DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)));
        ASSERT_EQ(dm->dmSize, large->dmSize);
        service.devMode = ClientDeviceMode().Whole();
    };
    ForEachDeviceMode(7, use);
    log.Take(); // every line is whole
}

} // namespace
} // namespace tsypr::test
