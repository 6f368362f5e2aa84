// The prescribed calls on print schema documents, straight: no checks, no log, every fixed text made once.
#ifndef TESSARY_BENCH_STRAIGHT_DOM_H
#define TESSARY_BENCH_STRAIGHT_DOM_H

#include "printschema/automation.h"

#include <initializer_list>
#include <vector>

namespace tsypr::bench
{

// Documents. They throw std::runtime_error when one fails.
void LoadStraight(IXMLDOMDocument2* doc, const void* bytes, UINT size);
std::vector<BYTE> SaveStraight(IXMLDOMDocument2* doc);
ComPtr<IXMLDOMDocument2> NewDocument();

// A text that is kept until the program ends.
BSTR KeptText(const wchar_t* text);

ComPtr<IXMLDOMNode> SelectStraight(IXMLDOMNode* from, BSTR query);

// The names of the options of a node; how many there are.
size_t OptionNames(IXMLDOMNode* feature);

// A feature for which the names stand in the order in which it is looked for.
class StraightFeature
{
public:
    // `root` is the document's root element.
    StraightFeature(const wchar_t* root, std::initializer_list<const wchar_t*> names);

    ComPtr<IXMLDOMNode> Find(IXMLDOMDocument2* doc) const;
    // Reads the name of the selected option, or writes it unless null.
    void Option(IXMLDOMDocument2* ticket, BSTR newName) const;
    // Reads the names and display names of all options.
    void Options(IXMLDOMDocument2* capabilities) const;

private:
    BSTR m_root;
    std::vector<BSTR> m_queries;
};

// N-up of a ticket: reads it, or writes it unless the direction is null.
void StraightNup(IXMLDOMDocument2* ticket, int pages, BSTR newDirection);
// N-up of capabilities; how many values and directions there are.
size_t StraightNupCapability(IXMLDOMDocument2* capabilities);

// Removes page scaling and the definition of its scale.
void RemoveScalingStraight(IXMLDOMDocument2* doc);

} // namespace tsypr::bench

#endif
