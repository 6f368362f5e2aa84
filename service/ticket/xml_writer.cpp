#include "service/ticket/xml_writer.h"

#include <array>
#include <string_view>
#include <utility>

#include "service/ticket/keywords.h"

namespace tsypr::service
{

namespace
{

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// What a character of markup or white space turns into, or an empty view for one that stays.
std::string_view Escaped(char c, bool inAttribute)
{
    switch (c)
    {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return inAttribute ? "&quot;" : "";
    case '\r':
        return "&#13;";
    case '\n':
        return inAttribute ? "&#10;" : "";
    case '\t':
        return inAttribute ? "&#9;" : "";
    default:
        return static_cast<unsigned char>(c) < 0x20 ? kReplacement : "";
    }
}

class Writer
{
public:
    explicit Writer(const std::string& vendorUri)
        : m_prefixes{{{"psf", kFrameworkUri},
                      {"psk", kKeywordsUri},
                      {"xsi", kInstanceUri},
                      {"xsd", kTypesUri},
                      {"ns0000", vendorUri}}}
    {
    }

    std::string Write(const XmlElement& root)
    {
        m_out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        WriteElement(root, true);
        m_out += '\n';
        return std::move(m_out);
    }

private:
    std::string Prefixed(const QName& name) const
    {
        for (const auto& [prefix, uri] : m_prefixes)
        {
            if (!name.uri.empty() && uri == name.uri)
            {
                return std::string(prefix) + ":" + name.local;
            }
        }
        return name.local;
    }

    bool IsKnown(const QName& name) const
    {
        return Prefixed(name).size() > name.local.size();
    }

    void WriteText(std::string_view text, bool inAttribute)
    {
        for (std::size_t i = 0; i < text.size(); ++i)
        {
            // U+FFFE and U+FFFF are no characters of XML.
            if (text.substr(i).starts_with("\xEF\xBF\xBE") || text.substr(i).starts_with("\xEF\xBF\xBF"))
            {
                m_out += kReplacement;
                i += 2;
                continue;
            }
            const std::string_view escaped = Escaped(text[i], inAttribute);
            m_out += escaped.empty() ? text.substr(i, 1) : escaped;
        }
    }

    void WriteAttribute(std::string_view name, std::string_view value)
    {
        m_out.append(" ").append(name).append("=\"");
        WriteText(value, true);
        m_out += '"';
    }

    void WriteElement(const XmlElement& element, bool isRoot)
    {
        const std::string tag = Prefixed(element.tag);
        m_out += "<" + tag;
        for (const auto& [prefix, uri] : m_prefixes)
        {
            if (isRoot && !uri.empty())
            {
                WriteAttribute("xmlns:" + std::string(prefix), uri);
            }
        }
        for (const XmlAttribute& attribute : element.attributes)
        {
            WriteAttribute(Prefixed(attribute.name), Value(attribute.qualified, attribute.value));
        }
        const std::string text = Value(element.qualifiedText, element.text);
        if (element.children.empty() && text.empty())
        {
            m_out += "/>";
            return;
        }
        m_out += '>';
        WriteText(text, false);
        for (const XmlElement& child : element.children)
        {
            WriteElement(child, false);
        }
        m_out += "</" + tag + ">";
    }

    // The text itself, unless it is a name that has a prefix here.
    std::string Value(const std::optional<QName>& qualified, const std::string& text) const
    {
        return qualified && IsKnown(*qualified) ? Prefixed(*qualified) : text;
    }

    std::array<std::pair<std::string_view, std::string_view>, 5> m_prefixes;
    std::string m_out;
};

} // namespace

std::string WriteXml(const XmlElement& root, const std::string& vendorUri)
{
    return Writer(vendorUri).Write(root);
}

} // namespace tsypr::service
