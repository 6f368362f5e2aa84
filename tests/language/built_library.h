// The built language libraries, which lie beside the test programs.
#ifndef TESSARY_TESTS_LANGUAGE_BUILT_LIBRARY_H
#define TESSARY_TESTS_LANGUAGE_BUILT_LIBRARY_H

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>

namespace tsypr::language_tests
{

template <typename Handle, typename Close>
using Owner = std::unique_ptr<std::remove_pointer_t<Handle>, Close>;
using Module = Owner<HMODULE, decltype([](HMODULE module) { FreeLibrary(module); })>;

inline std::filesystem::path LibraryPath(const std::string& code)
{
    std::wstring program(MAX_PATH, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
    return std::filesystem::path(program).parent_path() / ("tsyprUI_" + code + ".dll");
}

} // namespace tsypr::language_tests

#endif
