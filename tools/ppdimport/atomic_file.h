#ifndef TESSARY_TOOLS_PPDIMPORT_ATOMIC_FILE_H
#define TESSARY_TOOLS_PPDIMPORT_ATOMIC_FILE_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace tsypr::ppdimport
{

class OutputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Writes a file so that a reader sees the old content or the new one, never a part: a temporary file in the same
// folder takes its place when complete. Throws OutputError and leaves no temporary file.
void WriteFileAtomically(const std::string& path, std::string_view content);

} // namespace tsypr::ppdimport

#endif
