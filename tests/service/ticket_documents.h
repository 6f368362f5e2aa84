#ifndef TESSARY_TESTS_SERVICE_TICKET_DOCUMENTS_H
#define TESSARY_TESTS_SERVICE_TICKET_DOCUMENTS_H

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "service/ticket/keywords.h"
#include "service/ticket/mode_parts.h"
#include "service/ticket/option_matching.h"
#include "service/ticket/print_ticket_query.h"
#include "service/ticket/xml_reader.h"
#include "tests/service/sample_profile.h"
#include "tests/support/print_schema_checker.h"

namespace tsypr::service::test
{

// A ticket with the usual prefixes around `body`; v is the sample printer's own namespace.
inline std::string Ticket(const std::string& body)
{
    return "<psf:PrintTicket xmlns:psf='" + std::string(kFrameworkUri) + "' xmlns:psk='" + std::string(kKeywordsUri) +
           "' xmlns:v='http://vendor.example/ns' xmlns:xsi='" + std::string(kInstanceUri) + "' xmlns:xsd='" +
           std::string(kTypesUri) + "' version='1'>" + body + "</psf:PrintTicket>";
}

// The same ticket with every prefix bound otherwise, the framework's namespace being the default.
inline std::string Reprefixed(std::string xml)
{
    const std::string framework = "xmlns:f='" + std::string(kFrameworkUri) + "' xmlns=";
    const std::string changes[][2] = {{"xmlns:psf=", framework},
                                      {"<psf:", "<"},
                                      {"</psf:", "</"},
                                      {"'psf:", "'f:"},
                                      {"psk", "psf"},
                                      {"xsi:", "a:"},
                                      {"xmlns:xsi", "xmlns:a"},
                                      {"xmlns:xsd", "xmlns:t"},
                                      {"xsd:", "t:"},
                                      {"xmlns:v=", "xmlns:psk="},
                                      {"'v:", "'psk:"}};
    for (const auto& [from, to] : changes)
    {
        for (std::size_t at = xml.find(from); at != std::string::npos; at = xml.find(from, at + to.size()))
        {
            xml.replace(at, from.size(), to);
        }
    }
    return xml;
}

inline std::string Scored(const std::string& name, const std::string& value)
{
    return "<psf:ScoredProperty name='psk:" + name + "'><psf:Value xsi:type='xsd:integer'>" + value +
           "</psf:Value></psf:ScoredProperty>";
}

inline std::string Feature(const std::string& name, const std::string& option, const std::string& more = "")
{
    return "<psf:Feature name='psk:" + name + "'><psf:Option name='" + option + "'/>" + more + "</psf:Feature>";
}

inline std::string Unnamed(const std::string& name, const std::string& scored, const std::string& more = "")
{
    return "<psf:Feature name='psk:" + name + "'><psf:Option>" + scored + "</psf:Option>" + more + "</psf:Feature>";
}

inline std::string Parameter(const std::string& name, const std::string& value)
{
    return "<psf:ParameterInit name='psk:" + name + "'><psf:Value xsi:type='xsd:integer'>" + value +
           "</psf:Value></psf:ParameterInit>";
}

inline std::string Text(const TicketAnswer& answer)
{
    return {reinterpret_cast<const char*>(answer.data.data()), answer.data.size()};
}

inline TicketAnswer Ask(const Profile& profile, TicketQuery query, std::string_view input)
{
    return AnswerTicketQuery(profile, query, std::as_bytes(std::span(input)));
}

inline XmlElement Root(const std::string& xml)
{
    return ReadXml(std::as_bytes(std::span(xml))).value();
}

// What a ticket chooses for a public feature, "A/B" for B inside A: the option's name without its prefix, or the
// numbers of an option without one joined by "x"; the number of a parameter. Empty when the ticket has no such thing.
inline std::string Chosen(const XmlElement& ticket, std::string_view name)
{
    if (const XmlElement* parameter = ticket.FindChild(Psf("ParameterInit"), Psk(name)))
    {
        return parameter->FindChild(Psf("Value"))->text;
    }
    const std::size_t slash = name.find('/');
    const XmlElement* feature = ticket.FindChild(Psf("Feature"), Psk(name.substr(0, slash)));
    if (feature == nullptr || slash != std::string_view::npos)
    {
        return feature == nullptr ? "" : Chosen(*feature, name.substr(slash + 1));
    }
    const XmlElement* option = feature->FindChild(Psf("Option"));
    std::string text;
    for (const XmlElement& scored : option->children)
    {
        text += (text.empty() ? "" : "x") + scored.children.at(0).text;
    }
    return option->Name() ? option->Name()->local : text;
}

inline std::string Chosen(const TicketAnswer& answer, std::string_view name)
{
    return Chosen(Root(Text(answer)), name);
}

} // namespace tsypr::service::test

#endif
