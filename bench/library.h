// A library loaded for a while, and its functions by name.
#ifndef TESSARY_BENCH_LIBRARY_H
#define TESSARY_BENCH_LIBRARY_H

#include <windows.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace tsypr::bench
{

struct LibraryDeleter
{
    using pointer = HMODULE;
    void operator()(HMODULE library) const noexcept
    {
        FreeLibrary(library);
    }
};

class Library
{
public:
    // Throws std::runtime_error when the library does not load.
    explicit Library(const wchar_t* fileName) : m_library(LoadLibraryW(fileName))
    {
        if (m_library == nullptr)
        {
            const std::wstring name = fileName;
            throw std::runtime_error("cannot load " + std::string(name.begin(), name.end()) + ", error " +
                                     std::to_string(GetLastError()));
        }
    }

    // Stores the export of that name; throws when there is none.
    template <class Function>
    void Bind(const char* name, Function*& function) const
    {
        function = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_library.get(), name)));
        if (function == nullptr)
        {
            throw std::runtime_error(std::string("missing export ") + name);
        }
    }

private:
    std::unique_ptr<HMODULE, LibraryDeleter> m_library;
};

} // namespace tsypr::bench

#endif
