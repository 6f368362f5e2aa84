#include "tools/ppdimport/import_context.h"

#include "tools/ppdimport/text.h"

#include <algorithm>
#include <utility>

namespace tsypr::ppdimport
{

ImportContext::ImportContext(const PpdModel& ppd, ImportReport& report) : m_ppd(ppd), m_report(report) {}

const PpdModel& ImportContext::Ppd() const
{
    return m_ppd;
}

void ImportContext::Report(ReportSection section, std::string line) const
{
    m_report.Add(section, std::move(line));
}

const PpdOption* ImportContext::Take(std::string_view keywords)
{
    while (!keywords.empty())
    {
        const std::size_t end = keywords.find(' ');
        const std::string_view keyword = keywords.substr(0, end);
        const auto found =
            std::find_if(m_ppd.options.begin(),
                         m_ppd.options.end(),
                         [&](const PpdOption& option) { return option.keyword == keyword && !option.installable; });
        if (found != m_ppd.options.end())
        {
            m_used.insert(found->keyword);
            return &*found;
        }
        keywords.remove_prefix(end == std::string_view::npos ? keywords.size() : end + 1);
    }
    return nullptr;
}

const PpdOption* ImportContext::TakeByText(std::string_view texts)
{
    for (const PpdOption& option : m_ppd.options)
    {
        if (!option.installable && !IsUsed(option.keyword) && HasWord(texts, Normalise(option.text)))
        {
            m_used.insert(option.keyword);
            return &option;
        }
    }
    return nullptr;
}

void ImportContext::MarkUsed(const std::string& keyword)
{
    m_used.insert(keyword);
}

bool ImportContext::IsUsed(const std::string& keyword) const
{
    return m_used.contains(keyword);
}

std::string Describe(const PpdOption& option, const PpdChoice& choice)
{
    std::string text = option.keyword + "=" + choice.name;
    if (!choice.text.empty() && choice.text != choice.name)
    {
        text += " (" + choice.text + ")";
    }
    return text;
}

std::string UniqueVendorKeyword(std::string_view kind, std::string_view name, std::set<std::string>& taken)
{
    const std::string base = VendorKeyword(kind, name);
    std::string keyword = base;
    for (int number = 2; !taken.insert(keyword).second; ++number)
    {
        keyword = base + "_" + std::to_string(number);
    }
    return keyword;
}

} // namespace tsypr::ppdimport
