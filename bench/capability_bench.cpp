#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/library.h"
#include "remote/driver_exports.h"

#include <wingdi.h>

#include <cstring>

namespace tsypr::bench
{
namespace
{

struct ServiceFunctions
{
    explicit ServiceFunctions(const Library& library)
    {
        library.Bind("VpOpenRemotePrinter", open);
        library.Bind("VpCloseRemotePrinter", close);
        library.Bind("VpGetDeviceCapabilities", capabilities);
        library.Bind("VpFreeDeviceCapabilities", freeCapabilities);
    }

    decltype(VpOpenRemotePrinter)* open;
    decltype(VpCloseRemotePrinter)* close;
    decltype(VpGetDeviceCapabilities)* capabilities;
    decltype(VpFreeDeviceCapabilities)* freeCapabilities;
};

LONG AskDirectly(const ServiceFunctions& service, const wchar_t* printer, WORD index, void* output)
{
    void* handle = nullptr;
    service.open(printer, &handle);
    DWORD size = 0;
    void* data = nullptr;
    LONG result = -1;
    service.capabilities(handle, index, &size, &data, 0, nullptr, &result);
    if (data != nullptr)
    {
        std::memcpy(output, data, size);
        service.freeCapabilities(data);
    }
    service.close(handle);
    return result;
}

struct Question
{
    const char* name;
    WORD index;
};
constexpr Question kQuestions[] = {{"capability query DC_PAPERS / direct", DC_PAPERS},
                                   {"capability query DC_PAPERNAMES / direct", DC_PAPERNAMES}};

} // namespace

void MeasureCapabilityQuery(Report& report)
{
    const Library module(L"tsyprui.dll");
    const Library library(L"tsyprserverapi.dll");
    const ServiceFunctions service(library);
    decltype(DrvDeviceCapabilities)* query = nullptr;
    module.Bind("DrvDeviceCapabilities", query);
    wchar_t printer[] = L"Office Laser";
    std::vector<std::byte> throughModule(64U * 1024U);
    std::vector<std::byte> direct(throughModule.size());
    for (const Question& question : kQuestions)
    {
        const auto viaModule = [&]
        { return static_cast<LONG>(query(nullptr, printer, question.index, throughModule.data(), nullptr)); };
        const auto viaService = [&] { return AskDirectly(service, printer, question.index, direct.data()); };
        if (viaModule() <= 0 || viaModule() != viaService() || throughModule != direct)
        {
            throw std::runtime_error("the module and the service answer differently");
        }
        const Comparison times = Compare(viaModule, viaService);
        AddRatio(report, question.name, times, 1.10, "module", "service");
    }
}

} // namespace tsypr::bench
