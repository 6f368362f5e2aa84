// XML documents to and from bytes, and the removal of single elements.
#ifndef TESSARY_PTPROVIDER_XML_MEMORY_H
#define TESSARY_PTPROVIDER_XML_MEMORY_H

#include "module/malloc_ptr.h"
#include "printschema/msxml.h"

#include <string>

namespace tsypr
{

// Loads XML text into *doc, whose content is replaced; a null *doc becomes a new document, which the caller releases
// also after a failure. Whatever the text is, loading it opens no file and no connection. Returns S_OK, S_FALSE for a
// text that is not well-formed or not acceptable, or an error. Throws _com_error when memory for a text runs out.
HRESULT Mem2IXML(IXMLDOMDocument2** doc, const BYTE* data, UINT size);

// Gives the XML text of *doc, in the document's own encoding. The caller releases *data with free(); on failure it is
// null. Returns S_OK or an error.
HRESULT IXML2Mem(BYTE** data, UINT* size, IXMLDOMDocument2** doc) noexcept;

// Removes the first element of that name with an attribute of that value, in any letter case. Returns whether one was
// removed. Throws _com_error when memory for a text runs out.
bool RemoveXmlNode(IXMLDOMDocument2** doc,
                   const std::wstring& tagName,
                   const std::wstring& attributeName,
                   const std::wstring& attributeValue);

// The text of a document, as IXML2Mem gives it.
class XmlText
{
public:
    // S_OK, or what IXML2Mem reports; then this is empty.
    HRESULT Take(IXMLDOMDocument2* doc) noexcept
    {
        BYTE* data = nullptr;
        const HRESULT result = IXML2Mem(&data, &m_size, &doc);
        m_data.reset(data);
        return result;
    }
    void Free() noexcept
    {
        m_data.reset();
        m_size = 0;
    }
    const BYTE* Data() const noexcept
    {
        return m_data.get();
    }
    UINT Size() const noexcept
    {
        return m_size;
    }

private:
    MallocPtr<BYTE> m_data;
    UINT m_size = 0;
};

} // namespace tsypr

#endif
