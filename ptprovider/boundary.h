// Keeps exceptions inside: what a method throws becomes its HRESULT and one line in the log.
#ifndef TESSARY_PTPROVIDER_BOUNDARY_H
#define TESSARY_PTPROVIDER_BOUNDARY_H

#include "module/log.h"
#include "printschema/automation.h"

#include <new>

namespace tsypr
{

// To be called while an exception is handled.
inline HRESULT ResultOfException(const char* function) noexcept
{
    HRESULT result = E_FAIL;
    try
    {
        throw;
    }
    catch (const _com_error& error)
    {
        result = error.Error();
    }
    catch (const std::bad_alloc&)
    {
        result = E_OUTOFMEMORY;
    }
    catch (...)
    {
        result = E_UNEXPECTED;
    }
    LogError("%s, failed with error 0x%x.\n", function, static_cast<unsigned>(result));
    return result;
}

// Runs the body of a method.
template <class Body>
HRESULT AtBoundary(const char* function, Body body) noexcept
{
    try
    {
        return body();
    }
    catch (...)
    {
        return ResultOfException(function);
    }
}

} // namespace tsypr

#endif
