// What the module relies on in Windows' XML documents. Under Wine it holds when tools/domrepair is registered.
#include "tests/printschema/documents.h"
#include "tests/remote/log_capture.h"

namespace tsypr::test
{
namespace
{

class Documents : public testing::Test
{
protected:
    ComThread com;
    ComPtr<IXMLDOMDocument2> doc;

    Documents()
    {
        CoCreateInstance(kClsidDomDocument60,
                         nullptr,
                         CLSCTX_ALL,
                         kIidXmlDomDocument2,
                         reinterpret_cast<void**>(doc.GetAddressOf()));
    }

    // The result of loading; whether there is a document afterwards must agree with it.
    HRESULT LoadText(const std::wstring& text)
    {
        VARIANT_BOOL loaded = 7;
        const HRESULT result = doc->loadXML(Bstr(text).Get(), &loaded);
        ComPtr<IXMLDOMElement> root;
        doc->get_documentElement(root.GetAddressOf());
        EXPECT_EQ(result == S_OK ? VARIANT_TRUE : VARIANT_FALSE, loaded);
        EXPECT_EQ(result == S_OK, root != nullptr);
        return result;
    }
    std::string Saved()
    {
        XmlText text;
        EXPECT_EQ(S_OK, text.Take(doc.Get()));
        return {text.Data(), text.Data() + text.Size()};
    }
};

TEST_F(Documents, WhatDoesNotLoadLeavesAnEmptyDocument)
{
    EXPECT_EQ(S_OK, LoadText(L"<a/>"));
    for (const wchar_t* text : {L"", L"<a>", L"text", L"<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>"})
    {
        EXPECT_EQ(S_FALSE, LoadText(text)) << text;
        EXPECT_EQ(S_OK, LoadText(L"<a/>"));
    }
    VARIANT no = {};
    no.vt = VT_BOOL;
    EXPECT_EQ(S_OK, doc->setProperty(Bstr(L"ProhibitDTD").Get(), no));
    EXPECT_EQ(S_OK, LoadText(L"<!DOCTYPE a><a/>"));
}

TEST_F(Documents, ElementsAreFoundByTheirWholeNames)
{
    LoadText(L"<p:a xmlns:p='u' xmlns:q='u'><q:b/><p:b><p:b/></p:b><b/></p:a>");
    ComPtr<IXMLDOMElement> root;
    doc->get_documentElement(root.GetAddressOf());
    for (const auto& [name, count] :
         {std::pair(L"p:b", 2), {L"q:b", 1}, {L"b", 1}, {L"*", 5}, {L"p:c", 0}, {L"p:a", 1}})
    {
        ComPtr<IXMLDOMNodeList> inDocument, inElement;
        EXPECT_EQ(S_OK, doc->getElementsByTagName(Bstr(name).Get(), inDocument.GetAddressOf()));
        EXPECT_EQ(S_OK, root->getElementsByTagName(Bstr(name).Get(), inElement.GetAddressOf()));
        EXPECT_EQ(count, LengthOf(inDocument.Get())) << name;
        const bool isRoot = std::wstring_view(name) == L"p:a" || *name == L'*';
        EXPECT_EQ(count - (isRoot ? 1 : 0), LengthOf(inElement.Get())) << name;
    }
}

TEST_F(Documents, TextsAreWrittenAndSavedAsTheyAre)
{
    LoadText(L"<?xml version='1.0' encoding='UTF-16'?><a>\x20AC</a>");
    ComPtr<IXMLDOMElement> root;
    doc->get_documentElement(root.GetAddressOf());
    EXPECT_EQ(S_OK, root->put_nodeTypedValue(Bstr(L"a & <b> \x20AC").Borrow()));
    const std::string utf16 = Saved();
    EXPECT_TRUE(utf16.starts_with(std::string("\xFF\xFE<\0?\0", 6)));
    EXPECT_EQ(S_OK, LoadText(L"<?xml version='1.0' encoding='UTF-8'?><a>\x20AC</a>"));
    EXPECT_NE(std::string::npos, Saved().find("<a>\xE2\x82\xAC</a>"));
    const auto again = Load(BytesOf(utf16));
    EXPECT_EQ(std::vector<std::wstring>{L"a & <b> \x20AC"}, Find(again.Get(), L"/a"));
}

} // namespace
} // namespace tsypr::test
