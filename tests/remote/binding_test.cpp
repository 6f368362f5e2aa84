#include "remote/remote_printer_service.h"
#include "tests/remote/log_capture.h"

#include <gtest/gtest.h>

#include <cstring>

namespace tsypr::test
{
namespace
{

constexpr wchar_t kLibrary[] = L"tsyprserverapi.dll";

// A library of the given name that is loaded already is the one that a plain file name finds.
HMODULE Preload(int missing)
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path);
    folder.resize(folder.rfind(L'\\') + 1);
    return LoadLibraryW((folder + L"binding_services\\" + std::to_wstring(missing) + L"\\" + kLibrary).c_str());
}

bool IsEmpty(const RemotePrinterService& service)
{
    const RemotePrinterService empty = {};
    return std::memcmp(&service, &empty, sizeof(empty)) == 0;
}

TEST(Binding, CompleteLibraryIsBoundUntilItIsFreed)
{
    LogCapture log;
    const HMODULE library = Preload(0);
    ASSERT_NE(nullptr, library);
    ASSERT_TRUE(InitServerApiLib());
    FreeLibrary(library);
    EXPECT_EQ(library, RemoteService.ServerApiModule);
    EXPECT_EQ(reinterpret_cast<void*>(GetProcAddress(library, "VpFreePTData")),
              reinterpret_cast<void*>(RemoteService.VpFreePTData));
    EXPECT_NE(nullptr, RemoteService.VpOpenRemotePrinter);
    FreeServerApiLib();
    EXPECT_TRUE(IsEmpty(RemoteService));
    EXPECT_EQ(nullptr, GetModuleHandleW(kLibrary));
    FreeServerApiLib();
    EXPECT_EQ(std::vector<std::string>{"info InitServerApiLib, succeeded to load server api library."}, log.Take());
}

TEST(Binding, LibraryThatLacksAnyOneFunctionIsReleased)
{
    for (int missing = 1; missing <= 8; ++missing)
    {
        SCOPED_TRACE(missing);
        LogCapture log;
        const HMODULE library = Preload(missing);
        ASSERT_NE(nullptr, library);
        EXPECT_FALSE(InitServerApiLib());
        FreeLibrary(library);
        EXPECT_TRUE(IsEmpty(RemoteService));
        EXPECT_EQ(nullptr, GetModuleHandleW(kLibrary));
        EXPECT_EQ((std::vector<std::string>{"info InitServerApiLib, succeeded to load server api library.",
                                            "error InitServerApiLib, GetProcAddress failed with error127."}),
                  log.Take());
    }
}

} // namespace
} // namespace tsypr::test
