#ifndef TESSARY_TESTS_SUPPORT_PRINT_SCHEMA_CHECKER_H
#define TESSARY_TESTS_SUPPORT_PRINT_SCHEMA_CHECKER_H

#include <string>
#include <string_view>
#include <vector>

namespace tsypr::test
{

enum class PrintSchemaKind
{
    Ticket,
    Capabilities
};

// What in a document breaks the rules of the print schema framework or misuses a public keyword, each as
// "Feature psk:PageMediaSize/Option psk:ISOA4: what is wrong". Empty for a good document. `xml` is the document's bytes
// in UTF-8 or UTF-16.
std::vector<std::string> CheckPrintSchema(std::string_view xml, PrintSchemaKind kind);

} // namespace tsypr::test

#endif
