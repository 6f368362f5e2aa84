// Print schema documents for the tests, and what stands in a loaded one.
#ifndef TESSARY_TESTS_PRINTSCHEMA_DOCUMENTS_H
#define TESSARY_TESTS_PRINTSCHEMA_DOCUMENTS_H

#include "printschema/automation.h"
#include "ptprovider/xml_memory.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tsypr::test
{

// A thread that uses COM.
struct ComThread
{
    ComThread()
    {
        EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    }
    ~ComThread()
    {
        CoUninitialize();
    }
    ComThread(const ComThread&) = delete;
    ComThread& operator=(const ComThread&) = delete;
};

inline const std::string kFrameworkUri = "http://schemas.microsoft.com/windows/2003/08/printing/printschemaframework";

// `root` is PrintTicket or PrintCapabilities. The body uses psf, psk, xsi, xsd and the vendor's ns0000.
inline std::string Document(const std::string& root, const std::string& body, const std::string& uri = kFrameworkUri)
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<psf:)" + root +
           R"( xmlns:ns0000="http://vendor.example/laser" xmlns:psf=")" + uri +
           R"(" xmlns:psk="http://schemas.microsoft.com/windows/2003/08/printing/printschemakeywords")"
           R"( xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xmlns:xsd="http://www.w3.org/2001/XMLSchema")"
           R"( version="1">)" +
           body + "</psf:" + root + ">";
}
inline std::string Ticket(const std::string& body)
{
    return Document("PrintTicket", body);
}
inline std::string Capabilities(const std::string& body)
{
    return Document("PrintCapabilities", body);
}
inline std::string Feature(const std::string& name, const std::string& body)
{
    return "<psf:Feature name=\"" + name + "\">" + body + "</psf:Feature>";
}
inline std::string Option(const std::string& name, const std::string& body = "")
{
    return "<psf:Option" + (name.empty() ? "" : " name=\"" + name + "\"") + ">" + body + "</psf:Option>";
}
// An option that carries a number of pages.
inline std::string PagesOption(const std::string& value)
{
    return R"(<psf:Option><psf:ScoredProperty name="psk:PagesPerSheet"><psf:Value xsi:type="xsd:integer">)" + value +
           "</psf:Value></psf:ScoredProperty></psf:Option>";
}
inline std::string NamedOption(const std::string& name, const std::string& displayName)
{
    return Option(name,
                  R"(<psf:Property name="psk:DisplayName"><psf:Value xsi:type="xsd:string">)" + displayName +
                      "</psf:Value></psf:Property>");
}
inline std::string Nup(const std::string& pages, const std::string& direction)
{
    return Feature("psk:JobNUpAllDocumentsContiguously",
                   PagesOption(pages) + Feature("psk:PresentationDirection", Option(direction)));
}

inline std::vector<BYTE> BytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}
inline std::vector<BYTE> Utf16Of(std::string_view ascii, bool withMark)
{
    std::vector<BYTE> bytes = withMark ? std::vector<BYTE>{0xFF, 0xFE} : std::vector<BYTE>{};
    for (const char character : ascii)
    {
        bytes.insert(bytes.end(), {static_cast<BYTE>(character), 0});
    }
    return bytes;
}

inline ComPtr<IXMLDOMDocument2> Load(const std::vector<BYTE>& bytes)
{
    ComPtr<IXMLDOMDocument2> doc;
    EXPECT_EQ(S_OK, Mem2IXML(doc.GetAddressOf(), bytes.data(), static_cast<UINT>(bytes.size())));
    return doc;
}
inline ComPtr<IXMLDOMDocument2> Load(const std::string& text)
{
    return Load(BytesOf(text));
}

// The values of what the XPath question finds, in document order; namespaces as in Document().
inline std::vector<std::wstring> Find(IXMLDOMDocument2* doc, const std::wstring& query)
{
    const Bstr namespaces(L"xmlns:psf='" + std::wstring(kFrameworkUri.begin(), kFrameworkUri.end()) + L"'");
    doc->setProperty(Bstr(L"SelectionNamespaces").Get(), namespaces.Borrow());
    std::vector<std::wstring> found;
    ComPtr<IXMLDOMNodeList> nodes;
    if (doc->selectNodes(Bstr(query).Get(), nodes.GetAddressOf()) == S_OK)
    {
        for (long i = 0; i < LengthOf(nodes.Get()); ++i)
        {
            ReceivedBstr text;
            ItemOf(nodes.Get(), i)->get_text(text.Receive());
            found.emplace_back(text.Text());
        }
    }
    return found;
}

} // namespace tsypr::test

#endif
