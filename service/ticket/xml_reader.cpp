#include "service/ticket/xml_reader.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <expat.h>

namespace tsypr::service
{

namespace
{

// Stands between namespace and local name in the names that the parser reports; no namespace holds it.
constexpr char kSeparator = '\n';

struct ParserDeleter
{
    void operator()(XML_Parser parser) const noexcept
    {
        XML_ParserFree(parser);
    }
};
using Parser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserDeleter>;

QName SplitName(std::string_view name)
{
    const std::size_t separator = name.find(kSeparator);
    if (separator == std::string_view::npos)
    {
        return {"", std::string(name)};
    }
    return {std::string(name.substr(0, separator)), std::string(name.substr(separator + 1))};
}

std::string_view Trim(std::string_view text)
{
    constexpr std::string_view kWhite = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kWhite);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(kWhite) - begin + 1);
}

// Takes the parser's reports and builds the elements. No exception leaves a report, since the parser is no C++ code:
// the first one stops the parser and waits in `Finish`.
class TreeBuilder
{
public:
    explicit TreeBuilder(XML_Parser parser) : m_parser(parser)
    {
        XML_SetUserData(parser, this);
        XML_SetStartElementHandler(parser,
                                   [](void* self, const XML_Char* name, const XML_Char** attributes)
                                   { Run(self, [&](TreeBuilder& builder) { builder.Begin(name, attributes); }); });
        XML_SetEndElementHandler(
            parser, [](void* self, const XML_Char*) { Run(self, [](TreeBuilder& builder) { builder.End(); }); });
        XML_SetCharacterDataHandler(
            parser,
            [](void* self, const XML_Char* text, int length) {
                Run(self, [&](TreeBuilder& builder) { builder.Text({text, static_cast<std::size_t>(length)}); });
            });
        XML_SetStartNamespaceDeclHandler(parser,
                                         [](void* self, const XML_Char* prefix, const XML_Char* uri)
                                         { Run(self, [&](TreeBuilder& builder) { builder.Declare(prefix, uri); }); });
        XML_SetEndNamespaceDeclHandler(parser,
                                       [](void* self, const XML_Char*)
                                       { Run(self, [](TreeBuilder& builder) { builder.m_scope.pop_back(); }); });
        XML_SetStartDoctypeDeclHandler(parser,
                                       [](void* self, const XML_Char*, const XML_Char*, const XML_Char*, int)
                                       { static_cast<TreeBuilder*>(self)->Stop(); });
    }
    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;

    // Throws what a report could not.
    void Finish() const
    {
        if (m_failure)
        {
            std::rethrow_exception(m_failure);
        }
    }

    XmlElement TakeRoot()
    {
        return std::move(m_root);
    }

private:
    template <class Report>
    static void Run(void* self, Report&& report) noexcept
    {
        auto& builder = *static_cast<TreeBuilder*>(self);
        if (builder.m_isStopped)
        {
            return; // the end of an empty element is reported all the same
        }
        try
        {
            report(builder);
        }
        catch (...)
        {
            builder.m_failure = std::current_exception();
            builder.Stop();
        }
    }

    void Stop() noexcept
    {
        m_isStopped = true;
        XML_StopParser(m_parser, XML_FALSE);
    }

    void Declare(const XML_Char* prefix, const XML_Char* uri)
    {
        if (m_scope.size() >= kMostXmlDeclarations)
        {
            Stop();
            return;
        }
        m_scope.push_back({prefix == nullptr ? "" : prefix, uri == nullptr ? "" : uri});
        ++m_newDeclarations;
    }

    void Begin(std::string_view name, const XML_Char** attributes)
    {
        if (m_open.size() >= kDeepestXml || ++m_count > kMostXmlElements)
        {
            Stop();
            return;
        }
        XmlElement element;
        element.tag = SplitName(name);
        element.declarations.assign(m_scope.end() - m_newDeclarations, m_scope.end());
        m_newDeclarations = 0;
        for (; *attributes != nullptr; attributes += 2)
        {
            element.attributes.push_back({SplitName(attributes[0]), attributes[1], Resolve(attributes[1])});
        }
        m_open.push_back(m_open.empty() ? &(m_root = std::move(element)) : &m_open.back()->Add(std::move(element)));
    }

    // The element's text is complete; only now is it known where its white space ends.
    void End()
    {
        XmlElement& element = *m_open.back();
        element.text = std::string(Trim(element.text));
        element.qualifiedText = Resolve(element.text);
        m_open.pop_back();
    }

    void Text(std::string_view text)
    {
        m_open.back()->text += text;
    }

    // The name that `prefix:local` stands for here.
    std::optional<QName> Resolve(std::string_view text) const
    {
        const std::size_t colon = text.find(':');
        const bool isQualified = colon != std::string_view::npos && colon > 0 && colon + 1 < text.size();
        if (!isQualified || text.find_first_of(": \t\r\n/", colon + 1) != std::string_view::npos)
        {
            return std::nullopt;
        }
        const auto declaration = std::find_if(m_scope.rbegin(),
                                              m_scope.rend(),
                                              [prefix = text.substr(0, colon)](const XmlDeclaration& candidate)
                                              { return candidate.prefix == prefix; });
        return declaration == m_scope.rend()
                   ? std::nullopt
                   : std::optional(QName{declaration->uri, std::string(text.substr(colon + 1))});
    }

    XML_Parser m_parser;
    XmlElement m_root;
    // From the root to the innermost open element. An element gets its next sibling only after it has ended, so the
    // addresses hold.
    std::vector<XmlElement*> m_open;
    std::vector<XmlDeclaration> m_scope;
    std::ptrdiff_t m_newDeclarations = 0;
    std::size_t m_count = 0;
    bool m_isStopped = false;
    std::exception_ptr m_failure;
};

} // namespace

std::optional<XmlElement> ReadXml(std::span<const std::byte> bytes)
{
    if (bytes.size() > kLargestXml)
    {
        return std::nullopt;
    }
    const Parser parser(XML_ParserCreateNS(nullptr, kSeparator));
    if (!parser)
    {
        throw std::bad_alloc();
    }
    TreeBuilder builder(parser.get());
    const auto* text = reinterpret_cast<const char*>(bytes.data());
    const XML_Status status = XML_Parse(parser.get(), text, static_cast<int>(bytes.size()), XML_TRUE);
    builder.Finish();
    if (status != XML_STATUS_OK && XML_GetErrorCode(parser.get()) == XML_ERROR_NO_MEMORY)
    {
        throw std::bad_alloc();
    }
    return status == XML_STATUS_OK ? std::optional(builder.TakeRoot()) : std::nullopt;
}

} // namespace tsypr::service
