// Owners of the types of OLE automation, and steps through documents that come back empty instead of with an error.
#ifndef TESSARY_PRINTSCHEMA_AUTOMATION_H
#define TESSARY_PRINTSCHEMA_AUTOMATION_H

#include "printschema/msxml.h"

#include <comdef.h>
#include <oleauto.h>

#include <cstring>
#include <initializer_list>
#include <string_view>

namespace tsypr
{

// A text for a COM call. When memory runs out, making one throws _com_error with E_OUTOFMEMORY.
class Bstr
{
public:
    explicit Bstr(std::wstring_view text) : Bstr({text}) {}
    // All pieces joined.
    Bstr(std::initializer_list<std::wstring_view> pieces)
    {
        size_t length = 0;
        for (const std::wstring_view piece : pieces)
        {
            length += piece.size();
        }
        m_text = SysAllocStringLen(nullptr, static_cast<UINT>(length));
        if (m_text == nullptr)
        {
            throw _com_error(E_OUTOFMEMORY);
        }
        wchar_t* place = m_text;
        for (const std::wstring_view piece : pieces)
        {
            place += piece.copy(place, piece.size());
        }
    }
    ~Bstr()
    {
        SysFreeString(m_text);
    }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR Get() const noexcept
    {
        return m_text;
    }
    // The text as a variant that borrows it: it must not be cleared.
    VARIANT Borrow() const noexcept
    {
        VARIANT value = {};
        value.vt = VT_BSTR;
        value.bstrVal = m_text;
        return value;
    }

private:
    BSTR m_text = nullptr;
};

// Receives a value from a COM call.
class Variant
{
public:
    Variant() noexcept
    {
        VariantInit(&m_value);
    }
    ~Variant()
    {
        VariantClear(&m_value);
    }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    // For one call to fill.
    VARIANT* Receive() noexcept
    {
        VariantClear(&m_value);
        return &m_value;
    }
    const VARIANT& Get() const noexcept
    {
        return m_value;
    }
    bool IsText() const noexcept
    {
        return m_value.vt == VT_BSTR;
    }
    // Valid as long as the variant keeps its value; empty unless it is a text.
    std::wstring_view Text() const noexcept
    {
        return IsText() && m_value.bstrVal != nullptr
                   ? std::wstring_view(m_value.bstrVal, SysStringLen(m_value.bstrVal))
                   : std::wstring_view();
    }

private:
    VARIANT m_value;
};

// Receives a text from a COM call.
class ReceivedBstr
{
public:
    ReceivedBstr() noexcept = default;
    ~ReceivedBstr()
    {
        SysFreeString(m_text);
    }
    ReceivedBstr(const ReceivedBstr&) = delete;
    ReceivedBstr& operator=(const ReceivedBstr&) = delete;

    BSTR* Receive() noexcept
    {
        return &m_text;
    }
    std::wstring_view Text() const noexcept
    {
        return {m_text, SysStringLen(m_text)};
    }

private:
    BSTR m_text = nullptr;
};

// An item of a list; empty when the list has none at that place.
inline ComPtr<IXMLDOMNode> ItemOf(IXMLDOMNodeList* list, long index) noexcept
{
    ComPtr<IXMLDOMNode> item;
    return list->get_item(index, item.GetAddressOf()) == S_OK ? item : nullptr;
}

// The number of items; 0 when it cannot be told.
inline long LengthOf(IXMLDOMNodeList* list) noexcept
{
    long length = 0;
    return list->get_length(&length) == S_OK ? length : 0;
}

// The node as an element; empty when it is none.
inline ComPtr<IXMLDOMElement> ElementOf(IXMLDOMNode* node) noexcept
{
    ComPtr<IXMLDOMElement> element;
    if (node != nullptr)
    {
        node->QueryInterface(IID_IXMLDOMElement, reinterpret_cast<void**>(element.GetAddressOf()));
    }
    return element;
}

} // namespace tsypr

#endif
