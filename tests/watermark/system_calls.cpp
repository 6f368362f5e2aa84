#include "tests/watermark/system_calls.h"

#include <iterator>
#include <map>
#include <mutex>
#include <set>
#include <tuple>

namespace tsypr::test
{

int g_dotsPerInch = 0;
std::function<BOOL(CHOOSEFONTW&)> g_chooseFont;

namespace
{

enum class Effect
{
    None,
    Creates,
    Deletes // what the last argument names
};

std::mutex g_lock; // the windows of other threads are nobody's concern, but their calls come here too
std::map<std::string, int> g_failures;
std::string* g_calls = nullptr;
std::multiset<const void*> g_live;

bool Fails(const char* name)
{
    const std::lock_guard lock(g_lock);
    if (g_calls != nullptr)
    {
        *g_calls += std::string(name) + ' ';
    }
    const auto failure = g_failures.find(name);
    return failure != g_failures.end() && --failure->second == 0;
}

template <typename Function>
struct Call;

template <typename Result, typename... Arguments>
struct Call<Result(WINAPI*)(Arguments...)>
{
    template <auto& real, auto& name, Effect effect, auto failure>
    static Result WINAPI Run(Arguments... arguments)
    {
        const bool fails = Fails(name);
        const Result result = fails ? failure : real(arguments...);
        const DWORD error = fails ? ERROR_NOT_ENOUGH_MEMORY : GetLastError();
        const std::lock_guard lock(g_lock);
        if constexpr (effect == Effect::Creates)
        {
            g_live.insert(result);
            g_live.erase(nullptr);
        }
        if constexpr (effect == Effect::Deletes)
        {
            const auto live = g_live.find(std::get<sizeof...(Arguments) - 1>(std::tuple(arguments...)));
            g_live.erase(live, live != g_live.end() ? std::next(live) : live);
        }
        SetLastError(error);
        return result;
    }
};

} // namespace

void FailCall(const std::string& function, int n)
{
    g_failures[function] = n;
}

void NoteCalls(std::string* calls)
{
    g_calls = calls;
}

size_t LiveObjects()
{
    return g_live.size();
}

bool IsLive(HGDIOBJ object)
{
    return g_live.contains(object);
}

} // namespace tsypr::test

using namespace tsypr::test;

#define TESSARY_CALL(function, effect, failure)                                                                        \
    extern "C" decltype(&(function)) __real___imp_##function;                                                          \
    static constexpr char k##function[] = #function;                                                                   \
    extern "C" decltype(&(function)) __wrap___imp_##function;                                                          \
    decltype(&(function)) __wrap___imp_##function =                                                                    \
        Call<decltype(&(function))>::Run<__real___imp_##function, k##function, Effect::effect, failure>;

TESSARY_CALL(BitBlt, None, FALSE)
TESSARY_CALL(CreateCompatibleBitmap, Creates, nullptr)
TESSARY_CALL(CreateCompatibleDC, Creates, nullptr)
TESSARY_CALL(CreateDIBSection, Creates, nullptr)
TESSARY_CALL(CreateFontIndirectW, Creates, nullptr)
TESSARY_CALL(CreateThread, None, nullptr)
TESSARY_CALL(CreateWindowExW, None, nullptr)
TESSARY_CALL(DeleteDC, Deletes, FALSE)
TESSARY_CALL(DeleteObject, Deletes, FALSE)
TESSARY_CALL(GetDC, Creates, nullptr)
TESSARY_CALL(GetObjectW, None, 0)
TESSARY_CALL(LoadImageW, Creates, nullptr)
TESSARY_CALL(RegCreateKeyExW, None, LSTATUS{ERROR_ACCESS_DENIED})
TESSARY_CALL(RegisterClassExW, None, ATOM{0})
TESSARY_CALL(ReleaseDC, Deletes, 0)
TESSARY_CALL(SelectObject, None, nullptr)
TESSARY_CALL(SetBkMode, None, 0)
TESSARY_CALL(SetTextAlign, None, GDI_ERROR)
TESSARY_CALL(SetTextColor, None, CLR_INVALID)
TESSARY_CALL(TextOutW, None, FALSE)

extern "C"
{
    extern decltype(&GetDeviceCaps) __real___imp_GetDeviceCaps, __wrap___imp_GetDeviceCaps;
    extern decltype(&GetProcAddress) __real___imp_GetProcAddress, __wrap___imp_GetProcAddress;
}

decltype(&GetDeviceCaps) __wrap___imp_GetDeviceCaps = [](HDC dc, int index)
{
    const bool asksForDots = index == LOGPIXELSX || index == LOGPIXELSY;
    return asksForDots && g_dotsPerInch != 0 ? g_dotsPerInch : __real___imp_GetDeviceCaps(dc, index);
};

decltype(&GetProcAddress) __wrap___imp_GetProcAddress = [](HMODULE module, LPCSTR name) -> FARPROC
{
    FARPROC real = __real___imp_GetProcAddress(module, name);
    if (HIWORD(reinterpret_cast<uintptr_t>(name)) == 0 || std::string(name) != "ChooseFontW" || real == nullptr)
    {
        return real;
    }
    BOOL(WINAPI * standIn)(CHOOSEFONTW*) = [](CHOOSEFONTW* options) { return g_chooseFont(*options); };
    return g_chooseFont != nullptr ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(standIn)) : nullptr;
};
